#include "browser/KeyRouter.h"

#include "browser/MenuShortcuts.h"

#include <optional>
#include <utility>

namespace ombrel {
namespace {

/// What the tables of keys leave to the file view.
std::optional<FileCommand> viewCommand(const KeyStroke& stroke, const FocusContext& context) {
    const bool isEnter =
        stroke.keyCode == KeyStroke::Code::returnKey || stroke.keyCode == KeyStroke::Code::keypadEnter;
    const bool opensTabs = isEnter && stroke.modifiers == KeyStroke::control && context.hasSelection;
    return opensTabs ? std::optional(FileCommand::openInNewTab) : std::nullopt;
}

} // namespace

KeyRouter::KeyRouter(const CommandDispatcher& commands, Targets targets)
    : commands_(&commands), targets_(std::move(targets)) {}

bool KeyRouter::pressInWindow(const KeyStroke& stroke, Press press, bool isEditingText,
                              bool hasMarkedText) const {
    const auto preset = targets_.preset();
    if (targets_.performTabCommand) {
        auto tab = KeyBindings::tabCommand(stroke, preset, isEditingText, hasMarkedText);
        if (!tab) tab = MenuShortcuts::tabCommand(stroke, preset, isEditingText, hasMarkedText);
        if (tab) {
            targets_.performTabCommand(*tab);
            return true;
        }
    }
    auto command = KeyBindings::windowCommand(stroke, preset, isEditingText, hasMarkedText);
    if (!command) command = MenuShortcuts::command(stroke, preset, isEditingText, hasMarkedText);
    return command && give(*command, press);
}

bool KeyRouter::pressInFileView(const KeyStroke& stroke, Press press) const {
    const FocusContext context{.fileViewHasFocus = true,
                               .hasSelection = !targets_.activePane().selection().empty()};
    auto command = KeyBindings::command(stroke, targets_.preset(), context);
    if (!command) command = viewCommand(stroke, context);
    return command && give(*command, press);
}

bool KeyRouter::give(FileCommand command, Press press) const {
    if (!commands_->isBound(command)) return false;
    if (press == Press::first || FileCommands::repeatsWhileHeld(command))
        commands_->perform(command, targets_.activePane());
    return true;
}

} // namespace ombrel
