#include "ui/WindowActions.h"

#include "browser/AddressCrumbs.h"
#include "browser/BrowserTabsModel.h"
#include "browser/CommandDispatcher.h"
#include "services/AppServices.h"
#include "ui/GlyphIcon.h"
#include "ui/KeyStrokes.h"
#include "ui/LocalizedText.h"
#include "ui/OmbrelStyle.h"

#include <QAction>
#include <QWidget>

#include <optional>
#include <utility>

namespace ombrel {
namespace {

std::optional<Glyph> glyphOf(FileCommand command) {
    switch (command) {
    case FileCommand::open: return Glyph::openItem;
    case FileCommand::rename: return Glyph::rename;
    case FileCommand::moveToTrash:
    case FileCommand::deletePermanently: return Glyph::trash;
    case FileCommand::copy: return Glyph::copy;
    case FileCommand::cut: return Glyph::cut;
    case FileCommand::paste: return Glyph::paste;
    case FileCommand::quickLook: return Glyph::eye;
    case FileCommand::selectAll: return Glyph::selectAll;
    case FileCommand::goBack: return Glyph::back;
    case FileCommand::goForward: return Glyph::forward;
    case FileCommand::goUp: return Glyph::up;
    case FileCommand::refresh: return Glyph::refresh;
    case FileCommand::newFolder:
    case FileCommand::moveIntoNewFolder: return Glyph::folderPlus;
    case FileCommand::showInfo: return Glyph::properties;
    case FileCommand::newTab:
    case FileCommand::openInNewTab: return Glyph::newTab;
    case FileCommand::copyPath: return Glyph::chain;
    case FileCommand::newWindow:
    case FileCommand::openInNewWindow: return Glyph::newWindow;
    case FileCommand::undo: return Glyph::undo;
    case FileCommand::redo: return Glyph::redo;
    case FileCommand::openInTerminal: return Glyph::terminal;
    case FileCommand::openContainingFolder:
    case FileCommand::dissolveFolder: return Glyph::folderUp;
    case FileCommand::compress: return Glyph::zip;
    case FileCommand::extract: return Glyph::extract;
    case FileCommand::createShortcut: return Glyph::screen;
    case FileCommand::pin:
    case FileCommand::unpin: return Glyph::pin;
    case FileCommand::newFile:
    case FileCommand::closeTab:
    case FileCommand::focusAddress:
    case FileCommand::focusSearch:
    case FileCommand::toggleDetailsPane:
    case FileCommand::cancelCut: return std::nullopt;
    }
    std::unreachable();
}

} // namespace

WindowActions::WindowActions(QWidget& window, const Theme& theme, BrowserTabsModel& tabs,
                             const CommandDispatcher& commands, AppServices& services)
    : QObject(&window), pane_(tabs), commands_(&commands), services_(&services) {
    for (std::size_t i = 0; i < actions_.size(); ++i) {
        const auto command = static_cast<FileCommand>(i);
        auto* const action = new QAction(&window);
        const bool isDangerous = command == FileCommand::deletePermanently;
        if (const auto glyph = glyphOf(command))
            action->setIcon(glyphIcon(theme, *glyph, isDangerous ? ThemeColor::danger : ThemeColor::text));
        if (isDangerous) action->setProperty(OmbrelStyle::dangerProperty, true);
        if (command == FileCommand::toggleDetailsPane) action->setCheckable(true);
        window.addAction(action);
        connect(action, &QAction::triggered, this, [this, command] { commands_->perform(command, *pane_); });
        actions_[i] = action;
    }
    connect(&services.settings(), &AppSettings::changed, this, &WindowActions::refreshLater);
    connect(&services.clipboard(), &ClipboardService::intentChanged, this, &WindowActions::refreshLater);
    connect(&services.clipboard(), &ClipboardService::cutURLsChanged, this, &WindowActions::refreshLater);
    connect(&services.undo(), &FileUndoHistory::changed, this, &WindowActions::refreshLater);
    pane_.follow([this](const BrowserModel& pane, QObject& context) { followPane(pane, context); });
    refresh();
}

QAction* WindowActions::of(FileCommand command) const noexcept {
    return actions_[std::to_underlying(command)];
}

void WindowActions::followPane(const BrowserModel& pane, QObject& context) {
    for (const auto signal :
         {&BrowserModel::locationChanged, &BrowserModel::historyChanged, &BrowserModel::listingStateChanged,
          &BrowserModel::itemsChanged, &BrowserModel::selectionChanged})
        connect(&pane, signal, &context, [this] { refreshLater(); });
    refreshLater();
}

void WindowActions::refreshLater() {
    // A selection changes many times while a band is drawn or an arrow key is held.
    if (std::exchange(isRefreshDue_, true)) return;
    QMetaObject::invokeMethod(this, &WindowActions::refresh, Qt::QueuedConnection);
}

void WindowActions::refresh() {
    isRefreshDue_ = false;
    for (std::size_t i = 0; i < actions_.size(); ++i)
        refreshOne(static_cast<FileCommand>(i));
    Q_EMIT refreshed();
}

void WindowActions::refreshOne(FileCommand command) {
    QAction& action = *of(command);
    const QString name = nameOf(command);
    const QString keys = KeyStrokes::shown(command, services_->settings().keyPreset());
    QString menuText = name;
    menuText.replace(QLatin1Char('&'), QLatin1String("&&"));
    action.setText(keys.isEmpty() ? menuText : menuText + QLatin1Char('\t') + keys);
    action.setIconText(name);
    const QString toolTip = toolTipOf(command, name);
    action.setToolTip(
        keys.isEmpty() ? toolTip
                       : localized("ui.tooltip.withShortcut", {toolTip.toStdString(), keys.toStdString()}));
    action.setEnabled(commands_->canPerform(command, *pane_));
    if (command == FileCommand::toggleDetailsPane)
        action.setChecked(services_->settings().showsDetailsPane());
}

QString WindowActions::nameOf(FileCommand command) const {
    const FileUndoHistory& undo = services_->undo();
    const auto title = command == FileCommand::undo   ? undo.undoTitle()
                       : command == FileCommand::redo ? undo.redoTitle()
                                                      : std::nullopt;
    return title ? localized(*title) : localized(FileCommands::textKey(command));
}

QString WindowActions::toolTipOf(FileCommand command, const QString& name) const {
    const BrowserModel& pane = *pane_;
    if (command != FileCommand::goUp || !pane.canGoUp()) return name;
    const auto parent = AddressCrumbs::titleOf(pane.currentURL()->parent(), services_);
    return localized("ui.tooltip.upTo", {isolated(parent)});
}

} // namespace ombrel
