#include "listing/FolderEvents.h"

#include "listing/POSIXWatch.h"

#include <sys/inotify.h>

#include <array>
#include <cstddef>
#include <cstring>
#include <utility>

namespace ombrel {
namespace {

constexpr std::uint32_t folderMask = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_CLOSE_WRITE |
                                     IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;
/// A folder that somebody still has open, a shell that stands in it say, tells of its deletion only when it
/// is let go. The folder above tells at once. The root is its own, so its mask is added to.
constexpr std::uint32_t parentMask = IN_DELETE | IN_MOVED_FROM | IN_ONLYDIR | IN_MASK_ADD;

} // namespace

POSIX::Result<FolderEvents> FolderEvents::open() {
    auto queue = POSIX::makeEventQueue();
    if (!queue) return std::unexpected(queue.error());
    return FolderEvents(*std::move(queue));
}

POSIX::Result<void> FolderEvents::arm(int folder) {
    const auto watch = POSIX::addWatch(queue_.get(), folder, "", folderMask);
    if (!watch) return std::unexpected(watch.error());
    // One that may not be read has to do without.
    const auto parent = POSIX::addWatch(queue_.get(), folder, "/..", parentMask);
    replace(*watch, parent ? *parent : none);
    return {};
}

void FolderEvents::replace(int folder, int parent) {
    const int before[] = {std::exchange(folder_, folder), std::exchange(parent_, parent)};
    for (const int watch : before)
        if (watch != none && watch != folder_ && watch != parent_)
            (void)POSIX::removeWatch(queue_.get(), watch);
}

FolderEvents::News FolderEvents::read() {
    constexpr std::size_t bufferBytes = std::size_t{64} << 10;
    alignas(inotify_event) std::array<std::byte, bufferBytes> buffer;
    News news;
    for (;;) {
        const auto filled = POSIX::read(queue_.get(), buffer.data(), buffer.size());
        if (!filled || *filled == 0) return news;
        for (std::size_t at = 0; at + sizeof(inotify_event) <= *filled;) {
            inotify_event event;
            std::memcpy(&event, buffer.data() + at, sizeof event);
            at += sizeof event + event.len;
            if (event.mask & IN_Q_OVERFLOW) {
                news.changed = news.doubtful = true;
            } else if (event.wd == folder_) {
                if (event.mask & (IN_DELETE_SELF | IN_MOVE_SELF | IN_UNMOUNT)) news.gone = true;
                if (event.mask & (folderMask & ~(IN_DELETE_SELF | IN_MOVE_SELF))) news.changed = true;
                if (event.mask & IN_IGNORED) folder_ = none;
            } else if (event.wd == parent_) {
                if ((event.mask & (IN_DELETE | IN_MOVED_FROM)) && (event.mask & IN_ISDIR))
                    news.doubtful = true;
                if (event.mask & IN_IGNORED) parent_ = none;
            }
        }
    }
}

} // namespace ombrel
