#include "operations/ItemStamp.h"

#include "base/Hash.h"
#include "operations/TreeManifest.h"

#include <string_view>
#include <vector>

namespace ombrel {
namespace {

/// Does not depend on the order in which folders are read.
std::uint64_t hashOfContents(const TreeManifest& tree) {
    std::uint64_t sum = 0;
    std::vector<std::size_t> paths(tree.size());
    for (TreeManifest::Index i = 1; i < tree.size(); ++i) {
        paths[i] = hashOf(paths[tree.parent(i)], std::string_view(tree.name(i)));
        const auto time = tree.isFolder(i) ? FileTime{} : tree.modified(i);
        sum += hashOf(paths[i], tree.type(i), tree.isFolder(i) ? 0 : tree.size(i), time.seconds,
                      time.nanoseconds, tree.linkTarget(i));
    }
    return sum;
}

} // namespace

ItemStamp ItemStamp::of(const FileStatus& status) noexcept {
    if (status.isDirectory()) return {.type = status.type(), .modified = {}, .contents = {}};
    return {.type = status.type(), .size = status.size, .modified = status.modified, .contents = {}};
}

POSIX::Result<ItemStamp> ItemStamp::reading(POSIX::Place place, const FileStatus& status) {
    auto stamp = of(status);
    if (!status.isDirectory()) return stamp;
    const auto tree = TreeManifest::capture(place);
    if (!tree) return std::unexpected(tree.error());
    stamp.contents = hashOfContents(*tree);
    return stamp;
}

bool ItemStamp::agreesWith(const ItemStamp& other) const noexcept {
    const bool contentsAgree = !contents || !other.contents || contents == other.contents;
    return type == other.type && size == other.size && modified == other.modified && contentsAgree;
}

} // namespace ombrel
