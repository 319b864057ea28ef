#pragma once

#include "browser/FileCommand.h"

#include <QObject>

#include <functional>

class QMenu;
class QWidget;

namespace ombrel {

class AppServices;
class BrowserModel;
class CommandDispatcher;
class Theme;
class WindowActions;
class WindowMenus;

/// The menu of a pane: of what is selected, or of its folder when nothing is. What makes no sense for the
/// items is left out; what makes sense but cannot be done now is disabled.
class ContextMenu final : public QObject {
    Q_OBJECT

public:
    /// What is offered and somebody else does; without it it is left out.
    struct Owners {
        /// Appends the applications that open the selected files or the selected folder, and the way to
        /// others.
        std::function<void(QMenu&, BrowserModel&)> fillOpenWith = {};
        /// Appends the menus of the folders that what is selected can be brought to.
        std::function<void(QMenu&, BrowserModel&)> addTransfers = {};
        /// Whether something can be pasted, and into the one folder that is selected.
        std::function<bool()> canPaste = {};
        std::function<void(BrowserModel&)> pasteIntoSelected = {};
        /// About the folder that the pane shows.
        std::function<void(const BrowserModel&)> copyFolderPath = {};
        std::function<void(BrowserModel&)> showFolderProperties = {};
    };

    struct Setting {
        const Theme& theme;
        AppServices& services;
        const CommandDispatcher& commands;
        WindowActions& actions;
        WindowMenus& menus;
    };

    /// Belongs to `window`; all of `setting` must outlive it.
    ContextMenu(QWidget& window, const Setting& setting);

    /// For those who do it to say so.
    [[nodiscard]] Owners& owners() noexcept { return owners_; }

    /// Appends what there is for `pane` now, which is the active one.
    void fill(QMenu& menu, BrowserModel& pane);

private:
    void fillForItems(QMenu& menu, BrowserModel& pane);
    void fillForFolder(QMenu& menu, BrowserModel& pane);
    void addOpening(QMenu& menu, BrowserModel& pane);
    void addClipboard(QMenu& menu, BrowserModel& pane);
    void addDeletion(QMenu& menu);
    /// Adds those that something does: all of them, or only those that can be done now.
    enum class Which : std::uint8_t { bound, possible };
    void add(QMenu& menu, std::initializer_list<FileCommand> commands, Which which);

    Setting setting_;
    QWidget* window_;
    Owners owners_;
};

} // namespace ombrel
