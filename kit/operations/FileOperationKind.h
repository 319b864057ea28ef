#pragma once

#include "base/RawValue.h"

#include <cstdint>

namespace ombrel {

/// What a file-operation job does.
enum class FileOperationKind : std::uint8_t {
    copy,
    move,
    rename,
    newFolder,
    newFile,
    trash,
    delete_, ///< stored and shown as "delete"
    compress,
    extract,
};

template <>
struct RawValues<FileOperationKind> {
    static constexpr std::string_view names[] = {"copy",  "move",   "rename",   "newFolder", "newFile",
                                                 "trash", "delete", "compress", "extract"};
};

} // namespace ombrel
