#pragma once

#include "browser/FileCommand.h"
#include "browser/KeyStroke.h"
#include "browser/TabCommand.h"
#include "services/KeyPreset.h"

#include <optional>
#include <string_view>

namespace ombrel {

/// What has the keyboard while a key is pressed.
struct FocusContext {
    bool fileViewHasFocus = false; ///< the list or grid of the active pane
    bool isEditingText = false;    ///< the address, the search, a name
    bool hasMarkedText = false;    ///< an input method is composing
    bool hasSelection = false;     ///< of the active pane

    friend bool operator==(const FocusContext&, const FocusContext&) = default;
};

/// Which key means which command. Pure functions over fixed tables; they answer nothing when the key is to go
/// on to the focused control.
///
/// On the mac preset Control counts as Command wherever no binding has Control itself, because desktops keep
/// many strokes with the Command (Super) key for themselves.
namespace KeyBindings {

/// The tables as they stand. Modifiers match exactly.
[[nodiscard]] std::optional<FileCommand> lookup(const KeyStroke& stroke, KeyPreset preset);
/// What a key means in the file view.
[[nodiscard]] std::optional<FileCommand> command(const KeyStroke& stroke, KeyPreset preset,
                                                 const FocusContext& context);
/// What a key means anywhere in the window. Nothing on the mac preset.
[[nodiscard]] std::optional<FileCommand> windowCommand(const KeyStroke& stroke, KeyPreset preset,
                                                       bool isEditingText, bool hasMarkedText);
/// Which tab a key leads to from anywhere in the window. Nothing on the mac preset.
[[nodiscard]] std::optional<TabCommand> tabCommand(const KeyStroke& stroke, KeyPreset preset,
                                                   bool isEditingText, bool hasMarkedText);

/// The shortcut beside a command's name, in the symbols of the keys; nothing for commands that show none.
///
/// A table of its own: not every binding is shown, and of several keys for a command only one is.
[[nodiscard]] std::optional<std::string_view> displayShortcut(FileCommand command, KeyPreset preset) noexcept;

} // namespace KeyBindings
} // namespace ombrel
