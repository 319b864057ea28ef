#include "ui/BrowserWindow.h"

#include "base/FileName.h"
#include "browser/DroppedFolders.h"
#include "browser/PaneMaker.h"
#include "browser/ThumbnailStore.h"
#include "services/AppServices.h"
#include "ui/AboutDialog.h"
#include "ui/AddressBar.h"
#include "ui/CommandBar.h"
#include "ui/ContextMenu.h"
#include "ui/CrumbBar.h"
#include "ui/DetailsPane.h"
#include "ui/FileView.h"
#include "ui/FocusCycle.h"
#include "ui/FocusRing.h"
#include "ui/FolderDrop.h"
#include "ui/FolderOptionsDialog.h"
#include "ui/FolderPickerDialog.h"
#include "ui/HomeView.h"
#include "ui/JobChip.h"
#include "ui/LocalizedText.h"
#include "ui/LocationLook.h"
#include "ui/MenuTrigger.h"
#include "ui/NavigationRow.h"
#include "ui/NavigationTree.h"
#include "ui/Overlay.h"
#include "ui/PaneArea.h"
#include "ui/PaneSplitter.h"
#include "ui/ProgressWindow.h"
#include "ui/QuickLookWindow.h"
#include "ui/SearchField.h"
#include "ui/SettingsWindow.h"
#include "ui/StatusBar.h"
#include "ui/TabStrip.h"
#include "ui/Theme.h"
#include "ui/TransferMenus.h"
#include "ui/ViewModeActions.h"
#include "ui/WindowActions.h"
#include "ui/WindowDetails.h"
#include "ui/WindowKeys.h"
#include "ui/WindowMenus.h"
#include "ui/WindowOpening.h"
#include "ui/WindowPlaces.h"
#include "ui/WindowPrompter.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QContextMenuEvent>
#include <QEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <memory>
#include <utility>

namespace ombrel {

BrowserWindow::BrowserWindow(const Setting& setting)
    : theme_(&setting.theme), services_(&setting.services),
      tabs_([&services = setting.services] { return makePane(services); }, setting.startingAt),
      files_(setting.services), opening_(setting.services),
      keys_(commands_, {.preset = [this] { return services_->settings().keyPreset(); },
                        .activePane = [this]() -> BrowserModel& { return tabs_.activeTab(); },
                        .performTabCommand = [this](TabCommand command) { tabs_.perform(command); }}),
      actions_(new WindowActions(*this, *theme_, tabs_, commands_, setting.services)),
      viewModes_(new ViewModeActions(*this, *theme_, tabs_, setting.services)),
      menus_(new WindowMenus(*this, *theme_, setting.services, tabs_, *actions_, *viewModes_)),
      contextMenu_(new ContextMenu(*this, {.theme = *theme_,
                                           .services = setting.services,
                                           .commands = commands_,
                                           .actions = *actions_,
                                           .menus = *menus_})),
      prompter_(new WindowPrompter(*theme_, *this, this)),
      windowOpening_(new WindowOpening(
          *this, {.theme = *theme_, .services = setting.services, .tabs = tabs_, .actions = opening_})),
      drops_(new FolderDrop(
          files_, *theme_, [this]() -> BrowserModel& { return tabs_.activeTab(); }, this)),
      tabStrip_(new TabStrip(tabs_, *theme_, setting.services.settings(), this)),
      navigationRow_(new NavigationRow(tabs_, setting.services, *theme_, setting.home,
                                       {.back = actions_->of(FileCommand::goBack),
                                        .forward = actions_->of(FileCommand::goForward),
                                        .up = actions_->of(FileCommand::goUp),
                                        .refresh = actions_->of(FileCommand::refresh)},
                                       this)),
      places_(new WindowPlaces(*this, tabs_, setting.services, *theme_, setting.home,
                               {.opening = opening_, .files = files_, .drops = *drops_})),
      details_(new WindowDetails(*this, {.theme = *theme_,
                                         .services = setting.services,
                                         .tabs = tabs_,
                                         .commands = commands_,
                                         .home = setting.home})),
      commandBar_(new CommandBar(*theme_, *actions_, *menus_, this)), panes_(new QStackedWidget),
      splitter_(new PaneSplitter(*theme_, panes_, this)), statusBar_(new StatusBar(*theme_, this)),
      jobChip_(new JobChip(setting.services.center(), *theme_, statusBar_)) {
    setAttribute(Qt::WA_DeleteOnClose);
    setMinimumSize(theme_->size(ThemeSize::windowMinimumWidth), theme_->size(ThemeSize::windowMinimumHeight));
    layOut();
    statusBar_->addSwitches(viewModes_->details(), viewModes_->largeIcons());
    statusBar_->take(jobChip_);
    statusBar_->setHome(places_->home());
    connect(jobChip_, &QAbstractButton::clicked, this, &BrowserWindow::showJobs);
    new FocusRing(this);
    new WindowKeys(*this, keys_);
    takeDrops();
    bindCommands();
    fillMenusWithFiles();
    places_->home().setPrompter(prompter_);
    followTabs();
    actions_->refresh();
    paneArea().focusContent();
}

BrowserWindow::~BrowserWindow() {
    // The widgets look at the models to their end.
    qDeleteAll(findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly));
}

