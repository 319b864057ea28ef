#pragma once

#include "base/Hash.h"
#include "listing/FileStatus.h"
#include "operations/CopyEngine.h"
#include "operations/FileOperationFaults.h"
#include "operations/JobRun.h"
#include "operations/OperationHooks.h"
#include "operations/OperationReport.h"
#include "operations/TrashBackend.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <stop_token>
#include <string>
#include <unordered_set>
#include <vector>

namespace ombrel {

/// What one copy or move job carries with it: hooks, standing answers, progress, results. It also watches the
/// data copies. Used on the job's thread, but for `goesOnAnywhere`.
class TransferRun final : public CopyObserver {
public:
    TransferRun(FileOperationKind kind, const OperationHooks& hooks, FileOperationFaults faults,
                std::stop_token stop);

    const FileOperationKind kind;
    const FileOperationFaults faults;
    std::vector<ItemResult> results;

    [[nodiscard]] OperationProgress& progress() noexcept { return job_.progress; }
    void tell() { job_.tell(); }
    void tellSometimes() { job_.tellSometimes(); }
    void enter(OperationProgress::Phase phase);

    /// Waits while the job is paused; answers whether it goes on.
    [[nodiscard]] bool goesOn();
    [[nodiscard]] bool isCancelled() const noexcept { return job_.isCancelled(); }
    /// The same as a function for other threads.
    [[nodiscard]] const std::function<bool()>& goesOnAnywhere() const noexcept { return goesOnAnywhere_; }

    /// Called before a question is asked, which may take its time.
    std::function<void()> beforeQuestion;
    /// The standing answer or the caller's. A standing `replace` does not cover a folder against something
    /// that is none, nor what the job itself has brought: `existing` is the item in the way. `cancel` also
    /// cancels the job.
    [[nodiscard]] ConflictChoice ask(const ConflictContext& context, const FileIdentity& existing);
    [[nodiscard]] ErrorChoice ask(const ErrorContext& context);
    /// An item of the job stands in its place.
    void noteBrought(const FileIdentity& item) { brought_.insert(item); }
    void tellRemoved(const FolderRecord& folder) const {
        if (hooks_.removedFolder) hooks_.removedFolder(folder);
    }

    // ---- The item whose data is being copied

    /// An item begins, or begins again. `leftOut` are entries below it that are not wanted, by their paths.
    void beginItem(const FileURL& source, const FileURL& destination,
                   std::map<std::string, FileOperationError> leftOut);
    /// The item is copied and stays so: its bytes are done.
    void keepItem();
    /// The item is not there after all: its bytes are not done, and nothing of it is reported.
    void dropItem();
    /// One result for each entry below the item that was left out.
    [[nodiscard]] const std::vector<ItemResult>& leftOut() const noexcept { return leftOutResults_; }

    // ---- Of CopyObserver

    bool begins(std::string_view name) override;
    bool copied(std::int64_t bytes) override;
    ErrorChoice failed(const std::string& path, const FileOperationError& error) override;

private:
    struct IdentityHash {
        std::size_t operator()(const FileIdentity& item) const { return hashOf(item.device, item.inode); }
    };

    void count();

    JobRun job_;
    const OperationHooks& hooks_;
    std::function<bool()> goesOnAnywhere_;
    std::atomic<bool> isAbandoned_ = false; // cancelled by an answer; for other threads
    std::optional<ConflictChoice> standingConflict_;
    std::unordered_set<FileIdentity, IdentityHash> brought_;
    std::int64_t finishedBytes_ = 0;
    std::int64_t copiedInItem_ = 0;
    FileURL source_, destination_;
    std::map<std::string, FileOperationError> unwanted_;
    std::vector<ItemResult> leftOutResults_;
};

} // namespace ombrel
