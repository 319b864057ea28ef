#pragma once

#include <cstdint>
#include <string_view>

namespace ombrel {

/// What is known of a file system by its type: what it can hold, what it forbids, how far its facts can be
/// trusted.
///
/// A `holds…` that is true says that the format has a place for it; a mount option or a server may still
/// refuse, and the call that tries has the last word. One that is false is certain.
struct FileSystemTraits {
    bool isNetwork = false;      ///< every access may wait for another machine, for ever in the worst case
    bool isFUSE = false;         ///< served by a process, which may hang or die
    bool isPseudo = false;       ///< the kernel's own view of itself (proc, sysfs, ...); holds nobody's files
    bool hasCoarseTimes = false; ///< a modification time that did not change proves nothing
    bool renumbersInodes = false;   ///< an inode number may belong to another object at the next look
    bool isCaseInsensitive = false; ///< "a" and "A" are one name. Folders of ext4 and f2fs may be so singly
    bool sharesExtents = false;     ///< a copy may share its blocks with the original

    bool holdsModes = true;
    bool holdsOwners = true;
    bool holdsSymlinks = true;
    bool holdsHardLinks = true;
    bool holdsAttributes = true; ///< `user.*` extended attributes
    bool holdsACLs = true;       ///< POSIX access control lists

    std::int64_t largestFile = INT64_MAX; ///< bytes

    enum class NameUnit : std::uint8_t { byte, utf16 };
    unsigned longestName = 255;
    NameUnit nameUnit = NameUnit::byte;        ///< what `longestName` counts
    std::string_view forbiddenCharacters = {}; ///< ASCII, besides "/" and NUL, which no name holds
    bool forbidsControlCharacters = false;     ///< U+0001 to U+001F

    /// Whether the kernel tells of changes that others make: it does not for servers and FUSE processes.
    [[nodiscard]] bool reportsChanges() const noexcept { return !isNetwork && !isFUSE; }

    /// By the type's name as the mount table spells it: "ext4", "fuse.sshfs", "fuseblk". `superblock` is the
    /// format found on the device where that differs from the type ("ntfs", "exfat"), otherwise empty. Types
    /// that are not known count as able, with fine times and stable numbers.
    [[nodiscard]] static FileSystemTraits of(std::string_view type,
                                             std::string_view superblock = {}) noexcept;
};

} // namespace ombrel
