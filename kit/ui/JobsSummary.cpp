#include "ui/JobsSummary.h"

#include "ui/Formats.h"
#include "ui/JobWords.h"
#include "ui/LocalizedText.h"

#include <algorithm>

namespace ombrel {

void JobsSummary::add(const std::shared_ptr<OperationJob>& job) {
    if (std::ranges::find(jobs_, job) != jobs_.end() || job->stage() == OperationJob::Stage::ended) return;
    jobs_.push_back(job);
    connect(job.get(), &OperationJob::progressChanged, this, &JobsSummary::refresh);
    connect(job.get(), &OperationJob::stateChanged, this, &JobsSummary::refresh);
    connect(job.get(), &OperationJob::promptChanged, this, &JobsSummary::refresh);
    connect(job.get(), &OperationJob::ended, this, [this, which = job.get()] { remove(which); });
    percent_ = 0;
    refresh();
}

void JobsSummary::remove(const OperationJob* job) {
    disconnect(job, nullptr, this, nullptr);
    std::erase_if(jobs_, [job](const auto& held) { return held.get() == job; });
    percent_ = 0;
    refresh();
}

bool JobsSummary::isAsking() const {
    return std::ranges::any_of(jobs_, [](const auto& job) { return job->prompt() != nullptr; });
}

bool JobsSummary::areAllPaused() const {
    return !jobs_.empty() && std::ranges::all_of(jobs_, [](const auto& job) { return job->isPaused(); });
}

double JobsSummary::fraction() const {
    if (jobs_.empty()) return 0;
    double done = 0, total = 0, shares = 0;
    bool haveAllBytes = true;
    for (const auto& job : jobs_) {
        const OperationProgress& progress = job->progress();
        haveAllBytes = haveAllBytes && progress.totalBytes > 0;
        done += static_cast<double>(std::min(progress.completedBytes, progress.totalBytes));
        total += static_cast<double>(progress.totalBytes);
        shares += job->fractionCompleted();
    }
    return haveAllBytes ? done / total : shares / static_cast<double>(jobs_.size());
}

void JobsSummary::refresh() {
    percent_ = std::max(percent_, JobWords::percent(fraction()));
    Q_EMIT changed();
}

QString JobsSummary::title() const {
    if (jobs_.empty()) return {};
    const QString state = isAsking() ? localized("ui.progress.waitingForAnswer")
                          : areAllPaused()
                              ? localized("ui.progress.window.allPaused")
                              : localized("ui.progress.complete", {Formats::number(percent_).toStdString()});
    if (jobs_.size() == 1) return state;
    return localized("ui.progress.window.jobs", static_cast<std::int64_t>(jobs_.size()),
                     {state.toStdString()});
}

} // namespace ombrel
