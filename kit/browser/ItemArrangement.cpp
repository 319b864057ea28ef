#include "browser/ItemArrangement.h"

#include <numeric>
#include <utility>
#include <vector>

namespace ombrel {
namespace {

/// Whether the list holds each item of its blocks, as the list of a whole listing does.
bool isWhole(const FileItemList& items) {
    const auto count =
        std::accumulate(items.blocks()->begin(), items.blocks()->end(), std::size_t{0},
                        [](std::size_t sum, const auto& block) { return sum + block->records.size(); });
    return count == items.size();
}

FileItemList onlyMembers(const FileItemList& items, const ItemSet& members) {
    if (members.count() == items.size()) return items;
    std::vector<ItemRef> order;
    order.reserve(members.count());
    for (const ItemRef ref : items.order())
        if (members.contains(ref)) order.push_back(ref);
    return {items.blocks(), std::move(order)};
}

} // namespace

ItemSet ItemFilter::accepted(const FileItemList& items) const {
    ItemSet members;
    const auto consider = [&](ItemRef ref) {
        if (accepts(items.view(ref))) members.insert(ref);
    };
    if (isWhole(items)) {
        // In the order of memory, which spares a cache miss an item.
        for (std::size_t block = 0; block < items.blocks()->size(); ++block)
            for (std::size_t slot = 0; slot < (*items.blocks())[block]->records.size(); ++slot)
                consider(static_cast<ItemRef>(block << ItemBlock::slotBits | slot));
    } else {
        for (const ItemRef ref : items.order())
            consider(ref);
    }
    return members;
}

ItemArrangement ItemArrangement::make(FileItemList all, const FileSort& sortOfAll, const ItemWish& wish) {
    if (sortOfAll != wish.sort) all = wish.sort.sorted(all);
    auto members = std::make_shared<const ItemSet>(wish.filter.accepted(all));
    FileItemList items = onlyMembers(all, *members);
    return {wish, std::move(all), std::move(items), std::move(members)};
}

} // namespace ombrel
