#include "listing/FileSystemTraits.h"

#include <algorithm>
#include <span>

namespace ombrel {
namespace {

using Name = std::string_view;

constexpr Name pseudoTypes[] = {
    "autofs",     "bdev",      "binder",  "binfmt_misc", "bpf",    "cgroup",   "cgroup2",    "configfs",
    "cpuset",     "debugfs",   "devpts",  "devtmpfs",    "dmabuf", "efivarfs", "fusectl",    "hugetlbfs",
    "mqueue",     "nfsd",      "nsfs",    "pipefs",      "proc",   "pstore",   "resctrl",    "rpc_pipefs",
    "securityfs", "selinuxfs", "smackfs", "sockfs",      "sysfs",  "tracefs",  "functionfs",
};

constexpr Name networkTypes[] = {
    "9p",     "acfs",  "afs", "ceph", "cifs",  "coda",     "gfs2", "glusterfs", "gpfs",
    "lustre", "ncpfs", "nfs", "nfs4", "ocfs2", "orangefs", "smb3", "smbfs",
};

/// FUSE processes that talk to another machine, by the part of the type after "fuse.".
constexpr Name networkProcesses[] = {
    "afpfs",      "ceph-fuse", "curlftpfs", "davfs",     "davfs2",
    "ftpfs",      "gcsfuse",   "glusterfs", "goofys",    "google-drive-ocamlfuse",
    "gvfsd-fuse", "httpfs",    "kio-fuse",  "onedriver", "rclone",
    "s3fs",       "smbnetfs",  "sshfs",
};

constexpr Name coarseTypes[] = {
    "vfat", "msdos", "exfat", "ntfs", "ntfs3", "cifs", "smb3", "smbfs", "nfs", "nfs4", "ext2", "ext3", "udf",
};

constexpr Name extentSharers[] = {"bcachefs", "btrfs", "ocfs2", "overlay", "xfs",
                                  "zfs",      "nfs4",  "cifs",  "smb3"};

constexpr Name windowsForbidden = "\"*:<>?\\|";

bool isOneOf(Name type, std::span<const Name> types) noexcept {
    return std::ranges::find(types, type) != types.end();
}

void holdNothingButContent(FileSystemTraits& traits) noexcept {
    traits.holdsModes = traits.holdsOwners = traits.holdsSymlinks = traits.holdsHardLinks = false;
    traits.holdsAttributes = traits.holdsACLs = false;
}

/// The rules of Windows for names, as the format's own drivers enforce them.
void obeyWindowsNames(FileSystemTraits& traits) noexcept {
    traits.nameUnit = FileSystemTraits::NameUnit::utf16;
    traits.forbiddenCharacters = windowsForbidden;
    traits.forbidsControlCharacters = true;
    traits.isCaseInsensitive = true;
}

void applyFormat(FileSystemTraits& traits, Name format) noexcept {
    if (format == "vfat" || format == "msdos" || format == "exfat") {
        holdNothingButContent(traits);
        obeyWindowsNames(traits);
        traits.renumbersInodes = true;
        if (format != "exfat") traits.largestFile = 0xFFFFFFFF;
    } else if (format == "ntfs" || format == "ntfs3") {
        // The drivers take any name that POSIX allows unless they are told otherwise.
        traits.nameUnit = FileSystemTraits::NameUnit::utf16;
    } else if (format == "cifs" || format == "smb3" || format == "smbfs") {
        traits.renumbersInodes = true;
        traits.isCaseInsensitive = true;
        traits.holdsACLs = false;
    } else if (format == "nfs" || format == "nfs4") {
        traits.holdsACLs = false;
    } else if (format == "hfs" || format == "hfsplus") {
        traits.isCaseInsensitive = true;
        traits.nameUnit = FileSystemTraits::NameUnit::utf16;
        traits.holdsACLs = false;
    } else if (format == "iso9660" || format == "udf" || format == "squashfs" || format == "erofs") {
        traits.holdsACLs = format == "erofs";
        traits.holdsAttributes = format == "squashfs" || format == "erofs";
    } else if (format == "ext2" || format == "ext3") {
        traits.largestFile = std::int64_t{2} << 40;
    } else if (format == "ecryptfs") {
        traits.longestName = 143;
    } else if (format == "ramfs") {
        traits.holdsAttributes = traits.holdsACLs = false;
    }
}

} // namespace

FileSystemTraits FileSystemTraits::of(std::string_view type, std::string_view superblock) noexcept {
    FileSystemTraits traits;
    const Name process =
        type.starts_with("fuse.") || type.starts_with("fuseblk.") ? type.substr(type.find('.') + 1) : Name();
    traits.isFUSE = type == "fuse" || type == "fuseblk" || type == "virtiofs" || !process.empty();
    traits.isPseudo = isOneOf(type, pseudoTypes);
    traits.isNetwork = isOneOf(type, networkTypes) || isOneOf(process, networkProcesses);
    traits.hasCoarseTimes = traits.isFUSE || isOneOf(type, coarseTypes);
    traits.renumbersInodes = traits.isFUSE;
    traits.sharesExtents = isOneOf(type, extentSharers);
    const Name blockFormat = !superblock.empty() ? superblock : !process.empty() ? process : Name("ntfs");
    applyFormat(traits, type == "fuseblk" || type.starts_with("fuseblk.") ? blockFormat : type);
    return traits;
}

} // namespace ombrel
