#pragma once

#include "browser/CommandDispatcher.h"
#include "services/AppServices.h"

namespace ombrel {

/// Undo and redo as commands: what comes back into the folder that is shown is selected, and what could not
/// be handled is told through the pane's prompter. Main thread only; `services` go after it.
class HistoryActions {
public:
    explicit HistoryActions(AppServices& services) : services_(&services) {}
    void bindTo(CommandDispatcher& dispatcher);

private:
    AppServices* services_;
};

} // namespace ombrel
