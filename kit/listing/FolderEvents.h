#pragma once

#include "listing/POSIX.h"

namespace ombrel {

/// What the kernel tells of one folder: entries that come, go, get another name or other attributes, or are
/// closed after writing, and what happens to the folder itself. One thread at a time; blocking, and on a dead
/// mount perhaps for ever.
class FolderEvents {
public:
    /// What has happened since the last look.
    struct News {
        bool changed = false;  ///< the listing is out of date
        bool gone = false;     ///< the folder was deleted, moved or unmounted
        bool doubtful = false; ///< it may be gone without having been told: it is to be looked for
        friend bool operator==(const News&, const News&) = default;
    };

    [[nodiscard]] static POSIX::Result<FolderEvents> open();

    /// Watches `folder`, an open one that may be closed afterwards, in place of what was watched before. For
    /// the same folder nothing is lost in between.
    [[nodiscard]] POSIX::Result<void> arm(int folder);
    /// Nothing is watched any more.
    void disarm() { replace(none, none); }

    /// To be polled for reading.
    [[nodiscard]] int fd() const noexcept { return queue_.get(); }
    /// Takes what there is, without waiting.
    [[nodiscard]] News read();

private:
    explicit FolderEvents(OwnedFd queue) noexcept : queue_(std::move(queue)) {}
    static constexpr int none = -1;
    void replace(int folder, int parent);

    OwnedFd queue_;
    int folder_ = none;
    int parent_ = none;
};

} // namespace ombrel
