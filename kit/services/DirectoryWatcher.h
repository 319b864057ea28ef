#pragma once

#include "base/FileURL.h"
#include "base/POSIXFailure.h"
#include "listing/FolderWatch.h"

#include <chrono>
#include <cstdint>
#include <expected>
#include <functional>
#include <memory>

namespace ombrel {

/// Tells that the one folder that it is pointed at has changed on disk, or has gone. What lies in its
/// sub-folders does not count, and neither does each write to an open file: that it was closed afterwards
/// does.
///
/// Main thread only, and it never blocks: the folder is opened and watched elsewhere (`FolderWatch`). Nothing
/// is told from within a call, and nothing of what happened before `stop`, or before `watch` was called for
/// another folder.
class DirectoryWatcher {
public:
    enum class Event : std::uint8_t {
        /// Entries were added, removed, renamed, written or given other attributes. Told once no more change
        /// has followed for the coalescing delay, so a change without end is told when it pauses.
        contentsChanged,
        /// The folder was deleted or renamed, or its volume was unmounted. Told at once; a `contentsChanged`
        /// that waits is dropped. The watch goes on with what is left of it until told otherwise.
        directoryInvalidated,
    };
    using Seconds = std::chrono::duration<double>;
    /// Called on the main thread. It may call the watcher, and destroy it.
    using Handler = std::function<void(Event)>;
    /// Whether the folder is watched from now on; if not, why it cannot be.
    using Answer = std::function<void(std::expected<void, POSIXFailure>)>;

    /// Idle.
    DirectoryWatcher(Seconds coalescingDelay, Handler handler);
    ~DirectoryWatcher();
    DirectoryWatcher(const DirectoryWatcher&) = delete;
    DirectoryWatcher& operator=(const DirectoryWatcher&) = delete;

    /// Watches `url` and no other folder any more. For the folder that is watched already it looks again
    /// where the path leads; no change is missed meanwhile, and a notice that waits still comes. `answer`
    /// comes later, on the main thread, unless `stop` or another `watch` comes first. When it is a failure
    /// nothing is watched.
    void watch(const FileURL& url, Answer answer = {});
    /// Drops the notice that waits. Without effect when idle.
    void stop();

    /// What a listing of the folder waits for before it is read, so that it misses no change.
    [[nodiscard]] FolderWatch::Arming arming() const;

private:
    struct Desk;
    std::shared_ptr<Desk> desk_;
};

} // namespace ombrel
