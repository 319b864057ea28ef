#include "operations/TransferRun.h"

#include <utility>

namespace ombrel {

TransferRun::TransferRun(FileOperationKind jobKind, const OperationHooks& hooks, FileOperationFaults wanted,
                         std::stop_token stop)
    : kind(jobKind), faults(wanted), job_(hooks, stop), hooks_(hooks),
      goesOnAnywhere_([this, control = hooks.control, token = std::move(stop)] {
          if (control) (void)control->waitWhilePaused(token);
          return !token.stop_requested() && !isAbandoned_.load(std::memory_order_relaxed);
      }) {}

void TransferRun::enter(OperationProgress::Phase phase) {
    if (job_.progress.phase == phase) return;
    job_.progress.phase = phase;
    job_.tellSometimes();
}

bool TransferRun::goesOn() {
    return job_.goesOn();
}

ConflictChoice TransferRun::ask(const ConflictContext& context, const FileIdentity& existing) {
    if (job_.isCancelled()) return ConflictChoice::cancel;
    const bool areFolders = context.sourceIsDirectory && context.existingIsDirectory;
    const bool isUnequal = context.sourceIsDirectory != context.existingIsDirectory;
    const bool isUncovered = isUnequal || (!areFolders && brought_.contains(existing));
    if (standingConflict_ && !(*standingConflict_ == ConflictChoice::replace && isUncovered))
        return *standingConflict_;
    if (!hooks_.conflicts) return ConflictChoice::skip;
    if (beforeQuestion) beforeQuestion();
    const auto decision = hooks_.conflicts(context, job_.stop());
    if (decision.choice == ConflictChoice::cancel) {
        job_.cancel();
        isAbandoned_ = true;
    }
    if (decision.applyToAll) standingConflict_ = decision.choice;
    return decision.choice;
}

ErrorChoice TransferRun::ask(const ErrorContext& context) {
    if (beforeQuestion) beforeQuestion();
    const auto choice = job_.ask(context);
    if (choice == ErrorChoice::cancel) isAbandoned_ = true;
    return choice;
}

void TransferRun::beginItem(const FileURL& source, const FileURL& destination,
                            std::map<std::string, FileOperationError> leftOut) {
    source_ = source;
    destination_ = destination;
    unwanted_ = std::move(leftOut);
    leftOutResults_.clear();
    copiedInItem_ = 0;
}

void TransferRun::keepItem() {
    finishedBytes_ += std::exchange(copiedInItem_, 0);
    count();
}

void TransferRun::dropItem() {
    copiedInItem_ = 0;
    leftOutResults_.clear();
    count();
}

void TransferRun::count() {
    job_.progress.completedBytes = finishedBytes_ + copiedInItem_;
}

bool TransferRun::begins(std::string_view name) {
    job_.progress.currentName = name;
    job_.tellSometimes();
    return job_.goesOn();
}

bool TransferRun::copied(std::int64_t bytes) {
    copiedInItem_ += bytes;
    count();
    job_.tellSometimes();
    return job_.goesOn();
}

ErrorChoice TransferRun::failed(const std::string& path, const FileOperationError& error) {
    const auto below = [&](const FileURL& top) {
        return FileURL::fromPath(top.path() + "/" + path).value_or(top);
    };
    const FileURL source = below(source_);
    auto choice = ErrorChoice::skip;
    if (!unwanted_.contains(path)) choice = ask(ErrorContext{kind, source, below(destination_), error});
    if (choice == ErrorChoice::skip) leftOutResults_.push_back({source, ItemOutcome::failed(error)});
    return choice;
}

} // namespace ombrel
