#pragma once

#include "base/FileURL.h"
#include "browser/BrowserModel.h"
#include "listing/PinnedFolder.h"

#include <QObject>

#include <cstdint>
#include <functional>
#include <set>
#include <span>

namespace ombrel {

class AppServices;

/// Takes panes to the folders of the quick-access list, and lets the user grant those that cannot be read.
/// Main thread only; folders are looked at by workers.
class FolderAccess final : public QObject {
    Q_OBJECT

public:
    enum class Prompting : bool { no, yes };

    /// `services` must outlive it.
    explicit FolderAccess(AppServices& services, QObject* parent = nullptr);

    /// Whether a grant covers the folder or nothing is known that keeps the user from reading it. A folder is
    /// taken for readable until it has been looked at.
    [[nodiscard]] bool isAuthorized(const PinnedFolder& folder) const;
    /// Looks at the folders; `changed` follows where the answer is another one than before.
    void refresh(std::span<const PinnedFolder> folders);

    /// Goes there. A folder that is there and may not be read is brought through the picker first where
    /// `prompting` allows; the pane stays where it is when the user picks none.
    void openPinned(BrowserModel& pane, const PinnedFolder& folder, Prompting prompting);
    void openKnownFolder(BrowserModel& pane, KnownFolder folder, Prompting prompting) {
        openPinned(pane, folder, prompting);
    }

Q_SIGNALS:
    void changed();

private:
    [[nodiscard]] bool isCovered(const FileURL& url) const;
    void look(const FileURL& url, std::function<void(bool isForbidden)> done);
    void learn(const FileURL& url, bool isForbidden);

    AppServices* services_;
    std::set<FileURL> forbidden_;
};

} // namespace ombrel
