#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <stop_token>
#include <vector>

namespace ombrel {

/// Lets jobs that copy data to or from the same slow drive run one after another, in the order in which they
/// were started: a spinning disk or a stick that serves two copies at once is slower than one after the
/// other.
///
/// A job that is paused or waits for an answer holds nobody up, and one that is told to start now does. Any
/// thread; only `Place::wait` blocks.
class DriveQueue {
    struct Line;

public:
    using Drive = std::uint64_t;
    using Number = std::uint64_t;

    /// The place of one job in the queue, until it leaves or goes. Any thread.
    class Place {
    public:
        ~Place() { leave(); }
        Place(const Place&) = delete;
        Place& operator=(const Place&) = delete;

        /// Counted from 1 in the order of `join`.
        [[nodiscard]] Number number() const noexcept { return number_; }

        /// Waits until no job ahead uses one of the drives. `waiting` is told whom the job waits for whenever
        /// that changes, on the calling thread; not at all when it need not wait. Answers false when `stop`
        /// came first. Once for each place, on the job's thread.
        [[nodiscard]] bool wait(std::vector<Drive> drives,
                                const std::function<void(const std::vector<Number>& ahead)>& waiting,
                                const std::stop_token& stop);

        /// Ends the wait, or makes that there will be none.
        void startNow();
        /// Whether the job, for now, does nothing that others would have to wait for.
        void setIdle(bool isIdle);
        /// The job uses no drive any more; nothing here has an effect from now on.
        void leave();

    private:
        friend class DriveQueue;
        Place(std::shared_ptr<Line> line, Number number);
        std::shared_ptr<Line> line_;
        const Number number_;
    };

    DriveQueue();

    [[nodiscard]] std::shared_ptr<Place> join();

private:
    std::shared_ptr<Line> line_;
};

} // namespace ombrel
