#pragma once

#include "base/FileURL.h"
#include "browser/BrowserTabsModel.h"
#include "browser/CommandDispatcher.h"
#include "browser/FileActions.h"
#include "browser/KeyRouter.h"
#include "browser/NewFileTemplates.h"
#include "browser/OpenActions.h"
#include "services/WindowState.h"

#include <QWidget>

#include <optional>
#include <vector>

class QStackedWidget;

namespace ombrel {

class AppServices;
class CommandBar;
class ContextMenu;
class DetailsPane;
class FileView;
class FolderDrop;
class JobChip;
class NavigationRow;
class Overlay;
class PaneArea;
class PaneSplitter;
class StatusBar;
class TabStrip;
class Theme;
class ViewModeActions;
class WindowActions;
class WindowDetails;
class WindowPlaces;
class WindowPrompter;
class WindowMenus;
class WindowOpening;

/// One window: it makes the models of its tabs and the widgets that show them, and connects them. What stands
/// around the file view follows the active tab. Deletes itself when closed.
class BrowserWindow final : public QWidget {
    Q_OBJECT

public:
    struct Setting {
        const Theme& theme;    ///< must outlive the window
        AppServices& services; ///< likewise
        FileURL home;          ///< where addresses begin
        std::optional<FileURL> startingAt =
            std::nullopt; ///< the first tab's folder; without one it is at home
    };

    explicit BrowserWindow(const Setting& setting);
    ~BrowserWindow() override;

    [[nodiscard]] BrowserTabsModel& tabs() noexcept { return tabs_; }
    /// The pane of the active tab.
    [[nodiscard]] BrowserModel& model() const { return tabs_.activeTab(); }
    /// What the commands do, wherever they come from. Who can do more binds it, then calls `refresh` of the
    /// actions.
    [[nodiscard]] CommandDispatcher& commands() noexcept { return commands_; }
    /// The commands that change files, and what menus and gestures need of them beyond the commands.
    [[nodiscard]] FileActions& files() noexcept { return files_; }
    [[nodiscard]] OpenActions& opening() noexcept { return opening_; }
    [[nodiscard]] WindowActions& actions() noexcept { return *actions_; }
    [[nodiscard]] WindowMenus& menus() noexcept { return *menus_; }
    [[nodiscard]] ContextMenu& contextMenu() noexcept { return *contextMenu_; }
    /// Of the active tab.
    [[nodiscard]] PaneArea& paneArea() const;
    [[nodiscard]] FileView& view() const;
    [[nodiscard]] const Overlay& overlay() const;
    [[nodiscard]] const StatusBar& statusBar() const noexcept { return *statusBar_; }

    [[nodiscard]] DetailsPane& detailsPane() const;

    [[nodiscard]] PaneSplitter& splitter() const noexcept { return *splitter_; }

    /// The size of a first window on a screen: as the theme has it, or most of a smaller screen.
    [[nodiscard]] static QSize firstSize(const Theme& theme, const QSize& screen);
    /// What another window can begin with.
    [[nodiscard]] WindowState state() const;
    /// The widths of the sides are taken at once, size and maximising when the window is next shown.
    void setState(const WindowState& state);

Q_SIGNALS:
    /// It is about to be closed, and still as the user left it.
    void closing();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    bool event(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void openMenuOfFocus();
    void layOut();
    void takeDrops();
    void bindCommands();
    void fillMenusWithFiles();
    void followTabs();
    void addPaneArea(std::size_t index);
    [[nodiscard]] PaneArea* paneAreaOf(const BrowserModel& pane) const;
    void showActiveTab();
    void refreshTitle();
    void applySettings();
    void watch(FileView& view);
    void showContextMenu(QPoint globalPosition);
    void placeJobChip();
    void showJobs();
    /// Where F6 leads, in turn.
    [[nodiscard]] std::vector<QWidget*> focusStops() const;

    const Theme* theme_;
    AppServices* services_;
    BrowserTabsModel tabs_;
    CommandDispatcher commands_;
    FileActions files_;
    OpenActions opening_;
    NewFileTemplates templates_;
    KeyRouter keys_;
    WindowActions* actions_;
    ViewModeActions* viewModes_;
    WindowMenus* menus_;
    ContextMenu* contextMenu_;
    WindowPrompter* prompter_;
    WindowOpening* windowOpening_;
    FolderDrop* drops_; ///< beside the file views: on places, crumbs and tabs
    TabStrip* tabStrip_;
    NavigationRow* navigationRow_;
    WindowPlaces* places_;
    WindowDetails* details_;
    CommandBar* commandBar_;
    QStackedWidget* panes_; ///< one for each tab
    PaneSplitter* splitter_;
    StatusBar* statusBar_;
    JobChip* jobChip_;
};

} // namespace ombrel
