#pragma once

#include "base/OwnedFd.h"
#include "listing/FileReference.h"
#include "listing/FileStatus.h"
#include "listing/POSIX.h"
#include "operations/FileOperationError.h"

#include <expected>
#include <string>

namespace ombrel {

/// The item that a reference names, found to be still the one that was picked, with its folder held open:
/// what is done to it from here on is done in that very folder, whatever becomes of the path. Blocking.
class ConfirmedSource {
public:
    /// Opens the folder and looks at the entry (links are not followed). `sourceMissing` when it is not
    /// there, `sourceChanged` when another object stands there than the reference says; else the errno
    /// mapping.
    [[nodiscard]] static std::expected<ConfirmedSource, FileOperationError>
    of(const FileReference& reference);

    /// Valid as long as this object is.
    [[nodiscard]] POSIX::Place place() const noexcept {
        return {folder_ ? folder_.get() : outermost, name_.c_str()};
    }
    /// The folder alone; empty for the root folder.
    [[nodiscard]] const OwnedFd& folder() const noexcept { return folder_; }
    /// The bytes of the entry's name; "/" for the root folder.
    [[nodiscard]] const std::string& name() const noexcept { return name_; }
    [[nodiscard]] const FileStatus& status() const noexcept { return status_; }

private:
    static const int outermost;

    OwnedFd folder_;
    std::string name_;
    FileStatus status_;
};

} // namespace ombrel
