#pragma once

#include "cli/Command.h"
#include "operations/OperationProgress.h"
#include "operations/SpeedMeter.h"

#include <chrono>
#include <string>

namespace ombrel::cli {

/// The line on a terminal that shows how far a job is: a bar, percent, bytes, speed, time left, name. It
/// appears when a job has run for half a second. Main thread, which has nothing else to do.
class ProgressLine {
public:
    explicit ProgressLine(const Session& session);

    void show(const OperationProgress& progress);

    /// The line for a terminal of `columns`; without an end.
    [[nodiscard]] std::string text(const OperationProgress& progress, int columns);

private:
    [[nodiscard]] std::string amounts(const OperationProgress& progress) const;

    const Session& session_;
    std::chrono::steady_clock::time_point start_;
    SpeedMeter speed_;
    int percent_ = 0; // never goes back
};

} // namespace ombrel::cli
