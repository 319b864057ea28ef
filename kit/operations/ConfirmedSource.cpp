#include "operations/ConfirmedSource.h"

#include "listing/MountTable.h"

#include <fcntl.h>

namespace ombrel {

namespace {

/// Where inode numbers do not last, all that an identity can still say is the device.
bool isStill(const FileIdentity& identity, const FileStatus& status) {
    if (identity == status.identity) return true;
    return identity.device == status.identity.device && MountTable::current().traits(status).renumbersInodes;
}

} // namespace

const int ConfirmedSource::outermost = AT_FDCWD;

std::expected<ConfirmedSource, FileOperationError> ConfirmedSource::of(const FileReference& reference) {
    const auto failed = [](POSIXFailure failure) {
        return std::unexpected(FileOperationError::from(failure));
    };
    ConfirmedSource source;
    if (reference.url.isRoot()) {
        source.name_ = "/";
    } else {
        auto folder = POSIX::open(reference.url.parent(), O_PATH | O_DIRECTORY);
        if (!folder) return failed(folder.error());
        source.folder_ = std::move(*folder);
        source.name_ = reference.url.name();
    }
    const auto status = POSIX::lstat(source.place());
    if (!status) return failed(status.error());
    if (reference.identity && !isStill(*reference.identity, *status))
        return std::unexpected(FileOperationError::Case::sourceChanged);
    source.status_ = *status;
    return source;
}

} // namespace ombrel
