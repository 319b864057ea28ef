#include "listing/FolderBookmark.h"

#include "listing/POSIX.h"

#include <fcntl.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace ombrel {
namespace {

using Failure = FolderBookmark::Failure;
using Likeness = VolumeIdentity::Likeness;
using POSIX::Result;
using Step = FolderBookmark::Step;

constexpr int folderFlags = O_PATH | O_DIRECTORY;

/// A folder that is held open, and what is known of it.
struct Folder {
    OwnedFd fd;
    FileStatus status;
};

Result<Folder> opened(Result<OwnedFd> fd) {
    if (!fd) return std::unexpected(fd.error());
    const auto status = POSIX::status(fd->get());
    if (!status) return std::unexpected(status.error());
    return Folder{*std::move(fd), *status};
}

Result<Folder> openFolder(const FileURL& url) {
    return opened(POSIX::open(url, folderFlags));
}

Result<Folder> openChild(const Folder& folder, const std::string& name) {
    return opened(POSIX::open({folder.fd.get(), name.c_str()}, folderFlags | O_NOFOLLOW));
}

/// The path of an open folder without any links in it; `url` itself when that is too long for the kernel to
/// say.
Result<FileURL> canonicalPath(const Folder& folder, const FileURL& url) {
    const auto link = "/proc/self/fd/" + std::to_string(folder.fd.get());
    const auto path = POSIX::readLink({AT_FDCWD, link.c_str()});
    if (!path && path.error().number == ENAMETOOLONG) return url.standardized();
    if (!path) return std::unexpected(path.error());
    const auto canonical = FileURL::fromPath(*path, FileURL::Mark::directory);
    if (!canonical) return std::unexpected(POSIXFailure{ENOENT});
    return *canonical;
}

/// The components of a path below `ancestor`, which it lies in.
std::vector<std::string> componentsBelow(std::string_view ancestor, std::string_view path) {
    std::vector<std::string> names;
    path.remove_prefix(std::min(path.size(), ancestor.size()));
    while (!path.empty()) {
        const auto end = std::min(path.find('/'), path.size());
        if (end > 0) names.emplace_back(path.substr(0, end));
        path.remove_prefix(std::min(path.size(), end + 1));
    }
    return names;
}

bool isBelow(const std::string& ancestor, const std::string& path) {
    return FileURL::fromPath(path).value_or(FileURL()).isWithin(
        FileURL::fromPath(ancestor).value_or(FileURL()));
}

Step stepOf(std::string name, const FileStatus& status) {
    return {std::move(name), status.identity.inode, status.born};
}

/// One look for a bookmark's folder on one mount.
class Trail {
public:
    Trail(const FolderBookmark& bookmark, const Mount& mount, Likeness likeness)
        : bookmark_(bookmark), mount_(mount), likeness_(likeness) {}

    /// Whether `status` is of the folder that `step` remembers. Without proof that the volume is the same, a
    /// number alone is not enough.
    [[nodiscard]] bool isSame(const Step& step, const FileStatus& status) const {
        if (!status.isDirectory()) return false;
        if (mount_.traits.renumbersInodes) return true;
        if (step.inode == 0 || step.inode != status.identity.inode) return false;
        const bool isDated = step.born != FileTime() && status.born != FileTime();
        if (isDated) return step.born == status.born;
        return likeness_ == Likeness::same || bookmark_.volume.device == mount_.device;
    }

    /// The folder's path below this mount, as far as the mount holds it.
    [[nodiscard]] std::optional<FileURL> find() const {
        auto reached = deepestThatIsItself();
        if (!reached) return std::nullopt;
        for (auto level = reached->level + 1; level < bookmark_.steps.size(); ++level) {
            const auto& step = bookmark_.steps[level];
            auto child = childThatIs(step, reached->folder);
            if (!child) return std::nullopt;
            reached->url = reached->url.appending(child->name, FileURL::Mark::directory);
            reached->folder = std::move(child->folder);
        }
        return reached->url;
    }

private:
    struct Reached {
        Folder folder;
        FileURL url;
        std::size_t level; // the step it is
    };
    struct Child {
        Folder folder;
        std::string name;
    };

