#include "ui/WindowMenus.h"

#include "browser/BrowserTabsModel.h"
#include "services/AppServices.h"
#include "ui/GlyphIcon.h"
#include "ui/Glyphs.h"
#include "ui/LocalizedText.h"
#include "ui/ViewModeActions.h"
#include "ui/WindowActions.h"

#include <QAction>
#include <QActionGroup>
#include <QMenu>

#include <array>
#include <utility>

namespace ombrel {
namespace {

struct SortChoice {
    FileSort::Key key;
    std::string_view textKey;
};
constexpr std::array sortChoices = {SortChoice{FileSort::Key::name, "ui.column.name"},
                                    SortChoice{FileSort::Key::modificationDate, "ui.column.dateModified"},
                                    SortChoice{FileSort::Key::kind, "ui.column.type"},
                                    SortChoice{FileSort::Key::size, "ui.column.size"}};

bool canShowItems(const ListingState& state) {
    return state == ListingState::Case::loading || state == ListingState::Case::loaded;
}

} // namespace

WindowMenus::WindowMenus(QWidget& window, const Theme& theme, AppServices& services, BrowserTabsModel& tabs,
                         WindowActions& actions, ViewModeActions& viewModes)
    : QObject(&window), theme_(&theme), services_(&services), tabs_(&tabs), actions_(&actions),
      viewModes_(&viewModes) {
    connect(&actions, &WindowActions::refreshed, this,
            [this] { viewModes_->setEnabled(isUseful(Kind::view)); });
}

QMenu* WindowMenus::make(Kind kind, QWidget* parent) {
    auto* const menu = new QMenu(parent);
    // A menu without entries would not open.
    connect(menu, &QMenu::aboutToShow, this, [this, kind, menu] {
        menu->clear();
        // What was filled in for the last time.
        for (QObject* const old : menu->findChildren<QObject*>(QString(), Qt::FindDirectChildrenOnly))
            if (qobject_cast<QMenu*>(old) || qobject_cast<QActionGroup*>(old)) delete old;
        fill(kind, *menu);
    });
    return menu;
}

void WindowMenus::fill(Kind kind, QMenu& menu) {
    actions_->refresh();
    switch (kind) {
    case Kind::create: return fillCreate(menu);
    case Kind::sort: return fillSort(menu);
    case Kind::view: return fillView(menu);
    case Kind::more: return fillMore(menu);
    }
}

bool WindowMenus::isUseful(Kind kind) const {
    const BrowserModel& pane = tabs_->activeTab();
    switch (kind) {
    case Kind::create: return actions_->of(FileCommand::newFolder)->isEnabled();
    case Kind::sort:
    case Kind::view: return pane.currentURL() && canShowItems(pane.listingState());
    case Kind::more: return true;
    }
    std::unreachable();
}

void WindowMenus::fillCreate(QMenu& menu) {
    QAction* const newFolder = actions_->of(FileCommand::newFolder);
    auto* const folder = menu.addAction(glyphIcon(*theme_, Glyph::folderPlus), localized("ui.new.folder"));
    folder->setEnabled(newFolder->isEnabled());
    if (const qsizetype tab = newFolder->text().indexOf(QLatin1Char('\t')); tab >= 0)
        folder->setText(folder->text() + newFolder->text().mid(tab));
    connect(folder, &QAction::triggered, newFolder, &QAction::trigger);
    menu.addSeparator();
    if (owners_.fillTemplates) return owners_.fillTemplates(menu);
    QAction* const newFile = actions_->of(FileCommand::newFile);
    auto* const document = menu.addAction(localized("ui.new.textDocument"));
    document->setEnabled(newFile->isEnabled());
    connect(document, &QAction::triggered, newFile, &QAction::trigger);
}

void WindowMenus::fillSort(QMenu& menu) {
    const auto change = [this](const std::function<void(FileSort&)>& edit) {
        FileSort sort = tabs_->activeTab().sort();
        edit(sort);
        tabs_->activeTab().setSort(sort);
    };
    const FileSort now = tabs_->activeTab().sort();
    auto* const keys = new QActionGroup(&menu);
    for (const SortChoice& choice : sortChoices)
        keys->addAction(
            addChoice(menu, localized(choice.textKey), now.key == choice.key,
                      [change, key = choice.key] { change([key](FileSort& sort) { sort.key = key; }); }));
    menu.addSeparator();
    auto* const directions = new QActionGroup(&menu);
    for (const bool isAscending : {true, false})
        directions->addAction(
            addChoice(menu, localized(isAscending ? "ui.sort.ascending" : "ui.sort.descending"),
                      now.ascending == isAscending, [change, isAscending] {
                          change([isAscending](FileSort& sort) { sort.ascending = isAscending; });
                      }));
    menu.addSeparator();
    addSwitch(menu, "ui.sort.foldersFirst", now.foldersFirst,
              [change](bool isOn) { change([isOn](FileSort& sort) { sort.foldersFirst = isOn; }); });
}

void WindowMenus::fillView(QMenu& menu) {
    AppSettings& settings = services_->settings();
    viewModes_->addTo(menu);
    menu.addSeparator();
    struct Switch {
        Setting setting;
        std::string_view textKey;
    };
    const auto add = [&](const Switch& each) {
        addSwitch(menu, each.textKey, settings.isOn(each.setting),
                  [&settings, setting = each.setting](bool isOn) { settings.set(setting, isOn); });
    };
    add({Setting::compactView, "ui.view.compactRows"});
    add({Setting::showItemCheckBoxes, "ui.view.itemCheckBoxes"});
    add({Setting::showHiddenFiles, "ui.view.hiddenItems"});
    menu.addSeparator();
    menu.addAction(actions_->of(FileCommand::toggleDetailsPane));
    add({Setting::showStatusBar, "ui.view.statusBar"});
}

void WindowMenus::fillMore(QMenu& menu) {
    Q_EMIT moreIsFilled(menu);
    const auto add = [&](std::initializer_list<FileCommand> commands) {
        if (!menu.isEmpty()) menu.addSeparator();
        for (const FileCommand command : commands)
            menu.addAction(actions_->of(command));
    };
    add({FileCommand::undo, FileCommand::redo});
    add({FileCommand::selectAll, FileCommand::copyPath, FileCommand::openInTerminal});
    if (owners_.addTransfers) {
        menu.addSeparator();
        owners_.addTransfers(menu);
    }
    add({FileCommand::compress, FileCommand::extract, FileCommand::moveIntoNewFolder,
         FileCommand::dissolveFolder});
    add({FileCommand::newWindow});
    struct Entry {
        std::string_view textKey;
        const std::function<void()>& show;
    };
    menu.addSeparator();
    const auto addOwned = [&](const Entry& entry) {
        if (entry.show)
            connect(menu.addAction(localized(entry.textKey)), &QAction::triggered, this, entry.show);
    };
    addOwned({"ui.more.folderOptions", owners_.showFolderOptions});
    addOwned({"ui.more.settings", owners_.showSettings});
    if (auto* const updater = services_->updater()) {
        auto* const check = menu.addAction(localized("menu.checkForUpdates"));
        connect(check, &QAction::triggered, updater, &SoftwareUpdater::checkNow);
    }
    addOwned({"ui.more.about", owners_.showAbout});
}

QAction* WindowMenus::addChoice(QMenu& menu, const QString& text, bool isChosen,
                                std::function<void()> choose) {
    auto* const action = menu.addAction(text);
    action->setCheckable(true);
    action->setChecked(isChosen);
    connect(action, &QAction::triggered, this, std::move(choose));
    return action;
}

void WindowMenus::addSwitch(QMenu& menu, std::string_view textKey, bool isOn, std::function<void(bool)> set) {
    auto* const action = menu.addAction(localized(textKey));
    action->setCheckable(true);
    action->setChecked(isOn);
    connect(action, &QAction::toggled, this, std::move(set));
}

} // namespace ombrel
