#include "operations/TreeManifest.h"

#include "listing/POSIXEntries.h"
#include "operations/ManifestWalk.h"

#include <dirent.h>

#include <algorithm>
#include <cstring>

namespace ombrel {

TreeManifest::TreeManifest() {
    add();
    at(root).name = *keep({});
}

TreeManifest::Index TreeManifest::add() {
    if (size_ % entriesPerBlock == 0) blocks_.push_back(std::make_unique<Packed[]>(entriesPerBlock));
    return size_++;
}

std::optional<std::uint32_t> TreeManifest::keep(std::string_view bytes) {
    if (textUsed_ + bytes.size() + 1 > textPerBlock) {
        if (texts_.size() >= (std::uint64_t{1} << 32) / textPerBlock) return std::nullopt;
        texts_.push_back(std::make_unique_for_overwrite<char[]>(textPerBlock));
        textUsed_ = 0;
    }
    char* const target = texts_.back().get() + textUsed_;
    std::ranges::copy(bytes, target);
    target[bytes.size()] = '\0';
    const auto offset = (texts_.size() - 1) * textPerBlock + textUsed_;
    textUsed_ += bytes.size() + 1;
    return static_cast<std::uint32_t>(offset);
}

std::uint16_t TreeManifest::deviceNumber(std::uint64_t device) {
    for (std::size_t i = devices_.size(); i-- > 0;)
        if (devices_[i] == device) return static_cast<std::uint16_t>(i);
    devices_.push_back(device);
    return static_cast<std::uint16_t>(devices_.size() - 1);
}

TreeManifest::Entry TreeManifest::entry(Index index) const {
    const Packed& packed = at(index);
    Entry entry;
    entry.type = packed.mode & S_IFMT;
    entry.permissions = packed.mode & 07777;
    entry.size = packed.size;
    entry.modified = modified(index);
    entry.changed = {packed.changed, packed.changedNanoseconds};
    if (packed.device < devices_.size()) entry.identity = {devices_[packed.device], packed.inode};
    if (type(index) == S_IFLNK) entry.linkTarget = std::string(linkTarget(index));
    return entry;
}

TreeManifest::Children TreeManifest::children(Index folder) const noexcept {
    const Packed& packed = at(folder);
    return isFolder(folder) ? Children{packed.extra, packed.childCount} : Children{};
}

FileTime TreeManifest::modified(Index index) const noexcept {
    return {at(index).modified, at(index).modifiedNanoseconds};
}

std::string_view TreeManifest::linkTarget(Index index) const noexcept {
    return type(index) == S_IFLNK ? text(at(index).extra) : std::string_view();
}

std::string TreeManifest::path(Index index) const {
    std::vector<Index> way;
    for (; index != root; index = parent(index))
        way.push_back(index);
    std::string path;
    for (std::size_t i = way.size(); i-- > 0;) {
        path.append(name(way[i]));
        if (i > 0) path.push_back('/');
    }
    return path;
}

std::optional<TreeManifest::Index> TreeManifest::find(std::string_view path) const {
    Index current = root;
    while (!path.empty()) {
        const auto component = path.substr(0, path.find('/'));
        path.remove_prefix(std::min(path.size(), component.size() + 1));
        const auto [first, count] = children(current);
        Index child = first;
        while (child < first + count && (component != name(child) || isLeftOut(child)))
            ++child;
        if (child == first + count) return std::nullopt;
        current = child;
    }
    return current;
}

bool TreeManifest::isStill(Index index, const FileStatus& now, Likeness likeness) const noexcept {
    const Packed& packed = at(index);
    if (now.type() != type(index)) return false;
    if (likeness == Likeness::exact) {
        const FileIdentity recorded{devices_[packed.device], packed.inode};
        if (now.identity != recorded) return false;
    }
    return now.isDirectory() || (now.size == packed.size && now.modified == modified(index));
}

bool TreeManifest::isUntouched(Index index, const FileStatus& now, Likeness likeness) const noexcept {
    const Packed& packed = at(index);
    if (!isStill(index, now, likeness)) return false;
    if (likeness == Likeness::loosely) return true;
    return now.changed == FileTime{packed.changed, packed.changedNanoseconds};
}

POSIX::Result<void> TreeManifest::readChildren(Index folder, int fd, EntryReader& reader) {
    struct Found {
        std::uint64_t inode;
        std::uint32_t name;
        std::uint8_t type;
    };
    std::vector<Found> found;
    if (auto rewound = POSIX::rewind(fd); !rewound) return rewound;
    reader.begin(fd);
    for (;;) {
        const auto next = reader.next();
        if (!next) return std::unexpected(next.error());
        if (!*next) break;
        auto type = (*next)->type;
        if (type == DT_UNKNOWN) {
            const auto status = POSIX::lstat(POSIX::Place{fd, (*next)->name.data()});
            if (status) type = static_cast<std::uint8_t>(IFTODT(status->mode));
        }
        const auto kept = keep((*next)->name);
        if (!kept) return std::unexpected(POSIXFailure{EOVERFLOW});
        found.push_back({(*next)->inode, *kept, type});
    }
    if (found.size() > UINT32_MAX - size_) return std::unexpected(POSIXFailure{EOVERFLOW});
    // The order of inodes is the order on the medium on most file systems.
    std::ranges::sort(found, [](const Found& a, const Found& b) {
        const bool isFolderA = a.type == DT_DIR, isFolderB = b.type == DT_DIR;
        return isFolderA != isFolderB ? isFolderB : a.inode < b.inode;
    });
    at(folder).extra = size_;
    at(folder).childCount = static_cast<Index>(found.size());
    for (const auto& one : found) {
        const Index index = add();
        Packed& packed = at(index);
        packed.inode = one.inode;
        packed.name = one.name;
        packed.parent = folder;
        packed.mode = static_cast<std::uint16_t>(DTTOIF(one.type));
    }
    return {};
}

void TreeManifest::record(Index index, const FileStatus& status) {
    Packed& packed = at(index);
    packed.inode = status.identity.inode;
    packed.device = deviceNumber(status.identity.device);
    packed.size = status.size;
    packed.modified = status.modified.seconds;
    packed.modifiedNanoseconds = status.modified.nanoseconds;
    packed.changed = status.changed.seconds;
    packed.changedNanoseconds = status.changed.nanoseconds;
    packed.mode = static_cast<std::uint16_t>(status.mode);
}

void TreeManifest::recordLink(Index index, std::string_view target) {
    at(index).extra = keep(target).value_or(at(root).name);
}

void TreeManifest::leaveOut(Index index) {
    at(index).flags |= leftOut;
    while (index != root) {
        index = parent(index);
        at(index).flags |= incomplete;
    }
}

std::expected<TreeManifest, POSIXFailure> TreeManifest::capture(POSIX::Place place,
                                                                const std::stop_token& stop) {
    TreeManifest manifest;
    EntryReader reader;
    auto trail = FolderTrail::from(place.folder, FolderTrail::Mounts::cross);
    if (!trail) return std::unexpected(trail.error());
    const auto first = POSIX::lstat(place);
    if (!first) return std::unexpected(first.error());
    manifest.record(root, *first);
    ManifestWalk walk(manifest);
    while (const auto step = walk.next()) {
        const Index index = step->index;
        const char* const name = index == root ? place.name : manifest.name(index);
        POSIX::Result<void> done;
        if (stop.stop_requested()) return std::unexpected(POSIXFailure{ECANCELED});
        if (step->event == ManifestWalk::Event::leave) {
            done = trail->leave();
        } else if (step->event == ManifestWalk::Event::enter) {
            done = trail->enter(name);
            if (done) {
                manifest.record(index, trail->status());
                done = manifest.readChildren(index, trail->fd(), reader);
            }
        } else {
            const auto status = POSIX::lstat(POSIX::Place{trail->fd(), name});
            if (!status) return std::unexpected(status.error());
            // Not what its folder said a moment ago: it was replaced meanwhile.
            if (status->isDirectory()) return std::unexpected(POSIXFailure{ESTALE});
            manifest.record(index, *status);
            if (status->isSymlink()) {
                const auto target = POSIX::readLink(POSIX::Place{trail->fd(), name});
                if (!target) return std::unexpected(target.error());
                manifest.recordLink(index, *target);
            }
        }
        if (!done) return std::unexpected(done.error());
    }
    return manifest;
}

} // namespace ombrel