QSize BrowserWindow::firstSize(const Theme& theme, const QSize& screen) {
    constexpr double largestShare = 0.85;
    return QSize(theme.size(ThemeSize::windowWidth), theme.size(ThemeSize::windowHeight))
        .boundedTo((QSizeF(screen) * largestShare).toSize());
}

void BrowserWindow::layOut() {
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins({});
    column->setSpacing(0);
    column->addWidget(tabStrip_);
    column->addWidget(navigationRow_);
    column->addWidget(commandBar_);
    column->addWidget(splitter_, 1);
    splitter_->put(PaneSplitter::Side::tree, places_->makeTree());
    splitter_->put(PaneSplitter::Side::details, &details_->pane());
    column->addWidget(statusBar_);
}

void BrowserWindow::takeDrops() {
    tabStrip_->setDrops(*drops_);
    navigationRow_->addressBar().crumbBar().setDrops(*drops_);
    connect(drops_, &FolderDrop::effectChanged, statusBar_, &StatusBar::setDropEffect);
}

void BrowserWindow::applySettings() {
    const AppSettings& settings = services_->settings();
    statusBar_->setVisible(settings.showStatusBar());
    placeJobChip();
    // There is nothing at home that it could say more about.
    splitter_->setWanted(PaneSplitter::Side::details,
                         settings.showsDetailsPane() && model().currentURL().has_value());
    refreshTitle();
}

WindowState BrowserWindow::state() const {
    const QSize size = isMaximized() ? normalGeometry().size() : this->size();
    return {.width = size.width(),
            .height = size.height(),
            .isMaximized = isMaximized(),
            .treeWidth = splitter_->width(PaneSplitter::Side::tree),
            .detailsWidth = splitter_->width(PaneSplitter::Side::details)};
}

void BrowserWindow::setState(const WindowState& state) {
    splitter_->setWidth(PaneSplitter::Side::tree, state.treeWidth);
    splitter_->setWidth(PaneSplitter::Side::details, state.detailsWidth);
    resize(state.width, state.height);
    setWindowState(windowState().setFlag(Qt::WindowMaximized, state.isMaximized));
}

// ---- Commands

void BrowserWindow::bindCommands() {
    files_.bindTo(commands_);
    opening_.bindTo(commands_);
    commands_.bind(FileCommand::newWindow,
                   {.perform = [this](BrowserModel&) { services_->requestNewWindow(&tabs_); }});
    commands_.bind(FileCommand::toggleDetailsPane,
                   {.perform =
                        [this](BrowserModel&) {
                            AppSettings& settings = services_->settings();
                            settings.setShowsDetailsPane(!settings.showsDetailsPane());
                        },
                    // There is none at home.
                    .isEnabled = [](const BrowserModel& pane) { return pane.currentURL().has_value(); }});
    connect(&services_->settings(), &AppSettings::changed, this, &BrowserWindow::applySettings);
}

