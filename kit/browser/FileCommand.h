#pragma once

#include "base/RawValue.h"

#include <cstddef>
#include <cstdint>

namespace ombrel {

/// What a person can tell a pane to do. The raw values name the commands to scripts and in settings.
enum class FileCommand : std::uint8_t {
    open,
    rename,
    moveToTrash,
    deletePermanently,
    copy,
    cut,
    paste,
    quickLook,
    selectAll,
    goBack,
    goForward,
    goUp,
    refresh,
    newFolder,
    newFile,
    showInfo,
    newTab,
    closeTab,
    focusAddress,
    focusSearch,
    toggleDetailsPane,
    copyPath,
    newWindow,
    cancelCut,
    undo,
    redo,
    // These have no keys.
    openInNewTab,
    openInNewWindow,
    openInTerminal,
    openContainingFolder,
    compress,
    extract,
    moveIntoNewFolder,
    dissolveFolder,
    createShortcut,
    pin,
    unpin,
};

template <>
struct RawValues<FileCommand> {
    static constexpr std::string_view names[] = {
        "open",
        "rename",
        "moveToTrash",
        "deletePermanently",
        "copy",
        "cut",
        "paste",
        "quickLook",
        "selectAll",
        "goBack",
        "goForward",
        "goUp",
        "refresh",
        "newFolder",
        "newFile",
        "showInfo",
        "newTab",
        "closeTab",
        "focusAddress",
        "focusSearch",
        "toggleDetailsPane",
        "copyPath",
        "newWindow",
        "cancelCut",
        "undo",
        "redo",
        "openInNewTab",
        "openInNewWindow",
        "openInTerminal",
        "openContainingFolder",
        "compress",
        "extract",
        "moveIntoNewFolder",
        "dissolveFolder",
        "createShortcut",
        "pin",
        "unpin",
    };
};

namespace FileCommands {

inline constexpr std::size_t count = std::size(RawValues<FileCommand>::names);

/// Whether the command acts on selected items and so means nothing without one.
[[nodiscard]] bool needsSelection(FileCommand command) noexcept;
/// Whether its keys mean it only where something is selected: the same, and commands that without a selection
/// act on the folder.
[[nodiscard]] bool keyNeedsSelection(FileCommand command) noexcept;
/// Whether a key that is held down gives the command again and again. Those that change files, tabs or
/// windows act once a press.
[[nodiscard]] bool repeatsWhileHeld(FileCommand command) noexcept;
/// The key of the command's name in menus and tooltips.
[[nodiscard]] std::string_view textKey(FileCommand command) noexcept;

} // namespace FileCommands
} // namespace ombrel
