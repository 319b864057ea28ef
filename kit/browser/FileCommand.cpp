#include "browser/FileCommand.h"

#include <cstdint>
#include <utility>

namespace ombrel::FileCommands {
namespace {

struct Traits {
    FileCommand command;
    std::string_view textKey;
    enum Needs : std::uint8_t { nothing, selectionForKeys, selection } needs = nothing;
    enum Held : bool { once, repeats } held = once;
};

// In the order of the enumeration.
constexpr Traits table[] = {
    {FileCommand::open, "ui.command.open", Traits::selection},
    {FileCommand::rename, "ui.command.rename", Traits::selection},
    {FileCommand::moveToTrash, "ui.command.moveToTrash", Traits::selection},
    {FileCommand::deletePermanently, "ui.command.deletePermanently", Traits::selection},
    {FileCommand::copy, "ui.command.copy", Traits::selection},
    {FileCommand::cut, "ui.command.cut", Traits::selection},
    {FileCommand::paste, "ui.command.paste"},
    {FileCommand::quickLook, "ui.command.quickLook", Traits::selection},
    {FileCommand::selectAll, "ui.command.selectAll"},
    {FileCommand::goBack, "ui.command.back", Traits::nothing, Traits::repeats},
    {FileCommand::goForward, "ui.command.forward", Traits::nothing, Traits::repeats},
    {FileCommand::goUp, "ui.command.up", Traits::nothing, Traits::repeats},
    {FileCommand::refresh, "ui.command.refresh"},
    {FileCommand::newFolder, "ui.command.newFolder"},
    {FileCommand::newFile, "ui.command.newFile"},
    {FileCommand::showInfo, "ui.command.showInfo", Traits::selection},
    {FileCommand::newTab, "ui.command.newTab"},
    {FileCommand::closeTab, "ui.command.closeTab"},
    {FileCommand::focusAddress, "ui.command.focusAddress"},
    {FileCommand::focusSearch, "ui.command.focusSearch"},
    {FileCommand::toggleDetailsPane, "ui.command.toggleDetailsPane"},
    {FileCommand::copyPath, "ui.command.copyPath", Traits::selectionForKeys},
    {FileCommand::newWindow, "ui.command.newWindow"},
    {FileCommand::cancelCut, "ui.command.cancelCut"},
    {FileCommand::undo, "ui.command.undo"},
    {FileCommand::redo, "ui.command.redo"},
    {FileCommand::openInNewTab, "ui.command.openInNewTab", Traits::selection},
    {FileCommand::openInNewWindow, "ui.command.openInNewWindow", Traits::selection},
    {FileCommand::openInTerminal, "ui.command.openInTerminal"},
    {FileCommand::openContainingFolder, "ui.command.openContainingFolder", Traits::selection},
    {FileCommand::compress, "ui.command.compress", Traits::selection},
    {FileCommand::extract, "ui.command.extract", Traits::selection},
    {FileCommand::moveIntoNewFolder, "ui.command.moveIntoNewFolder", Traits::selection},
    {FileCommand::dissolveFolder, "ui.command.dissolveFolder", Traits::selection},
    {FileCommand::createShortcut, "ui.command.createShortcut", Traits::selection},
    {FileCommand::pin, "ui.command.pin"},
    {FileCommand::unpin, "ui.command.unpin"},
};

constexpr bool isInOrder() {
    std::size_t index = 0;
    for (const Traits& traits : table)
        if (std::to_underlying(traits.command) != index++) return false;
    return index == count;
}
static_assert(isInOrder());

const Traits& traitsOf(FileCommand command) noexcept {
    return table[std::to_underlying(command)];
}

} // namespace

bool needsSelection(FileCommand command) noexcept {
    return traitsOf(command).needs == Traits::selection;
}

bool keyNeedsSelection(FileCommand command) noexcept {
    return traitsOf(command).needs != Traits::nothing;
}

bool repeatsWhileHeld(FileCommand command) noexcept {
    return traitsOf(command).held == Traits::repeats;
}

std::string_view textKey(FileCommand command) noexcept {
    return traitsOf(command).textKey;
}

} // namespace ombrel::FileCommands
