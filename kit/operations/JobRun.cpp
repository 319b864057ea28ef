#include "operations/JobRun.h"

#include <utility>

namespace ombrel {

JobRun::JobRun(const OperationHooks& hooks, std::stop_token stop) : hooks_(hooks), stop_(std::move(stop)) {}

bool JobRun::goesOn() {
    if (hooks_.control) (void)hooks_.control->waitWhilePaused(stop_);
    return !isCancelled();
}

void JobRun::cancel() {
    cancelled_ = true;
    if (hooks_.control) hooks_.control->setPaused(false);
}

ErrorChoice JobRun::ask(const ErrorContext& context) {
    if (isCancelled()) return ErrorChoice::cancel;
    ErrorDecision decision{standing_.value_or(ErrorChoice::skip), false};
    if (!standing_ && hooks_.errors) decision = hooks_.errors(context, stop_);
    if (decision.choice == ErrorChoice::cancel) cancel();
    if (decision.applyToAll && decision.choice != ErrorChoice::retry) standing_ = decision.choice;
    return decision.choice;
}

void JobRun::tell() {
    lastReport_ = std::chrono::steady_clock::now();
    if (hooks_.progress) hooks_.progress(progress);
}

void JobRun::tellSometimes() {
    constexpr auto interval = std::chrono::milliseconds(80);
    if (hooks_.progress && std::chrono::steady_clock::now() - lastReport_ > interval) tell();
}

} // namespace ombrel
