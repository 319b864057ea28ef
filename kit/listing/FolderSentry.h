#pragma once

#include "listing/FolderEvents.h"
#include "listing/FolderFingerprint.h"
#include "listing/POSIX.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <stop_token>

namespace ombrel {

/// One folder under watch, and when to tell of what happens to it: by the kernel's events, by looks at the
/// folder, or by both. The thread that has it sleeps until `wakeTime` or until `fd` can be read, and then
/// attends. Blocking; one thread at a time.
class FolderSentry {
public:
    using Clock = std::chrono::steady_clock;
    using Milliseconds = std::chrono::milliseconds;

    /// Bytes of the folder itself from which on it may take the kernel a tenth of a second to watch it,
    /// because it marks each entry that it remembers; meanwhile nobody can open the folder.
    static constexpr std::int64_t largeFolder = 512 * 1024;

    struct Pace {
        /// A change is told when this long none has followed it, so that a burst is told once.
        Milliseconds quiet{250};
        // What follows is for folders that have to be looked at.
        Milliseconds shortestRest{2000};     ///< between two looks
        Milliseconds longestIdleRest{10000}; ///< what the rest grows to while nothing changes
        Milliseconds longestRest{60000};
        int restPerLook = 20; ///< the rest is at least so many times as long as the look took
    };

    /// `url` and `pace` outlive it.
    FolderSentry(const FileURL& url, const Pace& pace) noexcept : url_(url), pace_(pace) {}

    /// Watches what the path leads to now. For the same folder nothing is missed since the last time. On
    /// failure nothing is watched. Whoever shows how a large folder begins gets a head start.
    [[nodiscard]] POSIX::Result<void> arm(const std::stop_token& stop);
    /// As if something had just changed.
    void noteChange() { quietAt_ = Clock::now() + pace_.quiet; }

    /// To be polled for reading; -1 when there is nothing to wait for.
    [[nodiscard]] int fd() const noexcept { return events_ && !napUntil_ ? events_->fd() : -1; }
    /// Nothing when only `fd` has to be waited for.
    [[nodiscard]] std::optional<Clock::time_point> wakeTime() const noexcept;

    enum class Outcome : std::uint8_t {
        nothing,
        changed, ///< and has been quiet since
        gone,    ///< deleted, moved away or unmounted; said once after each `arm`
    };
    /// Does what is due.
    [[nodiscard]] Outcome attend(const std::stop_token& stop);

private:
    [[nodiscard]] POSIX::Result<void> armEvents(int folder);
    [[nodiscard]] Outcome takeNews(Clock::time_point now);
    [[nodiscard]] Outcome look(const std::stop_token& stop);
    [[nodiscard]] Outcome goneOnce();
    [[nodiscard]] bool stillStands() const;
    void planLook(bool hasChanged, Clock::duration took);
    void forget();

    const FileURL& url_;
    const Pace& pace_;
    std::optional<FolderEvents> events_;
    std::optional<FileIdentity> identity_; ///< of what is watched
    FolderFingerprint::Numbers numbers_ = FolderFingerprint::Numbers::trusted;
    bool isGone_ = false;
    std::optional<FolderFingerprint> seen_; ///< at the last look; nothing where none is needed
    int lookFailure_ = 0;                   ///< why the last look showed nothing
    Clock::duration idleRest_{};
    std::optional<Clock::time_point> quietAt_;  ///< a change is to be told then
    std::optional<Clock::time_point> lookAt_;   ///< the next look is due then
    std::optional<Clock::time_point> napUntil_; ///< events are left to gather until then
};

} // namespace ombrel
