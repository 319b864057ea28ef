#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <stop_token>
#include <system_error>
#include <thread>
#include <utility>

namespace ombrel {

/// Pieces of work that the thread that brings them shares with a second one, which is started once there are
/// two to do. Never more than a few wait, since each may hold descriptors. Where the system has no thread
/// left the first one does everything. Brought and finished on one thread; `Work` must not throw.
template <typename Work>
class HelpedQueue {
public:
    /// Who does a piece: each may have something of its own to do it with.
    enum class Hand { owner, helper };
    using Do = std::function<void(Work&, Hand)>;

    /// `doOne` is called on both threads.
    explicit HelpedQueue(Do doOne) : doOne_(std::move(doOne)) {}
    HelpedQueue(const HelpedQueue&) = delete;
    HelpedQueue& operator=(const HelpedQueue&) = delete;
    /// Drops what waits.
    ~HelpedQueue() { clear(); }

    /// One more piece; does one at once when many wait.
    void add(Work work) {
        bool isFull = false, isOnly = false;
        {
            const std::scoped_lock lock(lock_);
            isFull = waiting_.size() >= longest;
            isOnly = waiting_.empty();
            waiting_.push_back(std::move(work));
        }
        // One piece may be all there is, and then the other thread is not worth its start.
        if (!isOnly) callHelper();
        changed_.notify_all();
        if (isFull) (void)doOne();
    }

    /// From now on the other thread helps.
    void callHelper() {
        if (helper_.joinable()) return;
        try {
            helper_ = std::jthread([this](const std::stop_token& stop) { help(stop); });
        } catch (const std::system_error&) {
            // What it would have done is done here.
        }
    }

    /// Does one of the pieces that wait, on this thread; answers whether there was any.
    bool doOne() { return takeOne(Hand::owner); }

    /// Waits until the other thread has done everything that waits.
    void waitUntilIdle() {
        std::unique_lock lock(lock_);
        changed_.wait(lock, [this] { return !isBusy_ && (waiting_.empty() || !helper_.joinable()); });
    }

    /// Does everything that waits, on both threads.
    void finish() {
        while (doOne()) {
        }
        waitUntilIdle();
    }

    /// Drops what waits and waits for what is being done.
    void clear() {
        std::unique_lock lock(lock_);
        waiting_.clear();
        changed_.wait(lock, [this] { return !isBusy_; });
    }

private:
    static constexpr std::size_t longest = 16;

    void help(const std::stop_token& stop) {
        while (!stop.stop_requested()) {
            {
                std::unique_lock lock(lock_);
                if (!changed_.wait(lock, stop, [this] { return !waiting_.empty(); })) return;
                isBusy_ = true;
            }
            (void)takeOne(Hand::helper);
            {
                const std::scoped_lock lock(lock_);
                isBusy_ = false;
            }
            changed_.notify_all();
        }
    }

    bool takeOne(Hand hand) {
        Work work;
        {
            const std::scoped_lock lock(lock_);
            if (waiting_.empty()) return false;
            work = std::move(waiting_.front());
            waiting_.pop_front();
        }
        doOne_(work, hand);
        return true;
    }

    const Do doOne_;
    std::mutex lock_; // guards what follows
    std::condition_variable_any changed_;
    std::deque<Work> waiting_;
    bool isBusy_ = false; // the other thread

    std::jthread helper_; // last, so that it ends before what it uses
};

} // namespace ombrel
