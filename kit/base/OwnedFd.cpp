#include "base/OwnedFd.h"

#include <unistd.h>

namespace ombrel {

OwnedFd& OwnedFd::operator=(OwnedFd&& other) noexcept {
    if (this != &other) {
        if (fd_ >= 0) ::close(fd_);
        fd_ = std::exchange(other.fd_, -1);
    }
    return *this;
}

OwnedFd::~OwnedFd() {
    if (fd_ >= 0) ::close(fd_);
}

std::expected<void, POSIXFailure> OwnedFd::close() noexcept {
    const int fd = release();
    if (fd < 0 || ::close(fd) == 0 || errno == EINTR) return {};
    return std::unexpected(POSIXFailure::current());
}

} // namespace ombrel
