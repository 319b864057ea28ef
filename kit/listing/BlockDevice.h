#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace ombrel {

/// What udev and the kernel's device tree know of a block device. Asking does not touch the medium, except
/// that the format is probed on the device itself where udev has not done so and the caller may read it.
struct BlockDevice {
    std::uint64_t number = 0; ///< major and minor, as `stat` gives them
    std::string path;         ///< "/dev/sdb1"
    std::string format;       ///< of the file system on it: "ntfs", "ext4"; empty when not known
    std::string label;        ///< of the file system, UTF-8 as its maker wrote it; empty when it has none
    std::string uuid;         ///< of the file system; empty when it has none

    bool isRemovable = false; ///< the medium can be taken out of its drive: sticks, cards, discs
    bool isEjectable = false; ///< removable, or the drive can be unplugged, or an image detached
    bool isInternal = true;   ///< built in

    /// Nothing when there is no such device. Blocking.
    [[nodiscard]] static std::optional<BlockDevice> of(std::uint64_t number);
    /// The number behind a device's path, nothing when it is not a block device. Blocking.
    [[nodiscard]] static std::optional<std::uint64_t> numberOf(const std::string& path);
};

/// A whole drive, below the partitions and layers (encryption, volume groups) that stand on it.
struct BlockDrive {
    std::uint64_t number = 0;  ///< of the drive's own device
    bool isRotational = false; ///< a spinning disk, which suffers from two readers
    bool isRemovable = false;  ///< the medium or the drive can be taken away

    /// The drives that hold a block device: itself, the disk it is a part of, or those its layers are made
    /// of. Empty when there is no such device. Blocking, though it never touches a medium.
    [[nodiscard]] static std::vector<BlockDrive> under(std::uint64_t blockDevice);

    friend bool operator==(const BlockDrive&, const BlockDrive&) = default;
};

} // namespace ombrel
