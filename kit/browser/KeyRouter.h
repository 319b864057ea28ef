#pragma once

#include "browser/BrowserModel.h"
#include "browser/CommandDispatcher.h"
#include "browser/KeyBindings.h"
#include "browser/KeyStroke.h"

#include <cstdint>
#include <functional>

namespace ombrel {

/// Brings the keys of one window to the commands that they mean: to the tabs, to what acts anywhere in the
/// window, and to what acts in the file view. Main thread only.
class KeyRouter {
public:
    enum class Press : std::uint8_t {
        first,
        repeated, ///< the key is held down
    };
    struct Targets {
        std::function<KeyPreset()> preset;
        std::function<BrowserModel&()> activePane;
        /// Absent where there are no tabs.
        std::function<void(TabCommand)> performTabCommand;
    };

    /// `commands` must outlive it.
    KeyRouter(const CommandDispatcher& commands, Targets targets);

    /// What every key in the window is offered to before the focused control. True when it is used up; then
    /// nobody else may act on it. A key that means a command which nothing does now is used up too; one that
    /// nothing ever does goes on.
    bool pressInWindow(const KeyStroke& stroke, Press press, bool isEditingText, bool hasMarkedText) const;
    /// What a key is offered to when the file view has it, before the view's own keys.
    bool pressInFileView(const KeyStroke& stroke, Press press) const;

private:
    bool give(FileCommand command, Press press) const;

    const CommandDispatcher* commands_;
    Targets targets_;
};

} // namespace ombrel
