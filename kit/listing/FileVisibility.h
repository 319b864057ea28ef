#pragma once

#include "listing/FileItem.h"

#include <optional>
#include <string>
#include <string_view>

/// What the user sees of names: which entries are the system's own, and how a name looks with its ending
/// hidden. Pure functions; any thread.
namespace ombrel::FileVisibility {

/// One of the fixed names that operating systems leave in folders (matched whole, letter case counts), or a
/// name that begins with "._".
[[nodiscard]] bool isProtectedSystemItem(std::string_view name);

/// The name to show when known endings are hidden. Names of folders and of links to folders are shown whole.
[[nodiscard]] std::string_view nameHidingKnownExtension(FileItemView item);
[[nodiscard]] std::string_view nameHidingKnownExtension(std::string_view name);

/// Whether the type database knows the extension as a document's: not a guess, not executable, script or
/// application.
[[nodiscard]] bool isKnownExtension(std::string_view extension);

/// What the display hid of the item's name, to be put back on a new one; nothing when the whole name was
/// shown.
[[nodiscard]] std::optional<std::string_view> hiddenExtension(FileItemView item,
                                                              std::string_view displayedAs);

} // namespace ombrel::FileVisibility
