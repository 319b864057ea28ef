#pragma once

#include "base/OwnedFd.h"
#include "operations/ConfirmedSource.h"
#include "operations/TrashBackend.h"
#include "operations/TrashInfo.h"

#include <sys/types.h>

#include <cstdint>
#include <expected>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>

namespace ombrel {

/// One trash directory, held open: its "files" with the items, its "info" with a record of each (the
/// desktop's trash convention 1.0). Works on descriptors; blocking.
class TrashFolder {
public:
    enum class Access : std::uint8_t { existing, create };
    /// `sourceMissing` when it does not exist and is not to be created.
    using Opened = std::expected<TrashFolder, TrashFailure>;

    /// The user's own one, "$XDG_DATA_HOME/Trash".
    [[nodiscard]] static Opened home(const FileURL& root, Access access);
    /// ".Trash/<uid>" in the top folder of a volume, where an administrator has made a safe ".Trash": a
    /// folder, not a link, with the sticky bit.
    [[nodiscard]] static Opened shared(const FileURL& top, uid_t user, Access access);
    /// ".Trash-<uid>" in the top folder of a volume. It must belong to the user and be no link; where the
    /// file system holds no owners, the former cannot be asked for.
    [[nodiscard]] static Opened own(const FileURL& top, uid_t user, bool holdsOwners, Access access);

    /// By a trashed item's location "<trash>/files/<name>": one of the above, told by its names.
    [[nodiscard]] static std::optional<TrashFolder> holding(const FileURL& location, const FileURL& homeRoot);

    [[nodiscard]] const FileURL& url() const noexcept { return url_; }
    /// Tells trash folders apart that are reached by several mounts.
    [[nodiscard]] const FileIdentity& identity() const noexcept { return identity_; }
    [[nodiscard]] FileURL locationOf(std::string_view name) const;

    /// Takes an item in. `original` is its location free of links. Its record is made first, under a name
    /// that nothing else has, then the item itself is renamed there, never over anything; when that fails the
    /// record goes again. Answers the item's name in the trash, or what the call that failed left: EXDEV when
    /// the item is on another file system.
    [[nodiscard]] POSIX::Result<std::string> take(const ConfirmedSource& source, const FileURL& original,
                                                  std::int64_t now) const;

    /// Adds what is in it to `listing`.
    [[nodiscard]] POSIX::Result<void> list(TrashListing& listing, TrashSizes sizes,
                                           const std::stop_token& stop) const;
    /// Nothing when there is no such item.
    [[nodiscard]] std::optional<TrashedItem> item(const std::string& name) const;
    /// Removes the record of an item that is not there any more.
    void forget(const std::string& name) const;
    /// Removes all such records that are not quite new, and what other programs leave in "expunged" while
    /// they empty the trash. `now` is in seconds since 1970-01-01 UTC.
    void tidy(std::int64_t now, const std::stop_token& stop) const;

private:
    TrashFolder() = default;
    [[nodiscard]] static Opened open(OwnedFd root, FileURL url, FileURL top, Access access);
    [[nodiscard]] std::string recordedPath(const FileURL& original) const;
    /// The text of a record and its own time of change.
    struct Record {
        std::optional<TrashInfo> info;
        std::int64_t modified = 0;
    };
    [[nodiscard]] std::optional<Record> record(const std::string& name) const;
    [[nodiscard]] TrashedItem described(const std::string& name, const FileStatus& status,
                                        const std::optional<Record>& record) const;

    FileURL url_;
    FileURL top_; // what relative paths in records start from
    bool isHome_ = false;
    FileIdentity identity_;
    OwnedFd root_, files_, info_;
};

} // namespace ombrel
