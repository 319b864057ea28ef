#pragma once

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <stop_token>

namespace ombrel {

/// The pause switch of a job, shared between the job and its owner. Any thread.
class OperationControl {
public:
    [[nodiscard]] bool isPaused() const;
    void setPaused(bool paused);

    /// Blocks the job while it is paused; ends at once when the pause does or `stop` is requested. Answers
    /// whether the job may go on. Cheap enough to be asked for every chunk.
    bool waitWhilePaused(const std::stop_token& stop);

private:
    std::mutex lock_; // guards the change of paused_
    std::condition_variable_any changed_;
    std::atomic<bool> paused_ = false; // so that a job that is not paused only looks
};

} // namespace ombrel
