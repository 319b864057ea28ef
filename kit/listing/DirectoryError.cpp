#include "listing/DirectoryError.h"

#include "base/POSIXFailure.h"

namespace ombrel {

DirectoryError DirectoryError::from(int errorNumber) noexcept {
    switch (errorNumber) {
    case ENOENT: return Case::notFound;
    case EPERM:
    case EACCES: return Case::permissionDenied;
    case ENOTDIR: return Case::notADirectory;
    case EIO:
    case ENXIO:
    case ENODEV: return Case::volumeUnavailable;
    default: return io(errorNumber);
    }
}

Text DirectoryError::text() const {
    switch (case_) {
    case Case::notFound: return {"error.directory.notFound"};
    case Case::permissionDenied: return {"error.directory.permissionDenied"};
    case Case::notADirectory: return {"error.directory.notADirectory"};
    case Case::volumeUnavailable: return {"error.directory.volumeUnavailable"};
    case Case::io: break;
    }
    return {"error.directory.io", {POSIXFailure{errorNumber_}.systemText()}};
}

} // namespace ombrel
