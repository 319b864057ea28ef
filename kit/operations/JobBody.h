#pragma once

#include "listing/FileStatus.h"
#include "operations/DriveQueue.h"
#include "operations/JobPlan.h"
#include "operations/OperationHooks.h"
#include "operations/OperationReport.h"

#include <cstdint>
#include <functional>
#include <stop_token>
#include <vector>

namespace ombrel {

/// What a job came to.
struct JobResult {
    OperationReport report;
    FileUndoStep undo = {}; ///< empty when nothing was done, or what was done cannot be undone
};

/// What a job tells of itself before its work begins. Called on the job's thread.
struct JobEvents {
    /// How many of the items have a name that is taken at the destination; told by transfers.
    std::function<void(std::int64_t)> countedConflicts;
    /// The places in the queue that the job waits for now.
    std::function<void(const std::vector<DriveQueue::Number>& ahead)> waits;
    std::function<void()> begins;
};

/// The drives below something that others should not use at the same time: spinning and removable ones.
using SlowDrives = std::function<std::vector<DriveQueue::Drive>(const FileStatus&)>;
[[nodiscard]] std::vector<DriveQueue::Drive> slowDrivesOf(const FileStatus& status);

/// A whole job: counts the conflicts, waits for its turn, works, and gives its place in the queue up. Always
/// answers with a report. Blocking.
[[nodiscard]] JobResult runJob(JobPlan& plan, const OperationHooks& hooks, const JobEvents& events,
                               DriveQueue::Place& place, const SlowDrives& slowDrives,
                               const std::stop_token& stop);

} // namespace ombrel
