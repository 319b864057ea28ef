#include "listing/ConcurrencyLimiter.h"

#include <algorithm>

namespace ombrel {

ConcurrencyLimiter::Slot ConcurrencyLimiter::acquire(std::stop_token stop) {
    std::unique_lock lock(mutex_);
    if (running_ < limit_) {
        ++running_;
        return Slot(this);
    }
    Waiter waiter;
    waiters_.push_back(&waiter);
    if (changed_.wait(lock, stop, [&] { return waiter.isServed; })) return Slot(this);
    std::erase(waiters_, &waiter);
    return Slot(nullptr);
}

void ConcurrencyLimiter::release() {
    const std::scoped_lock lock(mutex_);
    if (waiters_.empty()) {
        --running_;
        return;
    }
    waiters_.front()->isServed = true;
    waiters_.pop_front();
    changed_.notify_all();
}

int ConcurrencyLimiter::running() const {
    const std::scoped_lock lock(mutex_);
    return running_;
}

int ConcurrencyLimiter::waiting() const {
    const std::scoped_lock lock(mutex_);
    return static_cast<int>(waiters_.size());
}

} // namespace ombrel
