#pragma once

#include "browser/FileCommand.h"
#include "browser/KeyStroke.h"
#include "browser/TabCommand.h"
#include "services/KeyPreset.h"

#include <optional>

namespace ombrel {

/// The shortcuts that an application's menu carries on the mac preset, from anywhere in the window. There is
/// no such menu here, so the window looks them up itself. Control counts as Command, as in KeyBindings.
///
/// Nothing on the windows preset, and nothing while text is edited or composed: copying and undoing are the
/// text's own then.
namespace MenuShortcuts {

[[nodiscard]] std::optional<FileCommand> command(const KeyStroke& stroke, KeyPreset preset,
                                                 bool isEditingText, bool hasMarkedText);
[[nodiscard]] std::optional<TabCommand> tabCommand(const KeyStroke& stroke, KeyPreset preset,
                                                   bool isEditingText, bool hasMarkedText);

} // namespace MenuShortcuts
} // namespace ombrel
