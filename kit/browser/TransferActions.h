#pragma once

#include "base/FileURL.h"
#include "browser/DropPlan.h"
#include "browser/PaneJobs.h"

#include <vector>

namespace ombrel {

/// What is selected or dragged, copied or moved to a folder that is named. Main thread only; `services` go
/// after it.
class TransferActions {
public:
    explicit TransferActions(AppServices& services) : jobs_(services) {}

    [[nodiscard]] bool canTransfer(const BrowserModel& pane) const;
    /// Where things were brought lately, the latest first, without the folder that the pane shows.
    [[nodiscard]] std::vector<FileURL> recentDestinations(const BrowserModel& pane) const;

    /// What is selected in the pane. The folder is remembered as a destination. After a move the neighbour is
    /// selected.
    void copyTo(BrowserModel& pane, const FileURL& folder) const;
    void moveTo(BrowserModel& pane, const FileURL& folder) const;

    /// Carries a drop out. What comes into the folder that the pane shows is selected; what lies there and is
    /// to be moved stays as it is.
    void drop(BrowserModel& pane, const DraggedItems& dragged, const FileURL& folder,
              DropPlan::Case action) const;

private:
    void transferSelection(BrowserModel& pane, FileOperationKind kind, const FileURL& folder) const;

    PaneJobs jobs_;
};

} // namespace ombrel
