#pragma once

#include "base/Text.h"
#include "browser/CommandDispatcher.h"
#include "browser/PaneJobs.h"
#include "listing/FileItem.h"

#include <functional>
#include <optional>
#include <string_view>

namespace ombrel {

/// Renaming items in place: the command asks the view to begin, and what was typed is carried out here.
/// Main thread only; `services` go after it.
class RenameActions {
public:
    /// Called once, with why the item still has its old name. Without a reason there is nothing to be said.
    using Done = std::function<void(const std::optional<Text>& refusal)>;

    explicit RenameActions(AppServices& services) : jobs_(services) {}
    void bindTo(CommandDispatcher& dispatcher);

    /// Gives an item of the pane the name that the edited text comes to (see RenameRules). The item stays
    /// selected and is revealed where it then stands, unless the user has selected something else by then.
    /// Without `done`, a refusal is told through the pane's prompter.
    void commit(BrowserModel& pane, FileItemView item, std::string_view text, Done done = {}) const;

private:
    PaneJobs jobs_;
};

} // namespace ombrel
