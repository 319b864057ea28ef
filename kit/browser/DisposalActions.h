#pragma once

#include "browser/BrowserPrompter.h"
#include "browser/CommandDispatcher.h"
#include "browser/PaneJobs.h"

namespace ombrel {

/// The commands that take items away: to the trash and for good. The user is asked through the pane's
/// prompter, before the trash only while that is wished for. When all went, the neighbour is selected; when
/// something stayed, that is what stays selected. Main thread only; `services` go after it.
class DisposalActions {
public:
    explicit DisposalActions(AppServices& services) : jobs_(services) {}
    void bindTo(CommandDispatcher& dispatcher);

private:
    void dispose(BrowserModel& pane, BrowserQuestion::Kind how) const;

    PaneJobs jobs_;
};

} // namespace ombrel
