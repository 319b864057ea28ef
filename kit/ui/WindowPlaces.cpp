#include "ui/WindowPlaces.h"

#include "browser/BrowserTabsModel.h"
#include "browser/FileActions.h"
#include "browser/OpenActions.h"
#include "services/AppServices.h"
#include "ui/HomeView.h"
#include "ui/NavigationTree.h"
#include "ui/PropertiesWindow.h"

#include <QWidget>

namespace ombrel {

WindowPlaces::WindowPlaces(QWidget& window, BrowserTabsModel& tabs, AppServices& services, const Theme& theme,
                           const FileURL& home, const Actions& actions)
    : QObject(&window), tabs_(&tabs), services_(&services), theme_(&theme), actions_(actions),
      home_(services, home),
      folders_(services, home_, [&directories = services.directories()](const DirectoryRequest& request) {
          return directories.snapshots(request);
      }) {
    home_.setEjector(&ejector_);
    connect(&tabs, &BrowserTabsModel::activeTabChanged, this, &WindowPlaces::followPane);
    connect(&services, &AppServices::lastVolumeEventChanged, &folders_, &FolderTreeModel::refresh);
    followPane();
}

void WindowPlaces::followPane() {
    disconnect(following_);
    disconnect(telling_);
    const BrowserModel& pane = tabs_->activeTab();
    const auto follow = [this, &pane] { folders_.follow(pane.currentURL()); };
    following_ = connect(&pane, &BrowserModel::locationChanged, this, follow);
    // Where folders are first, one look at the first item says whether there are any.
    telling_ = connect(&pane, &BrowserModel::itemsChanged, this, [this, &pane] {
        const bool isWhole = pane.listingState() == ListingState::Case::loaded && !pane.showsSearch();
        const auto& items = pane.items();
        if (isWhole && pane.sort().foldersFirst && pane.currentURL())
            folders_.tellOfFolders(*pane.currentURL(), !items.empty() && items[0].isDirectoryLike());
    });
    follow();
}

NavigationTree* WindowPlaces::makeTree() {
    return new NavigationTree(folders_, *theme_, intents());
}

HomeView* WindowPlaces::makeHomeView() {
    return new HomeView(home_, *theme_, intents());
}

PlaceIntents WindowPlaces::intents() {
    PlaceIntents intents;
    intents.open = [this](const FileURL& folder) { tabs_->activeTab().navigate(folder); };
    intents.openHome = [this] { tabs_->activeTab().navigateHome(); };
    intents.openInNewTab = [this](const FileURL& folder) {
        tabs_->addTab(folder, BrowserTabsModel::Activation::activate);
    };
    intents.openInTabBehind = [this](const FileURL& folder) {
        tabs_->addTab(folder, BrowserTabsModel::Activation::stayBehind);
    };
    intents.openInNewWindow = [this](const FileURL& folder) {
        if (services_->openWindowAt) services_->openWindowAt(folder);
    };
    intents.openInTerminal = [this](const FileURL& folder) {
        actions_.opening.openTerminal(tabs_->activeTab(), folder);
    };
    intents.pasteInto = [this](const FileURL& folder) {
        actions_.files.clipboard().pasteInto(tabs_->activeTab(), folder);
    };
    intents.canPaste = [this] { return actions_.files.clipboard().canPaste(); };
    intents.copyPath = [this](const FileURL& folder) { services_->clipboard().copyPaths({folder}); };
    intents.showProperties = [this](const FileURL& folder) {
        PropertiesWindow::open(*theme_, PropertiesWindow::subjectAt(folder, *services_));
    };
    intents.drops = &actions_.drops;
    return intents;
}

} // namespace ombrel
