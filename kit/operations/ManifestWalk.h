#pragma once

#include "operations/TreeManifest.h"

#include <optional>
#include <vector>

namespace ombrel {

/// Goes through the entries of a manifest, what was left out aside: each folder is entered, then its entries
/// come that are no folders, then its folders, then it is left.
class ManifestWalk {
public:
    enum class Event : std::uint8_t { enter, entry, leave };
    struct Step {
        Event event;
        TreeManifest::Index index;
    };

    /// `manifest` must outlive the walk and may grow below the folder that was just entered.
    explicit ManifestWalk(const TreeManifest& manifest) : manifest_(manifest) {}

    /// Nothing at the end.
    [[nodiscard]] std::optional<Step> next();
    /// After `enter`: goes on as if the folder had not been there; there is no `leave`.
    void skip() { levels_.pop_back(); }

private:
    struct Level {
        TreeManifest::Index folder;
        TreeManifest::Index next = 0; // among its children
    };
    Step begin(TreeManifest::Index index);

    const TreeManifest& manifest_;
    std::vector<Level> levels_;
    bool hasBegun_ = false;
};

} // namespace ombrel
