#pragma once

#include "base/FileURL.h"
#include "base/PathInput.h"
#include "base/UserFolders.h"
#include "listing/KnownFolder.h"

#include <QObject>

namespace ombrel {

/// Where the user's standard folders stand (see UserDirectories), kept for the main thread, which never waits
/// for the disk: until they have been read, they stand where they stood before, at first by the table of
/// names.
class KnownFolderLocator final : public QObject {
    Q_OBJECT

public:
    /// `config` is the folder that holds the desktop's "user-dirs.dirs".
    explicit KnownFolderLocator(FileURL home = PathInput::userHomeDirectory(),
                                FileURL config = UserFolders::config(), QObject* parent = nullptr);

    [[nodiscard]] const KnownFolders& folders() const noexcept { return folders_; }
    [[nodiscard]] const FileURL& config() const noexcept { return config_; }

    /// Reads what the desktop has set up; `changed` follows where that differs.
    void refresh();
    [[nodiscard]] bool isBusy() const noexcept { return isReading_; }

Q_SIGNALS:
    void changed();
    /// `isBusy` has become false.
    void settled();

private:
    void take(const KnownFolders& folders);
    void finish();

    const FileURL config_;
    KnownFolders folders_;
    bool isReading_ = false;
    bool isToBeRepeated_ = false; // it was asked for again meanwhile
};

} // namespace ombrel
