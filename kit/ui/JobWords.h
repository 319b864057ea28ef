#pragma once

#include "services/OperationJob.h"

#include <QString>

#include <optional>

/// What the progress window says about a job.
namespace ombrel::JobWords {

/// Whole percent, rounded down.
[[nodiscard]] int percent(double fraction);
/// Whether its data flows, so that there is a speed to show.
[[nodiscard]] bool hasSpeed(FileOperationKind kind);
/// How the job is doing, in a line. `percent` is the highest that was shown.
[[nodiscard]] QString state(const OperationJob& job, int percent);

/// "462 (14.8 GB)".
[[nodiscard]] QString remaining(const OperationProgress& progress);
/// "26.3 GB of 41.1 GB", or items where there are no bytes.
[[nodiscard]] QString done(const OperationProgress& progress);
/// "About 3 minutes".
[[nodiscard]] QString timeLeft(std::optional<double> seconds);

} // namespace ombrel::JobWords
