#pragma once

#include "browser/CommandDispatcher.h"
#include "browser/PaneJobs.h"

namespace ombrel {

/// The commands of panes that use the clipboard: copy, cut, paste, cancel cut, copy path. Main thread only;
/// `services` and whoever it is bound to go after it.
class ClipboardActions {
public:
    explicit ClipboardActions(AppServices& services) : jobs_(services) {}
    void bindTo(CommandDispatcher& dispatcher);

    /// Whether there are files to paste into a folder.
    [[nodiscard]] bool canPaste() const;
    /// Pastes into `folder`, whether the pane shows it or not, and selects what came if it does. Copies that
    /// come into their own folder get another name; items that were cut and lie there already stay. When all
    /// that was cut has been moved, the clipboard is empty.
    void pasteInto(BrowserModel& pane, const FileURL& folder) const;
    /// The paths of what is selected, or that of the folder.
    void copyPath(const BrowserModel& pane) const;

private:
    PaneJobs jobs_;
};

} // namespace ombrel
