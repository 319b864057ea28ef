#include "listing/ShownMounts.h"

#include <algorithm>
#include <array>
#include <ranges>
#include <string_view>

namespace ombrel {
namespace {

/// Whatever is mounted below these was put there for people.
constexpr auto mediaPlaces = std::to_array<std::string_view>({"/media/", "/mnt/", "/run/media/"});

/// Places of the system itself, with all below them.
constexpr auto systemTrees = std::to_array<std::string_view>({
    "/bin", "/boot",   "/dev",  "/efi", "/etc",  "/gnu",  "/lib", "/lib32",   "/lib64", "/libexec", "/live",
    "/nix", "/ostree", "/proc", "/run", "/sbin", "/snap", "/sys", "/sysroot", "/tmp",   "/usr",     "/var",
});

/// Places of the system where what is below them may be anyone's.
constexpr auto systemPlaces = std::to_array<std::string_view>({"/home", "/media", "/opt", "/root", "/srv"});

/// Not for documents, whatever device they are on.
constexpr auto systemTypes = std::to_array<std::string_view>({
    "squashfs",
    "erofs",
    "overlay",
    "tmpfs",
    "ramfs",
    "fuse.portal",
    "fuse.gvfsd-fuse",
    "fuse.lxcfs",
    "fuse.snapfuse",
    "fuse.overlayfs",
    "fuse.fuse-overlayfs",
    "fuse.vmware-vmblock",
    "fuse.revokefs-fuse",
});

/// File systems whose parts are mounted by themselves, so that a root inside them does not tell a bind.
constexpr auto subvolumeTypes = std::to_array<std::string_view>({"btrfs", "bcachefs"});

template <std::size_t count>
bool holds(const std::array<std::string_view, count>& list, std::string_view text) {
    return std::ranges::find(list, text) != list.end();
}

bool isInMediaPlace(const std::string& path) {
    return path == "/mnt" ||
           std::ranges::any_of(mediaPlaces, [&](auto place) { return path.starts_with(place); });
}

bool isSystemPlace(const std::string& path) {
    const auto first = std::string_view(path).substr(0, path.find('/', 1));
    return holds(systemTrees, first) || holds(systemPlaces, path);
}

bool isHiddenByName(const std::string& path) {
    return path.find("/.") != std::string::npos;
}

bool isPart(const Mount& mount) {
    return mount.root != "/" && !holds(subvolumeTypes, mount.type);
}

bool isForPeople(const Mount& mount) {
    const std::string& path = mount.point.path();
    return !isSystemPlace(path) && !isHiddenByName(path) && !holds(systemTypes, mount.type) && !isPart(mount);
}

} // namespace

std::vector<const Mount*> shownMounts(const MountTable& table) {
    std::vector<const Mount*> shown;
    const auto isSeenAlready = [&](const Mount& mount) {
        return std::ranges::any_of(shown, [&](const Mount* other) { return other->device == mount.device; });
    };
    for (const Mount& mount : table.mounts()) {
        if (mount.isAsleep || mount.hasOption("x-gvfs-hide") || !table.isVisible(mount)) continue;
        const bool isAsked = mount.point.isRoot() || mount.hasOption("x-gvfs-show");
        const bool isShown = isAsked || isInMediaPlace(mount.point.path()) ||
                             (!mount.traits.isPseudo && isForPeople(mount) && !isSeenAlready(mount));
        if (isShown) shown.push_back(&mount);
    }
    return shown;
}

} // namespace ombrel
