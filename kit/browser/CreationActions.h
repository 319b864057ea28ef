#pragma once

#include "browser/CommandDispatcher.h"
#include "browser/NewFileTemplates.h"
#include "browser/PaneJobs.h"

namespace ombrel {

/// New folders and files in the folder that a pane shows, under the first free name; then they are renamed in
/// place. Main thread only; `services` go after it.
class CreationActions {
public:
    explicit CreationActions(AppServices& services) : jobs_(services) {}
    void bindTo(CommandDispatcher& dispatcher);

    /// Whether something new can be made where the pane is.
    [[nodiscard]] bool canCreate(const BrowserModel& pane) const;
    void createFolder(BrowserModel& pane) const;
    void createFile(BrowserModel& pane, const NewFileTemplate& pattern) const;

private:
    void run(BrowserModel& pane, JobPlan plan) const;

    PaneJobs jobs_;
};

} // namespace ombrel
