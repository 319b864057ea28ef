#pragma once

#include "base/FileURL.h"
#include "listing/FileReference.h"
#include "operations/FileOperationKind.h"
#include "operations/FileOperationService.h"
#include "operations/FileUndoStep.h"
#include "operations/OperationHooks.h"
#include "operations/OperationReport.h"
#include "operations/PuttingBack.h"
#include "operations/TransferItem.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace ombrel {

/// What a job is to do: a blocking function, and what others need to know of it. Whatever `work` touches it
/// owns, because nobody waits for a job that is given up.
struct JobPlan {
    using Work = std::move_only_function<OperationReport(const OperationHooks&, std::stop_token)>;

    /// Which of the places are read and written, for the question whether a drive is busy.
    enum class Data : std::uint8_t {
        none,   ///< names change, no data: never waits for a drive
        copied, ///< from every source to the destination
        moved,  ///< from those sources that are on another volume than the destination
    };

    FileOperationKind kind = FileOperationKind::copy;
    std::vector<FileURL> sources = {};                 ///< one for each item that was given
    std::optional<FileURL> destination = std::nullopt; ///< the folder that things come into
    Data data = Data::none;
    Work work = {};
    /// Called after the work with its report, blocking: the step that undoes it. Without one it cannot be
    /// undone.
    std::function<FileUndoStep(const OperationReport&)> undo = {};
    /// Whether a report that is not wholly a success is kept for the user; not when whoever started the job
    /// tells it in a way of his own.
    bool leavesReport = true;

    /// The plans of the operations there are. References without an identity get one when the job starts, so
    /// that an item that is exchanged for another one meanwhile is noticed.
    [[nodiscard]] static JobPlan transfer(const FileOperationService& service, FileOperationKind kind,
                                          std::vector<TransferItem> items, const FileURL& destination);
    [[nodiscard]] static JobPlan moveToTrash(const FileOperationService& service,
                                             std::vector<FileReference> items);
    [[nodiscard]] static JobPlan deletePermanently(const FileOperationService& service,
                                                   std::vector<FileReference> items);
    [[nodiscard]] static JobPlan putBack(const FileOperationService& service, std::vector<PutBackItem> items,
                                         MissingFolders folders);
    [[nodiscard]] static JobPlan rename(const FileOperationService& service, const FileReference& item,
                                        std::string name);
    [[nodiscard]] static JobPlan createFolder(const FileOperationService& service, const FileURL& folder,
                                              std::string preferredName);
    [[nodiscard]] static JobPlan createEmptyFile(const FileOperationService& service, const FileURL& folder,
                                                 std::string preferredName);
    [[nodiscard]] static JobPlan createFromTemplate(const FileOperationService& service,
                                                    const FileReference& source, const FileURL& folder,
                                                    std::string preferredName);

    /// A symbolic link to each item in `folder`, under free names. A job of kind `newFile`.
    [[nodiscard]] static JobPlan createLinks(std::vector<FileURL> items, const FileURL& folder);

    /// A zip of the items in `folder`, and archives extracted beside themselves; see ArchiveService.
    [[nodiscard]] static JobPlan compress(std::vector<FileReference> items, const FileURL& folder,
                                          std::string preferredName = {});
    [[nodiscard]] static JobPlan extract(std::vector<FileReference> archives);

    /// A report that says the same of every item; one item without a source when there are none.
    [[nodiscard]] OperationReport reportOfAll(const ItemOutcome& outcome) const;
};

/// The `undo` of a plan whose report says everything.
[[nodiscard]] FileUndoStep undoByKind(const OperationReport& report);

} // namespace ombrel
