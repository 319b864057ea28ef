#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <stop_token>
#include <type_traits>
#include <utility>

namespace ombrel {

/// Lets at most `limit` bodies run at once; the others wait in the order of their arrival. Any thread but the
/// main one.
class ConcurrencyLimiter {
public:
    /// Below 1 counts as 1.
    explicit ConcurrencyLimiter(int limit) noexcept : limit_(limit < 1 ? 1 : limit) {}
    ConcurrencyLimiter(const ConcurrencyLimiter&) = delete;
    ConcurrencyLimiter& operator=(const ConcurrencyLimiter&) = delete;

    /// A slot that is held; gives it back, to the oldest waiter if there is one.
    class Slot {
    public:
        Slot(Slot&& other) noexcept : owner_(std::exchange(other.owner_, nullptr)) {}
        Slot& operator=(Slot&&) = delete;
        ~Slot() {
            if (owner_) owner_->release();
        }
        /// False when the wait was cancelled: then no slot is held.
        [[nodiscard]] explicit operator bool() const noexcept { return owner_ != nullptr; }

    private:
        friend class ConcurrencyLimiter;
        explicit Slot(ConcurrencyLimiter* owner) noexcept : owner_(owner) {}
        ConcurrencyLimiter* owner_;
    };

    /// Waits for a slot. Blocking.
    [[nodiscard]] Slot acquire(std::stop_token stop = {});

    [[nodiscard]] int running() const;
    [[nodiscard]] int waiting() const;

private:
    struct Waiter {
        bool isServed = false;
    };
    void release();

    const int limit_;
    mutable std::mutex mutex_; // guards everything below
    std::condition_variable_any changed_;
    int running_ = 0;
    std::deque<Waiter*> waiters_; // oldest first
};

} // namespace ombrel
