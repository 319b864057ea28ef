#pragma once

#include <QObject>

#include <cstdint>
#include <functional>
#include <string_view>

class QAction;
class QMenu;
class QWidget;

namespace ombrel {

class AppServices;
class BrowserTabsModel;
class Theme;
class ViewModeActions;
class WindowActions;

/// The menus of the command bar, which context menus have too. Each is filled anew for the active pane
/// whenever it is about to be shown.
class WindowMenus final : public QObject {
    Q_OBJECT

public:
    enum class Kind : std::uint8_t { create, sort, view, more };

    /// What the menus offer and somebody else does; without it they leave it out.
    struct Owners {
        /// Appends what new files can be made from.
        std::function<void(QMenu&)> fillTemplates = {};
        /// Appends the menus of the folders that what is selected can be brought to.
        std::function<void(QMenu&)> addTransfers = {};
        std::function<void()> showFolderOptions = {};
        std::function<void()> showSettings = {};
        std::function<void()> showAbout = {};
    };

    /// Belongs to `window`; all must outlive it.
    WindowMenus(QWidget& window, const Theme& theme, AppServices& services, BrowserTabsModel& tabs,
                WindowActions& actions, ViewModeActions& viewModes);

    /// For those who do it to say so.
    [[nodiscard]] Owners& owners() noexcept { return owners_; }

    /// A menu of its own, whose parent is `parent`.
    [[nodiscard]] QMenu* make(Kind kind, QWidget* parent);
    /// Appends what the menu has now.
    void fill(Kind kind, QMenu& menu);
    /// Whether anything in the menu could be done now.
    [[nodiscard]] bool isUseful(Kind kind) const;
    [[nodiscard]] const ViewModeActions& viewModes() const noexcept { return *viewModes_; }

Q_SIGNALS:
    /// `menu` of the kind `more` is about to be shown and empty: whoever had to give up its place for want of
    /// room can put it there.
    void moreIsFilled(QMenu& menu);

private:
    void fillCreate(QMenu& menu);
    void fillSort(QMenu& menu);
    void fillView(QMenu& menu);
    void fillMore(QMenu& menu);
    QAction* addChoice(QMenu& menu, const QString& text, bool isChosen, std::function<void()> choose);
    void addSwitch(QMenu& menu, std::string_view textKey, bool isOn, std::function<void(bool)> set);

    const Theme* theme_;
    AppServices* services_;
    BrowserTabsModel* tabs_;
    WindowActions* actions_;
    ViewModeActions* viewModes_;
    Owners owners_;
};

} // namespace ombrel
