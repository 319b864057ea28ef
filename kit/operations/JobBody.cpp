#include "operations/JobBody.h"

#include "listing/BlockDevice.h"
#include "listing/MountTable.h"
#include "listing/POSIX.h"

#include <algorithm>
#include <cerrno>
#include <new>
#include <set>
#include <utility>

namespace ombrel {
namespace {

std::int64_t countConflicts(const JobPlan& plan) {
    return std::ranges::count_if(plan.sources, [&](const FileURL& source) {
        return POSIX::lstat(plan.destination->appending(source.name())).has_value();
    });
}

bool isTransfer(const JobPlan& plan) {
    return plan.data != JobPlan::Data::none && plan.destination &&
           (plan.kind == FileOperationKind::copy || plan.kind == FileOperationKind::move);
}

/// The slow drives that the job's data goes from and to.
std::vector<DriveQueue::Drive> drivesOf(const JobPlan& plan, const SlowDrives& slowDrives) {
    if (plan.data == JobPlan::Data::none) return {};
    const auto target = plan.destination ? POSIX::statFollowing(*plan.destination)
                                         : POSIX::Result<FileStatus>(std::unexpected(POSIXFailure{ENOENT}));
    std::set<std::pair<std::uint64_t, std::uint64_t>> seen; // mounts, by number and device
    std::set<DriveQueue::Drive> drives;
    const auto add = [&](const FileStatus& status) {
        if (!seen.emplace(status.mountID, status.identity.device).second) return;
        for (const auto drive : slowDrives(status))
            drives.insert(drive);
    };
    bool copies = plan.data == JobPlan::Data::copied;
    for (const auto& source : plan.sources) {
        const auto status = POSIX::lstat(source);
        if (!status) continue;
        const bool isRenamed = plan.data == JobPlan::Data::moved && target &&
                               status->mountID == target->mountID &&
                               status->identity.device == target->identity.device;
        if (isRenamed) continue;
        copies = true;
        add(*status);
    }
    if (copies && target) add(*target);
    return {drives.begin(), drives.end()};
}

} // namespace

std::vector<DriveQueue::Drive> slowDrivesOf(const FileStatus& status) {
    std::vector<DriveQueue::Drive> slow;
    const auto table = MountTable::current();
    const Mount* const mount = table.of(status);
    if (!mount || !mount->blockDevice) return slow;
    for (const auto& drive : BlockDrive::under(*mount->blockDevice))
        if (drive.isRotational || drive.isRemovable) slow.push_back(drive.number);
    return slow;
}

JobResult runJob(JobPlan& plan, const OperationHooks& hooks, const JobEvents& events,
                 DriveQueue::Place& place, const SlowDrives& slowDrives, const std::stop_token& stop) {
    try {
        if (isTransfer(plan)) events.countedConflicts(countConflicts(plan));
        if (!place.wait(drivesOf(plan, slowDrives), events.waits, stop))
            return {plan.reportOfAll(ItemOutcome::cancelled())};
        events.begins();
        JobResult result{plan.work(hooks, stop)};
        if (plan.undo) result.undo = plan.undo(result.report);
        plan.work = nullptr;
        place.leave();
        return result;
    } catch (const std::bad_alloc&) {
        return {plan.reportOfAll(ItemOutcome::failed(FileOperationError::posix(ENOMEM)))};
    }
}

} // namespace ombrel
