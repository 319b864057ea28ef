#pragma once

#include "browser/CommandDispatcher.h"
#include "browser/PaneJobs.h"

namespace ombrel {

/// Selected items moved into a new folder, which is then renamed in place; and a folder taken apart, after a
/// question. Main thread only; `services` go after it.
class FolderActions {
public:
    explicit FolderActions(AppServices& services) : jobs_(services) {}
    void bindTo(CommandDispatcher& dispatcher);

private:
    void moveIntoNewFolder(BrowserModel& pane) const;
    void dissolve(BrowserModel& pane) const;

    PaneJobs jobs_;
};

} // namespace ombrel
