#pragma once

#include "listing/POSIX.h"

#include <cstdint>

/// Calls that ask the kernel to tell of changes (inotify). Masks and events are those of <sys/inotify.h>.
namespace ombrel::POSIX {

/// A queue of events, to be polled for and read without waiting (EAGAIN when it is empty). EMFILE when the
/// user has as many as allowed.
[[nodiscard]] Result<OwnedFd> makeEventQueue();

/// Has `queue` told what `mask` names of the folder that `below` leads to from the open folder `folder`: ""
/// for itself, "/.." for the one it is in. Answers the watch's number, the same one for a folder that is
/// watched already. The folder need not stay open. ENOSPC when the user has as many watches as allowed.
[[nodiscard]] Result<int> addWatch(int queue, int folder, const char* below, std::uint32_t mask);

/// Events of the watch that are in the queue already stay there.
[[nodiscard]] Result<void> removeWatch(int queue, int watch);

} // namespace ombrel::POSIX
