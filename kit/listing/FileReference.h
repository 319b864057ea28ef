#pragma once

#include "base/FileURL.h"
#include "base/POSIXFailure.h"
#include "listing/FileStatus.h"

#include <expected>
#include <optional>

namespace ombrel {

/// A location together with the object that stood there when it was picked: what the clipboard, the
/// operations and the undo history carry. Equality is member-wise.
struct FileReference {
    FileURL url;
    std::optional<FileIdentity> identity;

    /// One look at the entry itself (links are not followed); without an identity when that fails.
    [[nodiscard]] static FileReference sampling(const FileURL& url);

    friend bool operator==(const FileReference&, const FileReference&) = default;
};

/// Device and inode of the entry at `url` (the link itself, not its target): one system call.
[[nodiscard]] std::expected<FileIdentity, POSIXFailure> currentIdentity(const FileURL& url);

} // namespace ombrel
