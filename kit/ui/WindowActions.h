#pragma once

#include "browser/FileCommand.h"
#include "ui/ActivePane.h"

#include <QObject>
#include <QString>

#include <array>
#include <optional>
#include <string_view>

class QAction;
class QWidget;

namespace ombrel {

class AppServices;
class BrowserTabsModel;
class CommandDispatcher;
class Theme;

/// Every command as an action of one window: named, with its shortcut to be read, and enabled as the active
/// pane allows. Keys reach commands by another way, so the actions have no shortcuts that Qt knows of.
///
/// An action's text holds the shortcut behind a tab, as menus want it; `iconText` is the name alone.
class WindowActions final : public QObject {
    Q_OBJECT

public:
    /// The actions belong to `window`; all must outlive it.
    WindowActions(QWidget& window, const Theme& theme, BrowserTabsModel& tabs,
                  const CommandDispatcher& commands, AppServices& services);

    [[nodiscard]] QAction* of(FileCommand command) const noexcept;

    /// Takes names, shortcuts and what is possible anew. Happens by itself after changes of the pane, but not
    /// before the event loop runs.
    void refresh();

Q_SIGNALS:
    void refreshed();

private:
    void followPane(const BrowserModel& pane, QObject& context);
    void refreshLater();
    void refreshOne(FileCommand command);
    [[nodiscard]] QString nameOf(FileCommand command) const;
    [[nodiscard]] QString toolTipOf(FileCommand command, const QString& name) const;

    ActivePane pane_;
    const CommandDispatcher* commands_;
    AppServices* services_;
    std::array<QAction*, FileCommands::count> actions_{};
    bool isRefreshDue_ = false;
};

} // namespace ombrel
