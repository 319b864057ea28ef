#pragma once

#include "browser/ItemSet.h"
#include "listing/FileItemList.h"

#include <optional>
#include <vector>

namespace ombrel {

/// Which item of a new listing of a folder stands for which item of the old one: the one of the same name;
/// for a name that vanished the single entry with the same device, inode and time of birth, so that what is
/// selected follows a rename. Four bytes an item; made on a worker.
class ItemSuccession {
public:
    ItemSuccession(const FileItemList& before, const FileItemList& after);

    /// Nothing when the item is gone.
    [[nodiscard]] std::optional<ItemRef> successor(ItemRef before) const noexcept {
        if (before >= successors_.size() || successors_[before] == gone) return std::nullopt;
        return successors_[before];
    }
    [[nodiscard]] ItemSet successors(const ItemSet& before) const;

private:
    static constexpr ItemRef gone = 0xFFFFFFFF;
    std::vector<ItemRef> successors_; // by the reference in the old listing
};

} // namespace ombrel
