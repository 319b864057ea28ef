#include "listing/FolderSentry.h"

#include "base/Log.h"
#include "listing/MountTable.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <iterator>
#include <mutex>
#include <string>

namespace ombrel {
namespace {

/// While events come, they are taken in heaps: a wake-up for each would cost more than all the rest.
constexpr std::chrono::milliseconds nap(10);

/// Before a large folder is watched for the first time.
constexpr std::chrono::milliseconds headStart(60);

bool isOneOf(int number, std::initializer_list<int> numbers) {
    return std::ranges::find(numbers, number) != numbers.end();
}

void waitFor(std::chrono::milliseconds time, const std::stop_token& stop) {
    std::mutex mutex;
    std::condition_variable_any never;
    std::unique_lock lock(mutex);
    (void)never.wait_for(lock, stop, time, [] { return false; });
}

/// Whether there can be no events because there are too many already, or none at all on this system.
bool meansNoEvents(POSIXFailure failure) {
    return isOneOf(failure.number, {EMFILE, ENFILE, ENOSPC, ENOMEM, ENOSYS});
}

/// Whether the answer to a path says that the folder is not there any more.
bool meansGone(POSIXFailure failure) {
    return isOneOf(failure.number, {ENOENT, ENOTDIR, ESTALE, ENODEV, ENXIO, ENOTCONN});
}

} // namespace

POSIX::Result<void> FolderSentry::arm(const std::stop_token& stop) {
    const auto refuse = [this](POSIXFailure failure) {
        forget();
        return std::unexpected(failure);
    };
    auto folder = POSIX::open(url_, O_PATH | O_DIRECTORY);
    if (!folder) return refuse(folder.error());
    const auto status = POSIX::status(folder->get());
    if (!status) return refuse(status.error());
    if (!events_ && status->size >= largeFolder) waitFor(headStart, stop);
    const auto events = armEvents(folder->get());
    if (!events && !meansNoEvents(events.error())) return refuse(events.error());
    // An open folder would keep its volume from being unmounted.
    *folder = OwnedFd();

    const auto traits = MountTable::current().traits(*status);
    numbers_ = traits.renumbersInodes || traits.isNetwork ? FolderFingerprint::Numbers::untrusted
                                                          : FolderFingerprint::Numbers::trusted;
    const bool isSame = identity_ == status->identity && !isGone_;
    identity_ = status->identity;
    isGone_ = false;
    if (events && traits.reportsChanges()) {
        seen_.reset();
        lookAt_.reset();
        return {};
    }
    if (isSame && seen_) return {};
    if (!events)
        Log::error(Log::Category::directory,
                   "changes are looked for now and then, because there is no watch left (" +
                       events.error().systemText() + "): " + url_.uri());
    else
        Log::info(Log::Category::directory,
                  "changes are looked for now and then, because the file system does not tell of them: " +
                      url_.uri());
    const auto began = Clock::now();
    const auto first = FolderFingerprint::of(url_, numbers_, stop);
    if (!first) return refuse(first.error());
    seen_ = *first;
    lookFailure_ = 0;
    planLook(true, Clock::now() - began);
    return {};
}

POSIX::Result<void> FolderSentry::armEvents(int folder) {
    if (!events_) {
        auto made = FolderEvents::open();
        if (!made) return std::unexpected(made.error());
        events_ = *std::move(made);
    }
    auto armed = events_->arm(folder);
    if (!armed) events_.reset();
    return armed;
}

void FolderSentry::forget() {
    events_.reset();
    identity_.reset();
    seen_.reset();
    quietAt_ = lookAt_ = napUntil_ = std::nullopt;
}

std::optional<FolderSentry::Clock::time_point> FolderSentry::wakeTime() const noexcept {
    std::optional<Clock::time_point> earliest;
    for (const auto& time : {quietAt_, lookAt_, napUntil_})
        if (time && (!earliest || *time < *earliest)) earliest = time;
    return earliest;
}

FolderSentry::Outcome FolderSentry::attend(const std::stop_token& stop) {
    const auto now = Clock::now();
    if (napUntil_ && now >= *napUntil_) napUntil_.reset();
    if (events_ && !napUntil_ && takeNews(now) == Outcome::gone) return Outcome::gone;
    if (quietAt_ && now >= *quietAt_) {
        quietAt_.reset();
        // What is about to be listed is what the next look is compared with.
        return seen_ && look(stop) == Outcome::gone ? Outcome::gone : Outcome::changed;
    }
    return lookAt_ && now >= *lookAt_ ? look(stop) : Outcome::nothing;
}

FolderSentry::Outcome FolderSentry::takeNews(Clock::time_point now) {
    const auto news = events_->read();
    if (news.gone || (news.doubtful && !stillStands())) return goneOnce();
    if (news.changed) quietAt_ = now + pace_.quiet;
    if (news.changed || news.doubtful) napUntil_ = now + nap;
    return Outcome::nothing;
}

FolderSentry::Outcome FolderSentry::look(const std::stop_token& stop) {
    const auto began = Clock::now();
    const auto print = FolderFingerprint::of(url_, numbers_, stop);
    if (stop.stop_requested()) return Outcome::nothing;
    if (print ? !stillStands() : meansGone(print.error())) return goneOnce();
    const int failure = print ? 0 : print.error().number;
    const bool hasChanged = failure != lookFailure_ || (print && *print != seen_);
    lookFailure_ = failure;
    if (print) seen_ = *print;
    planLook(hasChanged, Clock::now() - began);
    return hasChanged ? Outcome::changed : Outcome::nothing;
}

FolderSentry::Outcome FolderSentry::goneOnce() {
    quietAt_ = lookAt_ = std::nullopt;
    if (isGone_) return Outcome::nothing;
    isGone_ = true;
    return Outcome::gone;
}

bool FolderSentry::stillStands() const {
    const auto status = POSIX::statFollowing(url_);
    if (!status) return !meansGone(status.error());
    return numbers_ == FolderFingerprint::Numbers::untrusted || status->identity == identity_;
}

void FolderSentry::planLook(bool hasChanged, Clock::duration took) {
    idleRest_ = hasChanged ? Clock::duration(pace_.shortestRest)
                           : std::min<Clock::duration>(idleRest_ * 5 / 4, pace_.longestIdleRest);
    const auto rest =
        std::min<Clock::duration>(std::max(idleRest_, took * pace_.restPerLook), pace_.longestRest);
    lookAt_ = Clock::now() + rest;
}

} // namespace ombrel