    /// Where the walk begins: a mount may show another part of the volume than the one that was remembered.
    [[nodiscard]] std::optional<Reached> start() const {
        std::size_t level = 0;
        auto url = mount_.point;
        if (isBelow(mount_.root, bookmark_.root)) {
            for (const auto& name : componentsBelow(mount_.root, bookmark_.root))
                url = url.appending(name, FileURL::Mark::directory);
        } else if (isBelow(bookmark_.root, mount_.root)) {
            for (const auto& name : componentsBelow(bookmark_.root, mount_.root))
                if (++level >= bookmark_.steps.size() || bookmark_.steps[level].name != name)
                    return std::nullopt;
        } else {
            return std::nullopt;
        }
        auto folder = openFolder(url);
        if (!folder) return std::nullopt;
        return Reached{*std::move(folder), std::move(url), level};
    }

    /// The last folder along the remembered names that is the one that was remembered.
    [[nodiscard]] std::optional<Reached> deepestThatIsItself() const {
        auto place = start();
        std::optional<Reached> deepest;
        while (place) {
            const bool isItself = isSame(bookmark_.steps[place->level], place->folder.status);
            const auto level = place->level + 1;
            std::optional<Reached> next;
            if (level < bookmark_.steps.size()) {
                const auto& name = bookmark_.steps[level].name;
                if (auto folder = openChild(place->folder, name))
                    next = Reached{*std::move(folder), place->url.appending(name, FileURL::Mark::directory),
                                   level};
            }
            if (isItself) deepest = std::move(place);
            place = std::move(next);
        }
        return deepest;
    }

    [[nodiscard]] std::optional<Child> childThatIs(const Step& step, const Folder& folder) const {
        if (auto child = named(step.name, step, folder)) return child;
        if (mount_.traits.renumbersInodes) return std::nullopt;
        auto stream = POSIX::openDirectory({folder.fd.get(), "."}, POSIX::Links::refuse);
        if (!stream) return std::nullopt;
        for (;;) {
            const auto entry = POSIX::readEntry(*stream);
            if (!entry || !*entry) return std::nullopt;
            if (!mayBe(**entry, step)) continue;
            if (auto child = named(std::string((*entry)->name), step, folder)) return child;
        }
    }

    [[nodiscard]] bool mayBe(const POSIX::DirectoryEntry& entry, const Step& step) const {
        if (entry.type != DT_DIR && entry.type != DT_UNKNOWN) return false;
        // An overlay's entries may carry the numbers of the layers beneath.
        return entry.inode == step.inode || mount_.type == "overlay";
    }

    [[nodiscard]] std::optional<Child> named(std::string name, const Step& step, const Folder& folder) const {
        auto child = openChild(folder, name);
        const bool isOnMount = child && child->status.mountID == folder.status.mountID;
        if (!isOnMount || !isSame(step, child->status)) return std::nullopt;
        return Child{*std::move(child), std::move(name)};
    }

