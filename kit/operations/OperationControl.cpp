#include "operations/OperationControl.h"

namespace ombrel {

bool OperationControl::isPaused() const {
    return paused_;
}

void OperationControl::setPaused(bool paused) {
    {
        const std::scoped_lock lock(lock_);
        paused_ = paused;
    }
    changed_.notify_all();
}

bool OperationControl::waitWhilePaused(const std::stop_token& stop) {
    if (!paused_.load(std::memory_order_relaxed)) return !stop.stop_requested();
    std::unique_lock lock(lock_);
    changed_.wait(lock, stop, [&] { return !paused_; });
    return !stop.stop_requested();
}

} // namespace ombrel