void BrowserWindow::fillMenusWithFiles() {
    auto& context = contextMenu_->owners();
    context.canPaste = [this] { return files_.clipboard().canPaste(); };
    context.pasteIntoSelected = [this](BrowserModel& pane) {
        files_.clipboard().pasteInto(pane, pane.items()[*pane.selection().firstRow()].url());
    };
    context.copyFolderPath = [this](const BrowserModel& pane) { files_.clipboard().copyPath(pane); };
    context.showFolderProperties = [this](BrowserModel& pane) { details_->showPropertiesOfFolder(pane); };
    context.fillOpenWith = [this](QMenu& menu, BrowserModel& pane) {
        windowOpening_->fillOpenWith(menu, pane);
    };
    auto* const transfers = new TransferMenus(
        *this,
        {.theme = *theme_, .services = *services_, .commands = commands_, .transfers = files_.transfers()},
        std::make_unique<FolderPickerDialog>([this] { return this; }));
    context.addTransfers = [transfers](QMenu& menu, BrowserModel& pane) { transfers->addTo(menu, pane); };
    auto& menus = menus_->owners();
    menus.addTransfers = [this, transfers](QMenu& menu) { transfers->addTo(menu, model()); };
    menus.showSettings = [this] { SettingsWindow::open(*theme_, *services_); };
    menus.showFolderOptions = [this] {
        (new FolderOptionsDialog(*theme_, services_->settings(), this))->open();
    };
    menus.showAbout = [this] { (new AboutDialog(*theme_, this))->open(); };
    menus.fillTemplates = [this](QMenu& menu) {
        templates_.refresh();
        for (const NewFileTemplate& pattern : templates_.list()) {
            auto* const entry = menu.addAction(
                QString::fromStdString(pattern.title).replace(QLatin1Char('&'), QLatin1String("&&")));
            entry->setEnabled(files_.creation().canCreate(model()));
            connect(entry, &QAction::triggered, this,
                    [this, pattern] { files_.creation().createFile(model(), pattern); });
        }
    };
}

void BrowserWindow::watch(FileView& view) {
    if (view.findChild<MenuTrigger*>(QString(), Qt::FindDirectChildrenOnly)) return;
    connect(new MenuTrigger(view), &MenuTrigger::requested, this, &BrowserWindow::showContextMenu);
    connect(&view, &FileView::dropEffectChanged, statusBar_, &StatusBar::setDropEffect);
}

void BrowserWindow::showContextMenu(QPoint globalPosition) {
    auto* const menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    contextMenu_->fill(*menu, model());
    menu->popup(globalPosition);
}

// ---- Jobs

void BrowserWindow::placeJobChip() {
    const bool isInStatusBar = services_->settings().showStatusBar();
    if (isInStatusBar == (jobChip_->parentWidget() == statusBar_)) return;
    const bool wasShown = !jobChip_->isHidden();
    if (isInStatusBar) {
        commandBar_->setTail(nullptr);
        statusBar_->take(jobChip_);
    } else {
        jobChip_->setParent(commandBar_);
        commandBar_->setTail(jobChip_);
    }
    jobChip_->setVisible(wasShown);
}

void BrowserWindow::showJobs() {
    if (auto* const progress = qobject_cast<ProgressWindow*>(services_->progressWindow()))
        progress->comeBack();
}

// ---- Tabs

void BrowserWindow::followTabs() {
    tabs_.onLastTabClosed = [this] { close(); };
    connect(&tabs_, &BrowserTabsModel::tabAdded, this, &BrowserWindow::addPaneArea);
    connect(&tabs_, &BrowserTabsModel::tabClosed, this, [this](std::size_t, const BrowserModel* pane) {
        // It is still shown, and its pane lives, until the event loop runs.
        if (auto* const area = paneAreaOf(*pane)) area->deleteLater();
    });
    connect(&tabs_, &BrowserTabsModel::activeTabChanged, this, &BrowserWindow::showActiveTab);
    connect(&tabs_, &BrowserTabsModel::titleChanged, this, &BrowserWindow::applySettings);
    connect(&navigationRow_->addressBar(), &AddressBar::finished, this,
            [this] { paneArea().focusContent(); });
    connect(&navigationRow_->addressBar(), &AddressBar::openInNewWindowRequested, windowOpening_,
            &WindowOpening::openInNewWindow);
    connect(&navigationRow_->searchField(), &SearchField::finished, this,
            [this] { paneArea().focusContent(); });
    connect(tabStrip_, &TabStrip::copyPathRequested, this,
            [this](const FileURL& folder) { services_->clipboard().copyPaths({folder}); });
    connect(tabStrip_, &TabStrip::openFoldersRequested, this,
            [this](const std::vector<FileURL>& items) { DroppedFolders::openAsTabs(&tabs_, items); });
    for (std::size_t index = 0; index < tabs_.count(); ++index)
        addPaneArea(index);
    showActiveTab();
}

