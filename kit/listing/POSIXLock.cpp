#include "listing/POSIXLock.h"

#include "listing/POSIXCall.h"

#include <sys/file.h>

namespace ombrel::POSIX {

namespace {

Result<bool> lock(int fd, int operation) {
    const auto locked = done(SystemCall::Kind::lock, [&] { return ::flock(fd, operation | LOCK_NB); });
    if (locked) return true;
    if (locked.error().number == EWOULDBLOCK) return false;
    return std::unexpected(locked.error());
}

} // namespace

Result<bool> tryLock(int fd) {
    return lock(fd, LOCK_EX);
}

Result<bool> tryLockShared(int fd) {
    return lock(fd, LOCK_SH);
}

} // namespace ombrel::POSIX
