#include "services/OperationJob.h"

#include "base/FileName.h"
#include "operations/JobTexts.h"

#include <QPointer>

#include <utility>

namespace ombrel {
namespace {

std::optional<FileURL> sourceFolderOf(const JobPlan& plan) {
    if (plan.sources.empty()) return std::nullopt;
    return plan.sources.front().parent();
}

std::string displayName(const std::optional<FileURL>& folder) {
    if (!folder) return {};
    return FileName::displayText(folder->title());
}

} // namespace

OperationJob::OperationJob(const JobPlan& plan, std::shared_ptr<DriveQueue::Place> place)
    : kind_(plan.kind), itemCount_(plan.sources.empty() ? 1 : static_cast<std::int64_t>(plan.sources.size())),
      leavesReport_(plan.leavesReport), sourceFolder_(sourceFolderOf(plan)),
      destinationFolder_(plan.destination), sourceName_(displayName(sourceFolder_)),
      destinationName_(displayName(destinationFolder_)), place_(std::move(place)) {}

OperationJob::~OperationJob() = default;

Text OperationJob::title() const {
    return titleOf(kind_, itemCount_, sourceName_, destinationName_);
}

std::optional<Text> OperationJob::waitingText() const {
    for (const auto& ahead : waitsFor_)
        if (const auto job = ahead.lock()) return ombrel::waitingText(job->title());
    return std::nullopt;
}

void OperationJob::cancel() {
    if (isCancelling_ || stage_ == Stage::ended) return;
    isCancelling_ = true;
    isPaused_ = false;
    control_->setPaused(false);
    worker_.requestStop();
    const QPointer guard(this);
    if (const auto prompt = prompt_) {
        if (std::holds_alternative<OperationPrompt::Conflict>(prompt->kind()))
            prompt->answer(ConflictChoice::cancel, true);
        else
            prompt->answer(ErrorChoice::cancel);
    }
    if (!guard) return;
    updateIdle();
    Q_EMIT stateChanged();
}

void OperationJob::apply(const OperationProgress& progress, double now) {
    progress_ = progress;
    meter_.apply(progress, now);
    Q_EMIT progressChanged();
}

void OperationJob::setPaused(bool paused) {
    if (isPaused_ == paused || isCancelling_ || stage_ == Stage::ended) return;
    isPaused_ = paused;
    control_->setPaused(paused);
    updateIdle();
    Q_EMIT stateChanged();
}

void OperationJob::setStage(Stage stage) {
    if (stage_ == stage) return;
    stage_ = stage;
    if (stage != Stage::waiting) waitsFor_.clear();
    Q_EMIT stateChanged();
}

void OperationJob::setPrompt(std::shared_ptr<OperationPrompt> prompt) {
    prompt_ = std::move(prompt);
    updateIdle();
    Q_EMIT promptChanged();
}

void OperationJob::setWaitsFor(std::vector<std::weak_ptr<OperationJob>> jobs) {
    waitsFor_ = std::move(jobs);
    stage_ = Stage::waiting;
    Q_EMIT stateChanged();
}

void OperationJob::updateIdle() {
    place_->setIdle(isPaused_ || prompt_);
}

void OperationJob::letGo() {
    control_->setPaused(false);
    worker_.requestStop();
    // Whoever still holds the job must not keep its thread waiting for an answer.
    prompt_.reset();
    done_ = nullptr;
    stage_ = Stage::ended;
}

} // namespace ombrel