void BrowserWindow::addPaneArea(std::size_t index) {
    BrowserModel& pane = tabs_.tab(index);
    pane.setPrompter(prompter_);
    auto* const area = new PaneArea(pane, *theme_, keys_,
                                    {.settings = &services_->settings(),
                                     .clipboard = &services_->clipboard(),
                                     .thumbnails = &ThumbnailStore::of(*services_),
                                     .actions = &files_});
    area->setHomePage(places_->makeHomeView());
    connect(area, &PaneArea::openRequested, this,
            [this, &pane](std::size_t row) { opening_.openRow(pane, row); });
    connect(area, &PaneArea::tabRequested, this,
            [this, &pane](std::size_t row) { opening_.openRowBehind(pane, row); });
    pane.requestQuickLook = [this, area, &pane] {
        QuickLookWindow::toggle({.theme = *theme_,
                                 .area = *area,
                                 .thumbnails = &ThumbnailStore::of(*services_),
                                 .open = [this, &pane](std::size_t row) { opening_.openRow(pane, row); }},
                                *this);
    };
    watch(area->view());
    connect(area, &PaneArea::viewChanged, this, [this, area] {
        watch(area->view());
        if (area == panes_->currentWidget()) statusBar_->follow(area->model(), area->view());
    });
    panes_->addWidget(area);
}

PaneArea* BrowserWindow::paneAreaOf(const BrowserModel& pane) const {
    for (int i = 0; i < panes_->count(); ++i) {
        auto* const area = static_cast<PaneArea*>(panes_->widget(i));
        if (&area->model() == &pane) return area;
    }
    return nullptr;
}

void BrowserWindow::showActiveTab() {
    const bool hadFocus = panes_->isAncestorOf(focusWidget());
    panes_->setCurrentWidget(&paneArea());
    statusBar_->follow(model(), view());
    if (hadFocus) paneArea().focusContent();
    applySettings();
}

PaneArea& BrowserWindow::paneArea() const {
    return *paneAreaOf(tabs_.activeTab());
}

FileView& BrowserWindow::view() const {
    return paneArea().view();
}

const Overlay& BrowserWindow::overlay() const {
    return paneArea().overlay();
}

DetailsPane& BrowserWindow::detailsPane() const {
    return details_->pane();
}

void BrowserWindow::refreshTitle() {
    const auto& folder = model().currentURL();
    const bool showsPath = folder && services_->settings().showFullPathInTitle();
    setWindowTitle(showsPath ? QString::fromStdString(FileName::displayText(folder->path()))
                             : LocationLook::title(model()));
}

// ---- Events

bool BrowserWindow::event(QEvent* event) {
    if (event->type() == QEvent::WindowActivate) {
        services_->setActiveWindowTabs(&tabs_);
        places_->folders().refresh();
    }
    return QWidget::event(event);
}

std::vector<QWidget*> BrowserWindow::focusStops() const {
    std::vector<QWidget*> stops = {tabStrip_, &navigationRow_->addressBar(), &navigationRow_->searchField(),
                                   commandBar_};
    for (int i = 0; i < splitter_->count(); ++i)
        stops.push_back(splitter_->widget(i) == panes_ ? &paneArea() : splitter_->widget(i));
    stops.push_back(statusBar_);
    return stops;
}

void BrowserWindow::keyPressEvent(QKeyEvent* event) {
    const bool isPlain = event->modifiers() == Qt::NoModifier;
    if (event->key() == Qt::Key_F6 && (isPlain || event->modifiers() == Qt::ShiftModifier))
        return FocusCycle::advance(focusStops(), isPlain ? FocusCycle::Direction::forward
                                                         : FocusCycle::Direction::backward);
    if (event->key() == Qt::Key_F10 && isPlain) return commandBar_->focusFirst();
    if (event->key() == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier) return openMenuOfFocus();
    // A control beside the file view has had no use for it.
    if (event->key() == Qt::Key_Escape && isPlain) return paneArea().focusContent();
    QWidget::keyPressEvent(event);
}

/// As the Menu key does, which not every keyboard has.
void BrowserWindow::openMenuOfFocus() {
    QWidget* const focused = focusWidget();
    if (!focused) return;
    const QPoint at = focused->inputMethodQuery(Qt::ImCursorRectangle).toRect().center();
    QContextMenuEvent wanted(QContextMenuEvent::Keyboard, at, focused->mapToGlobal(at));
    QApplication::sendEvent(focused, &wanted);
}

void BrowserWindow::closeEvent(QCloseEvent* event) {
    Q_EMIT closing();
    QWidget::closeEvent(event);
}

void BrowserWindow::mousePressEvent(QMouseEvent* event) {
    switch (event->button()) {
    case Qt::BackButton: return model().goBack();
    case Qt::ForwardButton: return model().goForward();
    default: QWidget::mousePressEvent(event);
    }
}

} // namespace ombrel
