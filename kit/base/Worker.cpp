#include "base/Worker.h"

#include <pthread.h>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

namespace ombrel {
namespace {

// Never destroyed: a worker that outlives main() still counts itself out.
struct Census {
    std::mutex mutex; // guards running
    std::condition_variable changed;
    std::size_t running = 0;
};

Census& census() {
    static auto& instance = *new Census;
    return instance;
}

struct Presence {
    Presence() {
        const std::scoped_lock lock(census().mutex);
        ++census().running;
    }
    Presence(Presence&& other) noexcept : counts(std::exchange(other.counts, false)) {}
    Presence& operator=(Presence&&) = delete;
    ~Presence() {
        if (!counts) return;
        const std::scoped_lock lock(census().mutex);
        --census().running;
        census().changed.notify_all();
    }
    bool counts = true;
};

} // namespace

Worker::Worker(const char* name, Body body) : stop_(std::stop_source()) {
    // The closure's members go before `presence` does, so that whoever waits sees their effects.
    std::thread([presence = Presence(), name, token = stop_.get_token(), work = std::move(body)]() mutable {
        ::pthread_setname_np(::pthread_self(), name);
        work(token);
        work = nullptr;
    }).detach();
}

Worker Worker::sentry(const char* name, Body body) {
    /// Counts the sentry from the request to stop on, even when its thread has not begun by then.
    struct Relief {
        std::optional<Presence> presence;
        std::stop_callback<std::function<void()>> onStop;
        explicit Relief(const std::stop_token& token) : onStop(token, [this] { presence.emplace(); }) {}
    };
    Worker worker;
    worker.stop_ = std::stop_source();
    std::thread([relief = std::make_unique<Relief>(worker.stop_.get_token()), name,
                 token = worker.stop_.get_token(), work = std::move(body)]() mutable {
        ::pthread_setname_np(::pthread_self(), name);
        work(token);
        work = nullptr;
    }).detach();
    return worker;
}

Worker& Worker::operator=(Worker&& other) noexcept {
    if (this != &other) {
        requestStop();
        stop_ = std::move(other.stop_);
    }
    return *this;
}

std::size_t Worker::running() noexcept {
    const std::scoped_lock lock(census().mutex);
    return census().running;
}

bool Worker::waitUntilNoneRuns(std::chrono::milliseconds limit) {
    std::unique_lock lock(census().mutex);
    return census().changed.wait_for(lock, limit, [] { return census().running == 0; });
}

} // namespace ombrel
