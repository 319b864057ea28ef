#include "operations/DropProbe.h"

#include "listing/POSIX.h"
#include "listing/POSIXEntries.h"

#include <fcntl.h>

#include <cerrno>

namespace ombrel {

std::expected<std::uint64_t, FileOperationError> deviceForDrops(const FileURL& folder) {
    using Error = FileOperationError;
    const auto opened = POSIX::open(folder, O_PATH | O_DIRECTORY);
    if (!opened) {
        const int number = opened.error().number;
        const bool isMissing = number == ENOENT || number == ENOTDIR;
        return std::unexpected(isMissing ? Error(Error::Case::destinationMissing)
                                         : Error::from(opened.error()));
    }
    const auto status = POSIX::status(opened->get());
    if (!status) return std::unexpected(Error::from(status.error()));
    const auto writable = POSIX::checkWritable({opened->get(), "."});
    if (!writable) return std::unexpected(Error::from(writable.error()));
    return status->identity.device;
}

} // namespace ombrel
