#pragma once

#include "listing/FileItemList.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace ombrel {

/// Finds items by name: eight to sixteen bytes an item, made and thrown away by a worker. The list's blocks
/// must outlive it.
class NameIndex {
public:
    /// Over `refs`, which are items of `list`.
    NameIndex(const FileItemList& list, const std::vector<ItemRef>& refs);

    [[nodiscard]] std::optional<ItemRef> find(std::string_view name) const noexcept;

private:
    static constexpr ItemRef vacant = 0xFFFFFFFF;
    const FileItemList* list_;
    std::vector<ItemRef> slots_; // open addressing, a power of two, at most half full
};

} // namespace ombrel
