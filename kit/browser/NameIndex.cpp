#include "browser/NameIndex.h"

#include <algorithm>
#include <bit>
#include <functional>

namespace ombrel {

NameIndex::NameIndex(const FileItemList& list, const std::vector<ItemRef>& refs)
    : list_(&list), slots_(std::bit_ceil(std::max<std::size_t>(refs.size() * 2, 2)), vacant) {
    const std::size_t mask = slots_.size() - 1;
    for (const ItemRef ref : refs) {
        std::size_t slot = std::hash<std::string_view>{}(list.view(ref).name()) & mask;
        while (slots_[slot] != vacant)
            slot = (slot + 1) & mask;
        slots_[slot] = ref;
    }
}

std::optional<ItemRef> NameIndex::find(std::string_view name) const noexcept {
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t slot = std::hash<std::string_view>{}(name)&mask; slots_[slot] != vacant;
         slot = (slot + 1) & mask)
        if (list_->view(slots_[slot]).name() == name) return slots_[slot];
    return std::nullopt;
}

} // namespace ombrel
