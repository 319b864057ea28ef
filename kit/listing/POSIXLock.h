#pragma once

#include "listing/POSIX.h"

/// Advisory locks (flock) that tell processes of the same program apart.
namespace ombrel::POSIX {

/// Takes the exclusive lock of the open file behind `fd`, without waiting. Answers false while someone else
/// holds it. The lock goes with the last descriptor of that open file, whatever ends the process.
[[nodiscard]] Result<bool> tryLock(int fd);
/// The same for a lock that others may share and that keeps the exclusive one away.
[[nodiscard]] Result<bool> tryLockShared(int fd);

} // namespace ombrel::POSIX
