#pragma once

#include "base/FileURL.h"
#include "base/POSIXFailure.h"
#include "listing/FileStatus.h"
#include "listing/FileSystemTraits.h"

#include <cstdint>
#include <expected>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ombrel {

/// One file system, or a part of it, at one place of the tree.
struct Mount {
    std::uint64_t id = 0; ///< as in `FileStatus::mountID`
    std::uint64_t parentID = 0;
    std::uint64_t device = 0; ///< as in `FileIdentity::device`; btrfs subvolumes show others there
    FileURL point;
    std::string
        root; ///< what of the file system is mounted: "/" for all, a path inside it for binds and subvolumes
    std::string source;  ///< a device's path, "host:/share", or whatever the driver calls itself
    std::string type;    ///< as the kernel spells it: "ext4", "fuse.sshfs"
    std::string options; ///< of the mount, the file system and the user space, separated by commas
    FileSystemTraits traits;
    bool isReadOnly = false;
    /// A place (autofs) where stepping in makes somebody mount a volume, which may take for ever.
    bool isAsleep = false;
    bool isRemovable = false; ///< on a medium or drive that can be taken away
    /// The block device that holds it, where there is one.
    std::optional<std::uint64_t> blockDevice;

    /// Whether an option is there, by its name alone ("ro", "x-gvfs-hide").
    [[nodiscard]] bool hasOption(std::string_view name) const noexcept {
        return optionValue(name).has_value();
    }
    /// The value of "name=value", empty for an option without one, nothing when it is not there.
    [[nodiscard]] std::optional<std::string_view> optionValue(std::string_view name) const noexcept;
};

/// What was mounted where at one moment, as this process sees it. A value that is never changed and shares
/// its memory with its copies; any thread. Looking something up makes no system call and never touches a
/// mount, so it cannot hang.
class MountTable {
public:
    /// The empty table.
    MountTable();

    /// Reads the table (libmount, udev). Blocking, though never on a mount.
    [[nodiscard]] static std::expected<MountTable, POSIXFailure> read();
    /// From the text of a mountinfo file (proc(5)), without asking any device.
    [[nodiscard]] static std::expected<MountTable, POSIXFailure> fromText(std::string_view mountInfo);

    /// The table as it is now: read again only when the kernel says that something changed, otherwise one
    /// poll. Empty when it could never be read. Blocking as `read` is.
    [[nodiscard]] static MountTable current();

    /// In the kernel's order: a mount comes after the one it stands on.
    [[nodiscard]] std::span<const Mount> mounts() const noexcept { return *mounts_; }

    /// The mount that an object lies in, by what the system told of it. Nothing when it came or went
    /// meanwhile. The answers of this and the next two are valid as long as a copy of this table is.
    [[nodiscard]] const Mount* of(const FileStatus& status) const noexcept;
    [[nodiscard]] const Mount* byID(std::uint64_t id) const noexcept;
    /// The mount that holds what is at `url`, by the path's components alone: links on the way are not known
    /// here.
    [[nodiscard]] const Mount* containing(const FileURL& url) const noexcept;

    /// The traits of the mount that an object lies in; those of an unknown type when there is none.
    [[nodiscard]] FileSystemTraits traits(const FileStatus& status) const noexcept;

    /// Whether `mount` can be reached by its path: no other one stands on it or on a folder above it.
    [[nodiscard]] bool isVisible(const Mount& mount) const noexcept;

    /// Whether `mount`, or one that the way to it leads through, is asleep or served by another machine or
    /// process, so that a call on it may not come back.
    [[nodiscard]] bool mayHang(const Mount& mount) const noexcept;

private:
    explicit MountTable(std::vector<Mount> mounts);
    std::shared_ptr<const std::vector<Mount>> mounts_;
};

} // namespace ombrel
