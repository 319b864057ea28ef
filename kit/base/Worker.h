#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <stop_token>

namespace ombrel {

/// One piece of work on a thread of its own, held by a handle that can ask it to stop.
///
/// Destroying or replacing the handle asks the work to stop and forgets it: nobody waits, because a thread
/// inside a dead network mount may not answer for minutes. The work therefore owns everything it touches. Any
/// thread.
class Worker {
public:
    using Body = std::move_only_function<void(std::stop_token)>;

    Worker() noexcept = default;
    /// Starts `body`. `name` (at most 15 bytes) is shown by debuggers. Throws `std::system_error` when the
    /// system has no thread left.
    Worker(const char* name, Body body);
    /// Starts work that waits for something to happen until it is asked to stop, like a watch over a folder.
    /// It counts as running only from that moment on: before, there is nothing that anybody could wait for.
    [[nodiscard]] static Worker sentry(const char* name, Body body);
    Worker(Worker&&) noexcept = default;
    Worker& operator=(Worker&& other) noexcept;
    ~Worker() { requestStop(); }

    void requestStop() noexcept { stop_.request_stop(); }
    /// Lets the work go on to its end without a handle.
    void detach() noexcept { stop_ = std::stop_source(std::nostopstate); }

    /// How many workers of the process have not ended, sentries on duty left out. For shutting down and for
    /// tests.
    [[nodiscard]] static std::size_t running() noexcept;
    /// Waits until none runs, for at most `limit`. Answers whether none runs.
    static bool waitUntilNoneRuns(std::chrono::milliseconds limit);

private:
    std::stop_source stop_{std::nostopstate};
};

} // namespace ombrel
