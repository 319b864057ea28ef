#pragma once

#include "browser/CommandDispatcher.h"
#include "browser/PaneJobs.h"

namespace ombrel {

/// Archives made of what is selected, and archives extracted beside themselves; what came of it is selected.
/// Main thread only; `services` go after it.
class ArchiveActions {
public:
    explicit ArchiveActions(AppServices& services) : jobs_(services) {}
    void bindTo(CommandDispatcher& dispatcher);

private:
    PaneJobs jobs_;
};

} // namespace ombrel
