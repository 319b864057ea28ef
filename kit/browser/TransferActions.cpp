#include "browser/TransferActions.h"

#include <memory>
#include <utility>

namespace ombrel {
namespace {

using Select = PaneJobs::Aftermath::Select;

JobPlan planOf(const FileOperationService& service, FileOperationKind kind,
               const std::vector<FileReference>& references, const FileURL& folder) {
    std::vector<TransferItem> items;
    for (const auto& item : references)
        if (kind != FileOperationKind::move || item.url.isRoot() || item.url.parent() != folder)
            items.emplace_back(item);
    return JobPlan::transfer(service, kind, std::move(items), folder);
}

} // namespace

bool TransferActions::canTransfer(const BrowserModel& pane) const {
    return jobs_.mayRun() && !pane.selection().empty();
}

std::vector<FileURL> TransferActions::recentDestinations(const BrowserModel& pane) const {
    auto folders = jobs_.services().settings().recentDestinations();
    std::erase_if(folders, [&](const FileURL& folder) { return folder == pane.currentURL(); });
    return folders;
}

void TransferActions::copyTo(BrowserModel& pane, const FileURL& folder) const {
    transferSelection(pane, FileOperationKind::copy, folder);
}

void TransferActions::moveTo(BrowserModel& pane, const FileURL& folder) const {
    transferSelection(pane, FileOperationKind::move, folder);
}

void TransferActions::transferSelection(BrowserModel& pane, FileOperationKind kind,
                                        const FileURL& folder) const {
    if (!canTransfer(pane)) return;
    jobs_.services().settings().rememberDestination(folder);
    const auto selection = std::make_shared<const FileSelection>(pane.selection());
    PaneJobs::Aftermath aftermath;
    if (kind == FileOperationKind::move)
        aftermath.given = PaneJobs::neighbourOf(pane);
    else
        aftermath.select = Select::results;
    jobs_.run(
        pane, selection->count(),
        [service = jobs_.services().operations(), selection, kind, folder] {
            return planOf(service, kind, PaneJobs::referencesOf(*selection), folder);
        },
        std::move(aftermath));
}

void TransferActions::drop(BrowserModel& pane, const DraggedItems& dragged, const FileURL& folder,
                           DropPlan::Case action) const {
    if (action == DropPlan::Case::forbidden || !jobs_.mayRun() || dragged.items().empty()) return;
    const auto kind = action == DropPlan::Case::move ? FileOperationKind::move : FileOperationKind::copy;
    jobs_.run(pane, dragged.items().size(),
              [service = jobs_.services().operations(), kind, items = dragged.items(), folder] {
                  return planOf(service, kind, items, folder);
              },
              {.select = Select::results});
}

} // namespace ombrel
