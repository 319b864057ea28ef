#include "listing/POSIXWatch.h"

#include "listing/POSIXCall.h"

#include <sys/inotify.h>

#include <string>

namespace ombrel::POSIX {

using SystemCall::Kind;

Result<OwnedFd> makeEventQueue() {
    const auto queue = answered(Kind::watch, [] { return ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC); });
    if (!queue) return std::unexpected(queue.error());
    return OwnedFd(*queue);
}

Result<int> addWatch(int queue, int folder, const char* below, std::uint32_t mask) {
    // The call takes no descriptor; this path leads to what is open, whatever has its name by now.
    const std::string path = "/proc/self/fd/" + std::to_string(folder) + below;
    return answered(Kind::watch, [&] { return ::inotify_add_watch(queue, path.c_str(), mask); });
}

Result<void> removeWatch(int queue, int watch) {
    return done(Kind::watch, [&] { return ::inotify_rm_watch(queue, watch); });
}

} // namespace ombrel::POSIX
