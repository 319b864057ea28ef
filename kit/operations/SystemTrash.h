#pragma once

#include "listing/MountTable.h"
#include "operations/TrashBackend.h"
#include "operations/TrashFolder.h"

#include <functional>
#include <optional>
#include <span>
#include <vector>

namespace ombrel {

/// The desktop's trash convention 1.0: one trash in the user's home, one in the top folder of every other
/// mounted volume.
///
/// An item goes to the home trash when that is on the same file system, else to the trash of the volume it is
/// on; a rename has the last word on what one file system is. Nothing is ever copied: where no trash can take
/// an item the failure says why, and the caller may offer to delete it for good.
class SystemTrash final : public TrashBackend {
public:
    struct Places {
        FileURL homeTrash;  ///< "$XDG_DATA_HOME/Trash"
        FileURL homeFolder; ///< never to be trashed
        uid_t user = 0;

        /// Those of the user this process runs for.
        [[nodiscard]] static Places ofCurrentUser();
    };
    using MountSource = std::function<MountTable()>;

    explicit SystemTrash(Places places = Places::ofCurrentUser(), MountSource mounts = &MountTable::current);

    std::expected<FileURL, TrashFailure> moveToTrash(const FileReference& item) override;
    TrashListing list(TrashSizes sizes, const std::stop_token& stop) override;
    std::optional<TrashedItem> itemAt(const FileURL& location) override;
    void forget(std::span<const FileURL> locations) override;
    void tidy(const std::stop_token& stop) override;

private:
    [[nodiscard]] std::optional<TrashUnavailableReason> refusal(const ConfirmedSource& source,
                                                                const FileURL& location,
                                                                const FileStatus& holder,
                                                                const Mount* mount) const;
    [[nodiscard]] bool mayGoHome(const FileStatus& holder) const;
    void eachFolder(const std::function<void(const TrashFolder&)>& use,
                    std::vector<FileURL>& unreadable) const;

    Places places_;
    MountSource mounts_;
};

} // namespace ombrel
