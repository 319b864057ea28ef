#include "ui/WindowDetails.h"

#include "browser/BrowserTabsModel.h"
#include "browser/CommandDispatcher.h"
#include "browser/ThumbnailStore.h"
#include "ui/DetailsPane.h"
#include "ui/PropertiesWindow.h"

namespace ombrel {

WindowDetails::WindowDetails(QWidget& window, const Setting& setting)
    : QObject(&window), theme_(&setting.theme),
      pane_(new DetailsPane({.theme = setting.theme,
                             .services = setting.services,
                             .thumbnails = ThumbnailStore::of(setting.services),
                             .home = setting.home})) {
    setting.commands.bind(FileCommand::showInfo,
                          {.perform = [this](BrowserModel& pane) { showProperties(pane); }});
    const auto follow = [this, tabs = &setting.tabs] { pane_->follow(tabs->activeTab()); };
    connect(&setting.tabs, &BrowserTabsModel::activeTabChanged, pane_, follow);
    connect(pane_, &DetailsPane::openRequested, this, [commands = &setting.commands, tabs = &setting.tabs] {
        commands->perform(FileCommand::open, tabs->activeTab());
    });
    connect(pane_, &DetailsPane::propertiesRequested, this,
            [this, tabs = &setting.tabs] { showProperties(tabs->activeTab()); });
    follow();
}

void WindowDetails::showProperties(const BrowserModel& pane) const {
    if (pane.selection().empty()) return showPropertiesOfFolder(pane);
    PropertiesWindow::open(*theme_, pane.selection());
}

void WindowDetails::showPropertiesOfFolder(const BrowserModel& pane) const {
    if (const auto& folder = pane.currentURL()) PropertiesWindow::open(*theme_, *folder);
}

} // namespace ombrel
