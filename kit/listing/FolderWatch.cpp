#include "listing/FolderWatch.h"

#include "base/OwnedFd.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <system_error>
#include <utility>

namespace ombrel {

/// What the handle, those who wait and the watch's thread share.
struct FolderWatch::Shared {
    const FileURL url;
    const Pace pace;
    const Teller teller;
    const OwnedFd bell{::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};

    std::mutex mutex; // guards what follows
    std::condition_variable_any settling;
    std::uint64_t asked = 0;              ///< number of the latest renewal
    std::optional<std::uint64_t> settled; ///< up to which number the thread has done what it was asked to
    bool isLate = false;                  ///< somebody went ahead before it had

    Shared(FileURL folder, const Pace& rhythm, Teller told)
        : url(std::move(folder)), pace(rhythm), teller(std::move(told)) {
        if (!bell) throw std::system_error(errno, std::generic_category());
    }

    void ring() const {
        const std::uint64_t one = 1;
        (void)!::write(bell.get(), &one, sizeof one);
    }
    void silence() const {
        std::uint64_t count = 0;
        (void)!::read(bell.get(), &count, sizeof count);
    }

    /// What the thread has to do next, if anything.
    std::optional<std::uint64_t> due() {
        const std::scoped_lock lock(mutex);
        return settled && *settled >= asked ? std::nullopt : std::optional(asked);
    }
    /// Answers whether somebody has not waited for it.
    bool settle(std::uint64_t number) {
        const std::scoped_lock lock(mutex);
        settled = number;
        settling.notify_all();
        return std::exchange(isLate, false);
    }
};

namespace {

void sleep(const FolderSentry& folder, int bell) {
    pollfd sources[] = {{bell, POLLIN, 0}, {folder.fd(), POLLIN, 0}};
    timespec rest{};
    const auto wakeTime = folder.wakeTime();
    if (wakeTime) {
        const auto left = std::max(*wakeTime - FolderSentry::Clock::now(), FolderSentry::Clock::duration(0));
        const auto seconds = std::chrono::floor<std::chrono::seconds>(left);
        rest = {static_cast<time_t>(seconds.count()),
                static_cast<long>(std::chrono::nanoseconds(left - seconds).count())};
    }
    (void)::ppoll(sources, std::size(sources), wakeTime ? &rest : nullptr, nullptr);
}

} // namespace

void FolderWatch::run(Shared& shared, const std::stop_token& stop) {
    const std::stop_callback wake(stop, [&shared] { shared.ring(); });
    FolderSentry folder(shared.url, shared.pace);
    while (!stop.stop_requested()) {
        if (const auto number = shared.due()) {
            const auto armed = folder.arm(stop);
            if (stop.stop_requested()) break;
            if (shared.settle(*number) && armed) folder.noteChange();
            shared.teller.begun(*number, armed);
        }
        sleep(folder, shared.bell.get());
        shared.silence();
        if (stop.stop_requested()) break;
        switch (folder.attend(stop)) {
        case FolderSentry::Outcome::nothing: break;
        case FolderSentry::Outcome::changed: shared.teller.changed(); break;
        case FolderSentry::Outcome::gone: shared.teller.gone(); break;
        }
    }
    // Nobody has to wait for a watch that has ended.
    shared.settle(UINT64_MAX);
}

FolderWatch::FolderWatch(const FileURL& url, const Pace& pace, Teller teller)
    : shared_(std::make_shared<Shared>(url, pace, std::move(teller))),
      worker_(Worker::sentry("ombrel-watch",
                             [shared = shared_](const std::stop_token& stop) { run(*shared, stop); })) {}

std::uint64_t FolderWatch::renew() {
    const std::scoped_lock lock(shared_->mutex);
    shared_->ring();
    return ++shared_->asked;
}

FolderWatch::Arming FolderWatch::arming() const {
    if (!shared_) return {};
    const std::scoped_lock lock(shared_->mutex);
    return {shared_, shared_->asked};
}

void FolderWatch::Arming::wait(std::chrono::milliseconds limit, const std::stop_token& stop) const {
    if (!shared_) return;
    std::unique_lock lock(shared_->mutex);
    const auto isSettled = [this] { return shared_->settled && *shared_->settled >= number_; };
    if (!shared_->settling.wait_for(lock, stop, limit, isSettled)) shared_->isLate = true;
}

} // namespace ombrel
