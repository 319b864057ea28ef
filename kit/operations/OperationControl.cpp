#include "operations/OperationControl.h"

namespace ombrel {

bool OperationControl::isPaused() const {
    const std::scoped_lock lock(lock_);
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
    std::unique_lock lock(lock_);
    if (paused_) changed_.wait(lock, stop, [&] { return !paused_; });
    return !stop.stop_requested();
}

} // namespace ombrel
