#pragma once

#include "operations/ConfirmedSource.h"
#include "operations/FolderTrail.h"
#include "operations/JobRun.h"
#include "operations/OperationReport.h"
#include "operations/TreePlan.h"

#include <cstdint>
#include <expected>
#include <optional>
#include <string_view>
#include <vector>

namespace ombrel {

/// Removes one item and everything in it, for good.
///
/// It works on descriptors: links are removed and never followed, and no removal crosses a mount point. A
/// folder whose own permissions are in the way is given them for its owner first, and gets its old ones back
/// when it has to stay. What cannot be removed is asked about, entry by entry, and the rest goes on.
/// Blocking.
class TreeRemoval {
public:
    /// `plan` holds what was found below the item in `top`, when it is a folder; what has changed since is
    /// found anew. All must outlive this.
    TreeRemoval(const FileReference& item, TreePlan& plan, TreePlan::FolderIndex top, JobRun& run);

    /// Counts the run's `completedItems` up, one for each entry removed. Answers the item's result, then one
    /// for each entry inside that was left.
    [[nodiscard]] std::vector<ItemResult> remove();

private:
    /// `stopped` when the job was cancelled, or something else stands where the item was.
    enum class Step : std::uint8_t { done, again, left, stopped };

    /// A folder on the way down.
    struct Level {
        TreePlan::FolderIndex folder;
        std::size_t next = 0;                 // offset of the next entry
        bool keeps = false;                   // something in it is left, so it cannot be removed
        bool isAnew = false;                  // read once more because it was not empty after all
        std::optional<std::uint32_t> oldMode; // before it was relaxed
    };

    [[nodiscard]] std::expected<ItemOutcome, FileOperationError> attempt();
    [[nodiscard]] Step advance();
    [[nodiscard]] Step removeFile(const char* name);
    [[nodiscard]] Step removeFolder(const char* name, TreePlan::FolderIndex folder);
    [[nodiscard]] Step readFolder();
    [[nodiscard]] Step finishFolder();
    [[nodiscard]] Step ask(std::string_view path, POSIXFailure failure);
    [[nodiscard]] bool isReplaced() const;
    [[nodiscard]] bool relax();
    [[nodiscard]] std::optional<std::uint32_t> relaxBelow(const char* name);
    void restoreMode();
    void unwind();
    void countOne(std::string_view name);
    Level& level() { return levels_.back(); }

    const FileReference& item_;
    TreePlan& plan_;
    TreePlan::FolderIndex top_;
    JobRun& run_;
    std::optional<FolderTrail> trail_; // from the folder that holds the item
    FileIdentity identity_;            // of the item
    std::vector<Level> levels_;        // one for each step of the trail but the first
    std::optional<ItemResult> first_;  // the first entry that was left
    std::vector<ItemResult> leftInside_;
};

} // namespace ombrel
