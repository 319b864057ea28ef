#pragma once

#include "browser/BrowserModel.h"
#include "browser/FileCommand.h"

#include <array>
#include <functional>

namespace ombrel {

/// The one place where commands are carried out, whatever gives them: keys, menus, buttons. Main thread only.
///
/// At first it knows what a pane does by itself; who can do more binds it.
class CommandDispatcher {
public:
    struct Handler {
        std::function<void(BrowserModel& pane)> perform;
        /// Whether there is something to do; absent, there always is.
        std::function<bool(const BrowserModel& pane)> isEnabled = {};
    };

    CommandDispatcher();

    /// Replaces what did the command before.
    void bind(FileCommand command, Handler handler);
    /// Whether anything does the command, now or at another time.
    [[nodiscard]] bool isBound(FileCommand command) const noexcept;
    /// Whether it would do something to `pane` now. Commands that act on items need a selection.
    [[nodiscard]] bool canPerform(FileCommand command, const BrowserModel& pane) const;
    /// Does nothing and answers false where it cannot.
    bool perform(FileCommand command, BrowserModel& pane) const;

private:
    std::array<Handler, FileCommands::count> handlers_;
};

} // namespace ombrel
