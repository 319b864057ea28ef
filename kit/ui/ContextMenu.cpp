#include "ui/ContextMenu.h"

#include "browser/BrowserModel.h"
#include "browser/CommandDispatcher.h"
#include "services/AppServices.h"
#include "ui/GlyphIcon.h"
#include "ui/LocalizedText.h"
#include "ui/WindowActions.h"
#include "ui/WindowMenus.h"

#include <QAction>
#include <QMenu>

#include <algorithm>

namespace ombrel {
namespace {

using Kind = WindowMenus::Kind;

/// What the items have in common, as far as menus care. Many items are not looked at one by one.
struct Traits {
    bool areFolders = true;
    bool areFiles = true;
    bool hasCutOnes = false;
};

Traits traitsOf(const BrowserModel& pane, const ClipboardService& clipboard) {
    constexpr std::size_t mostLookedAt = 1000;
    Traits traits;
    const FileSelection& selection = pane.selection();
    if (selection.count() > mostLookedAt)
        return {.areFolders = false, .areFiles = false, .hasCutOnes = false};
    selection.set().forEach([&](ItemRef ref) {
        const FileItemView item = selection.list().view(ref);
        const bool isFolder = item.isDirectoryLike() || item.isPackage();
        traits.areFolders = traits.areFolders && isFolder;
        traits.areFiles = traits.areFiles && !isFolder;
        if (!clipboard.cutURLs().empty()) traits.hasCutOnes |= clipboard.cutURLs().contains(item.url());
    });
    return traits;
}

} // namespace

ContextMenu::ContextMenu(QWidget& window, const Setting& setting)
    : QObject(&window), setting_(setting), window_(&window) {}

void ContextMenu::fill(QMenu& menu, BrowserModel& pane) {
    setting_.actions.refresh();
    if (pane.selection().empty())
        fillForFolder(menu, pane);
    else
        fillForItems(menu, pane);
    // A group that has come to nothing leaves its line behind.
    menu.setSeparatorsCollapsible(true);
}

void ContextMenu::fillForItems(QMenu& menu, BrowserModel& pane) {
    addOpening(menu, pane);
    menu.addSeparator();
    addClipboard(menu, pane);
    menu.addSeparator();
    add(menu, {FileCommand::rename, FileCommand::moveToTrash}, Which::bound);
    addDeletion(menu);
    menu.addSeparator();
    add(menu, {FileCommand::compress}, Which::bound);
    add(menu, {FileCommand::extract}, Which::possible);
    add(menu, {FileCommand::moveIntoNewFolder}, Which::bound);
    add(menu, {FileCommand::dissolveFolder}, Which::possible);
    add(menu, {FileCommand::createShortcut}, Which::bound);
    if (traitsOf(pane, setting_.services.clipboard()).areFolders)
        add(menu, {FileCommand::pin, FileCommand::unpin}, Which::possible);
    menu.addSeparator();
    add(menu, {FileCommand::openContainingFolder}, Which::possible);
    add(menu, {FileCommand::quickLook}, Which::possible);
    add(menu, {FileCommand::showInfo}, Which::bound);
}

void ContextMenu::addOpening(QMenu& menu, BrowserModel& pane) {
    const Traits traits = traitsOf(pane, setting_.services.clipboard());
    add(menu, {FileCommand::open}, Which::bound);
    menu.setDefaultAction(setting_.actions.of(FileCommand::open));
    const bool isOneFolder = traits.areFolders && pane.selection().count() == 1;
    if ((traits.areFiles || isOneFolder) && owners_.fillOpenWith) {
        auto* const with =
            menu.addMenu(glyphIcon(setting_.theme, Glyph::grid), localized("ui.command.openWith"));
        // At once, so that it is known by the time the menu opens what opens them.
        owners_.fillOpenWith(*with, pane);
    }
    if (traits.areFolders)
        add(menu, {FileCommand::openInNewTab, FileCommand::openInNewWindow, FileCommand::openInTerminal},
            Which::bound);
}

void ContextMenu::addClipboard(QMenu& menu, BrowserModel& pane) {
    const Traits traits = traitsOf(pane, setting_.services.clipboard());
    add(menu, {FileCommand::cut, FileCommand::copy, FileCommand::copyPath}, Which::bound);
    const bool isOneFolder = traits.areFolders && pane.selection().count() == 1;
    if (isOneFolder && owners_.canPaste && owners_.pasteIntoSelected && owners_.canPaste()) {
        // Not the action of the window, which pastes into the folder that is shown.
        auto* const paste =
            menu.addAction(glyphIcon(setting_.theme, Glyph::paste), localized("ui.command.paste"));
        connect(paste, &QAction::triggered, this, [this, &pane] { owners_.pasteIntoSelected(pane); });
    }
    if (traits.hasCutOnes) add(menu, {FileCommand::cancelCut}, Which::bound);
    if (owners_.addTransfers) owners_.addTransfers(menu, pane);
}

void ContextMenu::addDeletion(QMenu& menu) {
    if (!setting_.commands.isBound(FileCommand::deletePermanently)) return;
    menu.addAction(setting_.actions.of(FileCommand::deletePermanently));
}

void ContextMenu::fillForFolder(QMenu& menu, BrowserModel& pane) {
    const auto subMenu = [&](Kind kind, std::string_view textKey, Glyph glyph) {
        auto* const made = setting_.menus.make(kind, &menu);
        made->setTitle(localized(textKey));
        made->setIcon(glyphIcon(setting_.theme, glyph));
        made->setEnabled(setting_.menus.isUseful(kind));
        menu.addMenu(made);
    };
    subMenu(Kind::view, "ui.bar.view", Glyph::list);
    subMenu(Kind::sort, "ui.menu.sortBy", Glyph::sort);
    add(menu, {FileCommand::refresh}, Which::bound);
    menu.addSeparator();
    add(menu, {FileCommand::paste, FileCommand::undo, FileCommand::redo}, Which::bound);
    menu.addSeparator();
    subMenu(Kind::create, "ui.bar.new", Glyph::newItem);
    add(menu, {FileCommand::openInTerminal, FileCommand::selectAll}, Which::bound);
    menu.addSeparator();
    add(menu, {FileCommand::pin, FileCommand::unpin}, Which::possible);
    if (pane.currentURL() && owners_.copyFolderPath) {
        auto* const path =
            menu.addAction(glyphIcon(setting_.theme, Glyph::chain), localized("ui.command.copyPath"));
        connect(path, &QAction::triggered, this, [this, &pane] { owners_.copyFolderPath(pane); });
    }
    if (pane.currentURL() && owners_.showFolderProperties) {
        auto* const properties =
            menu.addAction(glyphIcon(setting_.theme, Glyph::properties), localized("ui.command.showInfo"));
        connect(properties, &QAction::triggered, this, [this, &pane] { owners_.showFolderProperties(pane); });
    }
}

void ContextMenu::add(QMenu& menu, std::initializer_list<FileCommand> commands, Which which) {
    for (const FileCommand command : commands) {
        QAction* const action = setting_.actions.of(command);
        const bool isOffered =
            which == Which::possible ? action->isEnabled() : setting_.commands.isBound(command);
        if (isOffered) menu.addAction(action);
    }
}

} // namespace ombrel
