#pragma once

#include "listing/FileItem.h"

#include <optional>
#include <string>
#include <string_view>

/// The words for what an item is, as the Type column and the details pane show them. Any thread.
namespace ombrel::FileTypeNames {

[[nodiscard]] std::string name(FileItemView item);
/// The same where the type database need not be asked, because somebody has asked before or it has no say;
/// nothing otherwise. For the main thread.
[[nodiscard]] std::optional<std::string> known(FileItemView item);

/// For an extension (lower case, possibly empty) and a type identifier where one is known. Answers are kept
/// by the extension alone: the first answer for an extension stays for the process.
[[nodiscard]] std::string name(std::string_view extension, std::optional<std::string_view> typeIdentifier);

} // namespace ombrel::FileTypeNames
