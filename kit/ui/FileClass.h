#pragma once

#include "listing/FileItem.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace ombrel {

/// What a file looks like: the classes that have an icon of their own.
enum class FileClass : std::uint8_t {
    folder,
    text,
    markup, ///< text with marks, as Markdown
    document,
    spreadsheet,
    presentation,
    pdf,
    image,
    vectorImage,
    audio,
    video,
    archive,
    code,
    tableData,
    mapData,
    other,
};
inline constexpr std::size_t fileClassCount = static_cast<std::size_t>(FileClass::other) + 1;

namespace FileClasses {

/// The class of a MIME type.
[[nodiscard]] FileClass ofType(std::string_view identifier);
/// The class of an item, of a link by its own name; nothing as long as the type database would have to be
/// asked, which `TypeDatabase::fileType` does.
[[nodiscard]] std::optional<FileClass> known(FileItemView item);

} // namespace FileClasses
} // namespace ombrel
