#pragma once

#include "browser/FolderTreeModel.h"
#include "browser/HomeModel.h"
#include "services/VolumeEjector.h"
#include "ui/PlaceIntents.h"

#include <QObject>

namespace ombrel {

class BrowserTabsModel;
class FileActions;
class FolderDrop;
class HomeView;
class NavigationTree;
class OpenActions;
class Theme;

/// The navigation tree and the home pages of one window: their models, and what is wanted in them done in the
/// window's tabs. The tree follows the active tab.
class WindowPlaces final : public QObject {
    Q_OBJECT

public:
    /// Who does what is wanted, for the active tab.
    struct Actions {
        OpenActions& opening;
        FileActions& files;
        FolderDrop& drops;
    };

    /// It belongs to `window`; `tabs`, `services`, `theme` and the actions must outlive the widgets.
    WindowPlaces(QWidget& window, BrowserTabsModel& tabs, AppServices& services, const Theme& theme,
                 const FileURL& home, const Actions& actions);

    /// Nobody's child yet.
    [[nodiscard]] NavigationTree* makeTree();
    [[nodiscard]] HomeView* makeHomeView();
    [[nodiscard]] HomeModel& home() noexcept { return home_; }
    [[nodiscard]] FolderTreeModel& folders() noexcept { return folders_; }

private:
    [[nodiscard]] PlaceIntents intents();
    void followPane();

    BrowserTabsModel* tabs_;
    AppServices* services_;
    const Theme* theme_;
    Actions actions_;
    VolumeEjector ejector_;
    HomeModel home_;
    FolderTreeModel folders_;
    QMetaObject::Connection following_, telling_;
};

} // namespace ombrel