    const FolderBookmark& bookmark_;
    const Mount& mount_;
    Likeness likeness_;
};

/// Whether a failing look at the path says that the folder is not there now, rather than that something is
/// wrong.
bool meansNotThere(int number) {
    switch (number) {
    case ENOENT:
    case ENOTDIR:
    case EIO:
    case ENODEV:
    case ENXIO:
    case ESTALE:
    case ENOTCONN:
    case EHOSTDOWN:
    case EHOSTUNREACH:
    case ENETUNREACH:
    case ETIMEDOUT: return true;
    default: return false;
    }
}

/// What is found at the remembered path itself.
struct AtPath {
    bool isTheFolder = false;
    bool isOnTheVolume = false;
    std::optional<POSIXFailure> failure;
};

AtPath lookAtPath(const FolderBookmark& bookmark, const MountTable& table) {
    const Mount* place = table.containing(bookmark.path);
    if (place && place->isAsleep) return {.failure = POSIXFailure{ENOENT}};
    const auto folder = openFolder(bookmark.path);
    if (!folder) return {.failure = folder.error()};
    const Mount* mount = table.of(folder->status);
    if (!mount) return {};
    const auto likeness = bookmark.volume.likeness(VolumeIdentity::of(*mount));
    if (likeness == Likeness::different || bookmark.steps.empty()) return {};
    const bool isSame = Trail(bookmark, *mount, likeness).isSame(bookmark.steps.back(), folder->status);
    return {.isTheFolder = isSame, .isOnTheVolume = true, .failure = std::nullopt};
}

struct Candidate {
    const Mount* mount;
    Likeness likeness;
};

/// Where the volume is mounted now; the place where it was comes first.
std::vector<Candidate> placesOf(const FolderBookmark& bookmark, const MountTable& table) {
    std::vector<Candidate> places;
    for (const Mount& mount : table.mounts()) {
        const bool mayBe =
            mount.type == bookmark.volume.type || (!bookmark.volume.uuid.empty() && mount.blockDevice);
        if (!mayBe || mount.traits.isPseudo || !table.isVisible(mount)) continue;
        const auto likeness = bookmark.volume.likeness(VolumeIdentity::of(mount));
        if (likeness != Likeness::different) places.push_back({&mount, likeness});
    }
    std::ranges::stable_sort(places, {}, [&](const Candidate& place) {
        return std::pair(!bookmark.path.isWithin(place.mount->point), place.likeness != Likeness::same);
    });
    return places;
}

/// The steps from the mount's root at `point` to `folder`. One that cannot be looked at keeps its name alone.
std::vector<Step> stepsTo(const Folder& folder, const FileURL& point, const FileURL& path) {
    auto place = openFolder(point);
    std::vector<Step> steps = {place ? stepOf({}, place->status) : Step()};
    for (auto& name : componentsBelow(point.path(), path.path())) {
        if (place) place = openChild(*place, name);
        steps.push_back(place ? stepOf(std::move(name), place->status) : Step{std::move(name)});
    }
    steps.back() = stepOf(std::move(steps.back().name), folder.status);
    return steps;
}

} // namespace

std::expected<FolderBookmark, POSIXFailure> FolderBookmark::of(const FileURL& url) {
    const auto folder = openFolder(url);
    if (!folder) return std::unexpected(folder.error());
    FolderBookmark bookmark;
    bookmark.path = url.marked(FileURL::Mark::directory);
    const auto table = MountTable::current();
    const Mount* mount = table.of(folder->status);
    const auto canonical = canonicalPath(*folder, url);
    if (!canonical) return std::unexpected(canonical.error());
    if (!mount || !canonical->isWithin(mount->point)) return std::unexpected(POSIXFailure{ESTALE});
    bookmark.volume = VolumeIdentity::of(*mount);
    bookmark.root = mount->root;
    bookmark.steps = stepsTo(*folder, mount->point, *canonical);
    return bookmark;
}

std::expected<FolderBookmark::Resolution, FolderBookmark::Failure> FolderBookmark::resolve() const {
    const auto table = MountTable::current();
    const auto atPath = lookAtPath(*this, table);
    if (atPath.isTheFolder) return Resolution{path, false};
    if (atPath.failure && atPath.failure->number == EACCES) return Resolution{path, false};
    if (atPath.failure && !meansNotThere(atPath.failure->number))
        return std::unexpected(Failure{Failure::Kind::system, *atPath.failure});
    if (!steps.empty())
        for (const auto& [mount, likeness] : placesOf(*this, table))
            if (auto found = Trail(*this, *mount, likeness).find())
                return Resolution{*std::move(found), true};
    if (atPath.isOnTheVolume) return std::unexpected(Failure{Failure::Kind::replaced});
    return std::unexpected(Failure{Failure::Kind::notThere, atPath.failure.value_or(POSIXFailure{})});
}

} // namespace ombrel
