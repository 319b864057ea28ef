#include "listing/FileReference.h"

#include "listing/POSIX.h"

namespace ombrel {

std::expected<FileIdentity, POSIXFailure> currentIdentity(const FileURL& url) {
    const auto status = POSIX::lstat(url);
    if (!status) return std::unexpected(status.error());
    return status->identity;
}

FileReference FileReference::sampling(const FileURL& url) {
    const auto identity = currentIdentity(url);
    return {url, identity ? std::optional(*identity) : std::nullopt};
}

} // namespace ombrel
