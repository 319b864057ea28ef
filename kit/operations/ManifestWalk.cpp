#include "operations/ManifestWalk.h"

namespace ombrel {

ManifestWalk::Step ManifestWalk::begin(TreeManifest::Index index) {
    if (!manifest_.isFolder(index)) return {Event::entry, index};
    levels_.push_back({index});
    return {Event::enter, index};
}

std::optional<ManifestWalk::Step> ManifestWalk::next() {
    if (!hasBegun_) {
        hasBegun_ = true;
        return begin(TreeManifest::root);
    }
    while (!levels_.empty()) {
        Level& level = levels_.back();
        const auto [first, count] = manifest_.children(level.folder);
        if (level.next == count) {
            const Step left{Event::leave, level.folder};
            levels_.pop_back();
            return left;
        }
        const auto index = first + level.next++;
        if (!manifest_.isLeftOut(index)) return begin(index);
    }
    return std::nullopt;
}

} // namespace ombrel
