#pragma once

#include "base/FileURL.h"
#include "base/POSIXFailure.h"
#include "listing/FileItem.h"
#include "listing/FileStatus.h"

#include <cstdint>
#include <optional>
#include <string>

namespace ombrel {

/// What is known of one item besides its name, for the details pane and the properties. A plain value.
struct ItemValues {
    FileURL url;
    std::string type; ///< in words; empty while it is not known
    /// Bytes, of regular files and links.
    std::optional<std::int64_t> size;
    std::optional<FileTime> modified;
    std::optional<FileTime> created;
    std::optional<FileTime> opened;
    /// Permission bits as in <sys/stat.h>; a link has none of its own.
    std::optional<std::uint32_t> permissions;
    std::string owner, group; ///< names, or numbers where there are none; UTF-8
    bool isHidden = false;
    bool isFolder = false;
    /// Where a link leads, as it stands in the link: bytes.
    std::optional<std::string> linkTarget;
    /// Of an image, in pixels.
    struct Dimensions {
        int width = 0;
        int height = 0;
        friend bool operator==(const Dimensions&, const Dimensions&) = default;
    };
    std::optional<Dimensions> dimensions;
    /// Why nothing could be read of it, when it was tried.
    std::optional<POSIXFailure> problem;

    /// What the listing tells, and nothing that would have to be read.
    [[nodiscard]] static ItemValues known(FileItemView item);
    /// Everything but the dimensions. What cannot be read is left out. Blocking.
    [[nodiscard]] static ItemValues read(const FileItem& item);
    /// Reads as much of an image as tells its size. Nothing for what is no image. Blocking.
    [[nodiscard]] static std::optional<Dimensions> dimensionsOf(const FileItem& item);

    friend bool operator==(const ItemValues&, const ItemValues&) = default;
};

/// The item that stands at a location. Blocking.
[[nodiscard]] FileItem itemAt(const FileURL& url);

/// Whether two listings tell the same of one item, so that nothing has to be shown anew.
[[nodiscard]] bool areAlike(const FileItem& before, FileItemView now);

} // namespace ombrel
