#include "operations/SpeedMeter.h"

#include <algorithm>
#include <cmath>

namespace ombrel {

void SpeedMeter::apply(const OperationProgress& progress, double now) {
    constexpr double shortestInterval = 0.4;
    constexpr double weightOfOld = 0.6;
    if (progress.phase != OperationProgress::Phase::copying) return;
    if (!lastTime_) {
        lastTime_ = now;
        lastBytes_ = progress.completedBytes;
        return;
    }
    const double elapsed = now - *lastTime_;
    if (elapsed < shortestInterval) return;
    const double current = static_cast<double>(progress.completedBytes - lastBytes_) / elapsed;
    speed_ = speed_ ? weightOfOld * *speed_ + (1 - weightOfOld) * current : current;
    samples_.push_back({progress.fraction(), current});
    lastTime_ = now;
    lastBytes_ = progress.completedBytes;
}

std::optional<double> SpeedMeter::remainingSeconds(const OperationProgress& progress) const noexcept {
    if (!speed_ || !(*speed_ > 0) || progress.totalBytes < 1) return std::nullopt;
    const auto left = std::max<std::int64_t>(0, progress.totalBytes - progress.completedBytes);
    return static_cast<double>(left) / *speed_;
}

Text remainingTimeText(std::optional<double> seconds) {
    constexpr double longest = 1e15;
    if (!seconds || !std::isfinite(*seconds)) return {"progress.calculating"};
    const auto whole = static_cast<std::int64_t>(std::ceil(std::clamp(*seconds, 0.0, longest)));
    if (whole <= 59) return {"progress.aboutSeconds", {}, std::max<std::int64_t>(whole, 1)};
    if (whole <= 3599) return {"progress.aboutMinutes", {}, (whole + 59) / 60};
    return {"progress.aboutHours", {std::to_string((whole % 3600 + 59) / 60)}, whole / 3600};
}

} // namespace ombrel
