#pragma once

#include "services/AppSettings.h"
#include "services/DirectoryWatcher.h"
#include "services/KnownFolderLocator.h"

#include <QObject>

namespace ombrel {

/// Keeps the settings true while the program runs: takes over what another running program writes to the
/// file, and where the desktop sets up the user's standard folders.
///
/// Main thread only, and it never blocks. The folders of the two files are watched; what lies on a server or
/// behind a link elsewhere is seen at the next `refresh`.
class SettingsFollower final : public QObject {
    Q_OBJECT

public:
    /// `settings` must outlive the follower.
    explicit SettingsFollower(AppSettings& settings, FileURL home = PathInput::userHomeDirectory(),
                              FileURL config = UserFolders::config(), QObject* parent = nullptr);

    /// Begins to watch, and reads what has changed since the settings were made.
    void start();
    /// Reads again, whatever the watch says: when the program comes to the front.
    void refresh();
    void stop();

private:
    /// A folder that is watched as soon as it is there.
    struct Watched {
        FileURL folder;
        DirectoryWatcher watcher;
        bool isWatched = false;
    };
    void watch(Watched& watched);
    void noteSettings(DirectoryWatcher::Event event);
    void noteConfig(DirectoryWatcher::Event event);

    AppSettings& settings_;
    KnownFolderLocator locator_;
    Watched settingsFolder_;
    Watched config_;
    bool isStarted_ = false;
};

} // namespace ombrel
