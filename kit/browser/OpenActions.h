#pragma once

#include "browser/BrowserModel.h"
#include "browser/CommandDispatcher.h"
#include "services/ApplicationLauncher.h"

#include <QObject>

#include <cstddef>
#include <functional>
#include <vector>

namespace ombrel {

class AppServices;

/// What opens things: items in place, in tabs, windows, terminals and applications, and what puts folders
/// within reach. Main thread only; nothing here waits, and what could not be opened is told to the pane's
/// prompter.
///
/// Folders, links to folders and packages open in place. Programs, scripts and desktop files run only when
/// they are marked as executable and the user agrees.
class OpenActions final : public QObject {
    Q_OBJECT

public:
    /// More items than these are opened only after a question.
    static constexpr std::size_t mostUnasked = 10;
    /// More folders than these do not open in tabs, and cannot be pinned, together.
    static constexpr std::size_t mostTogether = 100;

    /// `services` must outlive it.
    explicit OpenActions(AppServices& services, QObject* parent = nullptr);

    /// The dispatcher must not outlive it.
    void bindTo(CommandDispatcher& commands);

    /// Lets the user choose an application for files that have none; absent, that is told.
    std::function<void(BrowserModel& pane, const std::vector<FileURL>& urls)> requestApplication;

    /// Opens a tab beside the active one, which stays active; absent, tabs open as the pane opens them.
    std::function<void(const FileURL&)> openTabBehind;

    /// Several folders open the first one in place and the others in tabs.
    void open(BrowserModel& pane);
    /// One item, whatever is selected.
    void openRow(BrowserModel& pane, std::size_t row);
    /// A folder, in a tab behind the active one; nothing else.
    void openRowBehind(const BrowserModel& pane, std::size_t row) const;

    /// The selected items. An application that opens folders is remembered for other folders.
    void openWith(BrowserModel& pane, const DesktopApplication& application);
    void openWith(BrowserModel& pane, const DesktopApplication& application,
                  const std::vector<FileURL>& urls);
    void openFolderWith(BrowserModel& pane, const FileURL& folder, const DesktopApplication& application);
    /// What the items can be opened with; of many the first ones count.
    void applicationsFor(std::vector<FileURL> urls, std::function<void(const ApplicationChoice&)> done);
    /// The applications that opened folders last, the latest first.
    void recentFolderApplications(std::function<void(const std::vector<DesktopApplication>&)> done);

    void openTerminal(BrowserModel& pane, const FileURL& folder);
    /// Takes a volume out of use; why it could not be is told.
    void eject(BrowserModel& pane, const FileURL& volume);

private:
    void openInTabs(BrowserModel& pane);
    void openInWindows(BrowserModel& pane);
    void openContainingFolders(BrowserModel& pane);
    void createShortcuts(BrowserModel& pane);

    AppServices* services_;
};

} // namespace ombrel
