#pragma once

#include "base/OwnedFd.h"
#include "listing/FileStatus.h"
#include "listing/POSIX.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace ombrel {

/// The way from the top of a tree down to the folder that a walk is in, by descriptors: links are never
/// followed, and neither the depth of the tree nor the length of its paths has a limit.
///
/// Only the newest descriptors are kept open. On the way up an older folder is opened again as the parent of
/// the one below it and must be the very folder it was; when somebody moved a part of the tree meanwhile,
/// that is an error rather than a walk in a foreign place.
class FolderTrail {
public:
    /// What to do about a folder that another file system is mounted on.
    enum class Mounts : std::uint8_t { refuse, cross };

    /// `top` is an open folder, `status` what it says of itself.
    FolderTrail(OwnedFd top, const FileStatus& status, Mounts mounts = Mounts::refuse);
    /// From a folder that stays the caller's.
    [[nodiscard]] static POSIX::Result<FolderTrail> from(int folder, Mounts mounts = Mounts::refuse);

    /// The folder the walk is in. A descriptor for reading, so that modes can be changed through it.
    [[nodiscard]] int fd() const noexcept { return steps_.back().folder.get(); }
    [[nodiscard]] const FileStatus& status() const noexcept { return steps_.back().status; }
    /// 0 at the top.
    [[nodiscard]] std::size_t depth() const noexcept { return steps_.size() - 1; }
    /// The name (bytes) of the folder the walk is in; empty at the top.
    [[nodiscard]] const std::string& name() const noexcept { return steps_.back().name; }
    /// Whether the present folder is also one above it: something is mounted inside itself.
    [[nodiscard]] bool isInsideItself() const noexcept;
    /// The names from the top down, joined with "/", then `name`.
    [[nodiscard]] std::string pathOf(std::string_view name) const;

    /// Goes down into a folder of the present one. EBUSY when a file system is mounted there and that is to
    /// be refused. On failure the walk stays where it is.
    [[nodiscard]] POSIX::Result<void> enter(const char* name);
    /// Goes up. ESTALE when the folder above is not the one the walk came from.
    [[nodiscard]] POSIX::Result<void> leave();

private:
    struct Step {
        OwnedFd folder; // empty while it is not among the newest
        FileStatus status;
        std::string name;
    };

    static constexpr std::size_t keptOpen = 32;
    std::vector<Step> steps_;
    Mounts mounts_;
};

/// Whether an open folder is `above` or lies inside it, by what its parents are, across mounts.
[[nodiscard]] bool isWithin(int folder, const FileIdentity& above);

/// Whether two objects lie in the same mount: bind mounts of one device count as different.
[[nodiscard]] bool isSameMount(const FileStatus& a, const FileStatus& b) noexcept;

} // namespace ombrel
