#pragma once

#include "base/FileURL.h"
#include "base/POSIXFailure.h"
#include "base/Worker.h"
#include "listing/FolderSentry.h"

#include <chrono>
#include <cstdint>
#include <expected>
#include <functional>
#include <memory>
#include <stop_token>

namespace ombrel {

/// Tells when the entries of one folder change, and when the folder itself goes.
///
/// The kernel tells of changes (inotify), and while there are none the watch sleeps. Where the kernel does
/// not know of them (servers, FUSE), or has no watch left to give, the folder is looked at now and then
/// (`FolderFingerprint`), the more rarely the longer a look takes and the longer nothing has changed; the log
/// says so.
///
/// The work is done by a thread of its own, which may hang in a dead mount: nothing waits for it, not even
/// the handle's end, except `Arming`. Any thread.
class FolderWatch {
    struct Shared;

public:
    using Pace = FolderSentry::Pace;

    /// Called on the watch's thread, one at a time; perhaps once more while the handle is destroyed.
    struct Teller {
        /// The folder is watched from now on; or it cannot be opened, and is not. `number` is 0 for the start
        /// and otherwise that of `renew`.
        std::function<void(std::uint64_t number, std::expected<void, POSIXFailure>)> begun;
        std::function<void()> changed;
        /// The folder was deleted, moved away or unmounted. Told at once, and a change that was not told yet
        /// is not any more. Told once until the watch is renewed.
        std::function<void()> gone;
    };

    /// For whoever is about to list the folder: the moment from which on no change is missed. Any thread; may
    /// outlive the watch.
    class Arming {
    public:
        Arming() noexcept = default;
        /// Waits until the folder is watched or found not to be, for at most `limit`. If that was too short,
        /// a change is told as soon as it is watched, so that what happened in between is not missed either.
        void wait(std::chrono::milliseconds limit, const std::stop_token& stop = {}) const;

    private:
        friend class FolderWatch;
        Arming(std::shared_ptr<Shared> shared, std::uint64_t number) noexcept
            : shared_(std::move(shared)), number_(number) {}
        std::shared_ptr<Shared> shared_;
        std::uint64_t number_ = 0;
    };

    /// Watches nothing.
    FolderWatch() noexcept = default;
    /// Throws `std::system_error` when the system has no thread or descriptor left.
    FolderWatch(const FileURL& url, const Pace& pace, Teller teller);

    /// Watches what the path leads to now. For the same folder no change is missed in between, and one that
    /// was not told yet still will be. Answers the number that `begun` will tell. One that is overtaken by
    /// the next is not told of.
    std::uint64_t renew();

    /// Of the start or the latest renewal.
    [[nodiscard]] Arming arming() const;

private:
    static void run(Shared& shared, const std::stop_token& stop);

    std::shared_ptr<Shared> shared_;
    Worker worker_;
};

} // namespace ombrel
