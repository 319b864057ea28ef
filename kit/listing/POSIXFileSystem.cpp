#include "listing/POSIXFileSystem.h"

#include <fcntl.h>
#include <sys/statvfs.h>

namespace ombrel::POSIX {

Result<Capacity> capacity(const FileURL& url) {
    if (const auto fault = SystemCall::gate(SystemCall::Kind::fileSystem); fault && fault->errorNumber)
        return std::unexpected(POSIXFailure{fault->errorNumber});
    const auto place = open(url, O_PATH);
    if (!place) return std::unexpected(place.error());
    struct statvfs facts;
    while (::fstatvfs(place->get(), &facts) != 0)
        if (errno != EINTR) return std::unexpected(POSIXFailure::current());
    const auto unit = static_cast<std::int64_t>(facts.f_frsize);
    return Capacity{static_cast<std::int64_t>(facts.f_blocks) * unit,
                    static_cast<std::int64_t>(facts.f_bavail) * unit};
}

} // namespace ombrel::POSIX
