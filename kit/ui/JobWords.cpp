#include "ui/JobWords.h"

#include "ui/Formats.h"
#include "ui/LocalizedText.h"

#include <algorithm>
#include <string>
#include <utility>

namespace ombrel::JobWords {
namespace {

using Phase = OperationProgress::Phase;

std::string numberOf(std::int64_t count) {
    return Formats::number(count).toStdString();
}

} // namespace

int percent(double fraction) {
    constexpr int whole = 100;
    return static_cast<int>(std::clamp(fraction, 0.0, 1.0) * whole);
}

bool hasSpeed(FileOperationKind kind) {
    return kind == FileOperationKind::copy || kind == FileOperationKind::move;
}

QString state(const OperationJob& job, int percent) {
    const OperationProgress& progress = job.progress();
    const std::string shown = numberOf(percent);
    if (job.isCancelling()) return localized("ui.progress.cancelling");
    if (job.isPaused()) return localized("ui.progress.paused", {shown});
    if (const auto waiting = job.waitingText()) return localized(*waiting);
    switch (progress.phase) {
    case Phase::preparing: return localized("ui.progress.preparing", progress.totalItems);
    case Phase::copying: return localized("ui.progress.complete", {shown});
    case Phase::verifying: return localized("ui.progress.verifying", {shown});
    case Phase::removingSource: return localized(textOf(progress.phase));
    case Phase::trashing:
    case Phase::deleting:
        return localized("ui.progress.counted",
                         {textOf(progress.phase).localized(), numberOf(progress.completedItems),
                          numberOf(progress.totalItems)});
    }
    std::unreachable();
}

QString remaining(const OperationProgress& progress) {
    const auto items =
        Formats::number(std::max<std::int64_t>(0, progress.totalItems - progress.completedItems));
    if (progress.totalBytes < 1) return items;
    const auto bytes = std::max<std::int64_t>(0, progress.totalBytes - progress.completedBytes);
    return localized("ui.progress.remaining", {items.toStdString(), Formats::size(bytes).toStdString()});
}

QString done(const OperationProgress& progress) {
    if (progress.totalBytes < 1)
        return localized("ui.progress.of",
                         {numberOf(progress.completedItems), numberOf(progress.totalItems)});
    const auto bytes = std::min(progress.completedBytes, progress.totalBytes);
    return localized("ui.progress.of",
                     {Formats::size(bytes).toStdString(), Formats::size(progress.totalBytes).toStdString()});
}

QString timeLeft(std::optional<double> seconds) {
    return localized(remainingTimeText(seconds));
}

} // namespace ombrel::JobWords
