#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <utility>

namespace ombrel {

/// A question of a job's thread that somebody on another thread answers, or nobody: the job waits, with its
/// stop token, and whoever may answer holds the `Answerer`. When that goes unused, the answer is `fallback`,
/// so that no job waits for someone who is not there any more.
template <typename Decision>
class PendingAnswer {
    struct State {
        std::mutex mutex; // guards answer
        std::condition_variable_any answered;
        std::optional<Decision> answer;

        bool give(const Decision& decision) {
            {
                const std::scoped_lock lock(mutex);
                if (answer) return false;
                answer = decision;
            }
            answered.notify_all();
            return true;
        }
    };

public:
    /// The right to answer, once. Any thread.
    class Answerer {
    public:
        Answerer() = default;
        Answerer(Answerer&&) noexcept = default;
        Answerer& operator=(Answerer&&) = delete;
        ~Answerer() {
            if (state_) state_->give(fallback_);
        }
        [[nodiscard]] explicit operator bool() const noexcept { return state_ != nullptr; }
        void operator()(const Decision& decision) {
            if (const auto state = std::exchange(state_, nullptr)) state->give(decision);
        }

    private:
        friend PendingAnswer;
        Answerer(std::shared_ptr<State> state, const Decision& fallback)
            : state_(std::move(state)), fallback_(fallback) {}
        std::shared_ptr<State> state_;
        Decision fallback_{};
    };

    explicit PendingAnswer(const Decision& fallback) : fallback_(fallback) {}

    /// To be called once.
    [[nodiscard]] Answerer answerer() { return Answerer(state_, fallback_); }

    /// Blocks until the answer is there; `fallback` when `stop` comes first.
    [[nodiscard]] Decision wait(const std::stop_token& stop) {
        std::unique_lock lock(state_->mutex);
        state_->answered.wait(lock, stop, [this] { return state_->answer.has_value(); });
        return state_->answer.value_or(fallback_);
    }

private:
    std::shared_ptr<State> state_ = std::make_shared<State>();
    const Decision fallback_;
};

} // namespace ombrel
