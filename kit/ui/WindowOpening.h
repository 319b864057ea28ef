#pragma once

#include "base/FileURL.h"
#include "services/DesktopApplication.h"

#include <QObject>

#include <cstdint>
#include <string>
#include <vector>

class QMenu;

namespace ombrel {

class AppServices;
class BrowserModel;
class BrowserTabsModel;
class OpenActions;
class Theme;

/// Opening in one window: what the commands and menus need of the window's tabs and of dialogs to open things
/// with.
class WindowOpening final : public QObject {
    Q_OBJECT

public:
    struct Setting {
        const Theme& theme;
        AppServices& services;
        BrowserTabsModel& tabs;
        OpenActions& actions;
    };

    /// Belongs to `window`; all of `setting` must outlive the window's widgets.
    WindowOpening(QWidget& window, const Setting& setting);

    /// Appends, when they are known, the applications that open the selected files, the default one first, or
    /// those that opened folders last, where one is selected; and the way to all others.
    void fillOpenWith(QMenu& menu, BrowserModel& pane);
    /// Lets the user choose what opens the files.
    void chooseApplication(BrowserModel& pane, const std::vector<FileURL>& items);
    void openInNewWindow(const FileURL& folder);

private:
    enum class Subject : std::uint8_t { files, folder };

    void choose(BrowserModel& pane, const std::vector<FileURL>& items, Subject subject);
    void open(BrowserModel& pane, const std::vector<FileURL>& items, Subject subject,
              const DesktopApplication& application);
    void openAlways(const std::vector<std::string>& types, const DesktopApplication& application);

    Setting setting_;
    QWidget* window_;
};

} // namespace ombrel
