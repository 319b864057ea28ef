#pragma once

#include "operations/OperationHooks.h"
#include "operations/OperationReport.h"

#include <chrono>
#include <optional>
#include <stop_token>

namespace ombrel {

/// What one job over a list of items carries with it: the caller's hooks, the answers that stand for the rest
/// of the job, and how far it has come. Used on the job's thread alone.
class JobRun {
public:
    JobRun(const OperationHooks& hooks, std::stop_token stop);

    /// To be changed by the job, then told with `tell` or `tellSometimes`.
    OperationProgress progress;

    /// Waits while the job is paused. Answers whether it is to go on: not once it is cancelled.
    [[nodiscard]] bool goesOn();
    /// Whether the job is to wait now; `goesOn` does so.
    [[nodiscard]] bool isPaused() const { return hooks_.control && hooks_.control->isPaused(); }
    /// The user or the caller has cancelled the job; never taken back.
    [[nodiscard]] bool isCancelled() const { return cancelled_ || stop_.stop_requested(); }
    /// Cancels the job, as the user does in answer to a question. It is not paused any more either.
    void cancel();
    [[nodiscard]] const std::stop_token& stop() const noexcept { return stop_; }

    /// What to do about a failure: the standing answer, or the caller's. `retry` never stands; without a hook
    /// the answer is `skip`. `cancel` also cancels the job.
    [[nodiscard]] ErrorChoice ask(const ErrorContext& context);

    /// Reports the progress now.
    void tell();
    /// Reports it unless a report went out within the last 80 ms.
    void tellSometimes();

private:
    const OperationHooks& hooks_;
    std::stop_token stop_;
    std::optional<ErrorChoice> standing_;
    bool cancelled_ = false;
    std::chrono::steady_clock::time_point lastReport_;
};

} // namespace ombrel
