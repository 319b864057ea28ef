#pragma once

#include "base/Text.h"
#include "operations/OperationProgress.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace ombrel {

/// How fast a job copies, from its progress reports: a smoothed speed, the history for a graph, the time it
/// will still take. Speed is measured while the phase is `copying`, at most once in 0.4 s. One thread at a
/// time.
class SpeedMeter {
public:
    struct Sample {
        double fraction;       ///< how far the job was, 0 to 1
        double bytesPerSecond; ///< over the interval that ended there
        friend bool operator==(const Sample&, const Sample&) = default;
    };

    /// `now` is in seconds, on any clock that only goes forward.
    void apply(const OperationProgress& progress, double now);

    /// Smoothed bytes per second; nothing before the second sample.
    [[nodiscard]] std::optional<double> speed() const noexcept { return speed_; }
    [[nodiscard]] const std::vector<Sample>& samples() const noexcept { return samples_; }
    /// Seconds; nothing when no speed is known, or no total.
    [[nodiscard]] std::optional<double> remainingSeconds(const OperationProgress& progress) const noexcept;

private:
    std::optional<double> lastTime_;
    std::int64_t lastBytes_ = 0;
    std::optional<double> speed_;
    std::vector<Sample> samples_;
};

/// "About 3 minutes". Minutes are rounded up on their own, so 7,199 seconds are 1 hour and 60 minutes.
[[nodiscard]] Text remainingTimeText(std::optional<double> seconds);

} // namespace ombrel
