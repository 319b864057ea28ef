#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <compare>
#include <cstdint>

namespace ombrel {

/// A point in time as file systems keep it: seconds since 1970-01-01 UTC and 0 to 999,999,999 nanoseconds.
struct FileTime {
    std::int64_t seconds = 0;
    std::uint32_t nanoseconds = 0;

    [[nodiscard]] double secondsSince1970() const noexcept {
        return static_cast<double>(seconds) + static_cast<double>(nanoseconds) / 1e9;
    }
    friend auto operator<=>(const FileTime&, const FileTime&) = default;
};

/// Which object stands at a path: device and inode number. Says nothing on file systems that renumber inodes.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    friend auto operator<=>(const FileIdentity&, const FileIdentity&) = default;
};

/// What the system tells of one entry, taken in one call (statx).
struct FileStatus {
    std::uint32_t mode = 0; ///< type and permission bits, as in <sys/stat.h>
    std::uint32_t owner = 0;
    std::uint32_t group = 0;
    std::uint32_t linkCount = 0;
    FileIdentity identity;
    std::uint64_t mountID =
        0; ///< tells bind mounts apart that share a device; 0 when the kernel does not say
    std::uint64_t deviceNumber = 0; ///< what a device node stands for
    std::int64_t size = 0;          ///< bytes
    std::int64_t blocks = 0;        ///< 512-byte units in use
    FileTime modified;
    FileTime changed; ///< last status change
    FileTime accessed;
    FileTime born; ///< zero when the file system does not keep it

    [[nodiscard]] std::uint32_t type() const noexcept { return mode & S_IFMT; }
    [[nodiscard]] std::uint32_t permissions() const noexcept { return mode & 07777U; }
    [[nodiscard]] bool isDirectory() const noexcept { return type() == S_IFDIR; }
    [[nodiscard]] bool isRegular() const noexcept { return type() == S_IFREG; }
    [[nodiscard]] bool isSymlink() const noexcept { return type() == S_IFLNK; }
};

} // namespace ombrel
