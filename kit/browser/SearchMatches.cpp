#include "browser/SearchMatches.h"

#include <cstring>
#include <memory>
#include <numeric>

namespace ombrel {
namespace {

std::unique_ptr<char[]> copyOf(const std::string& text) {
    auto copy = std::make_unique_for_overwrite<char[]>(text.size());
    std::memcpy(copy.get(), text.data(), text.size());
    return copy;
}

} // namespace

void SearchMatches::add(const FileItemList& batch) {
    for (const FileItemView item : batch) {
        if (records_.size() == ItemBlock::capacity) return;
        ItemRecord& record = records_.emplace_back(item.record());
        record.nameOffset = static_cast<std::uint32_t>(names_.size());
        names_.append(item.name());
        record.keyOffset = static_cast<std::uint32_t>(keys_.size());
        keys_.append(item.sortKey());
        record.place = placeIndex(item.block().places[item.record().place]);
    }
}

std::uint16_t SearchMatches::placeIndex(const ItemBlock::Place& place) {
    // The matches of a folder come one after another.
    const bool isNew =
        places_.empty() || places_.back().device != place.device || places_.back().folder != place.folder;
    if (isNew) places_.push_back(place);
    return static_cast<std::uint16_t>(places_.size() - 1);
}

std::shared_ptr<const ItemBlock> SearchMatches::block() const {
    auto block = std::make_shared<ItemBlock>();
    block->generation = generation_;
    block->records = records_;
    block->places = places_;
    block->names = copyOf(names_);
    block->keys = copyOf(keys_);
    return block;
}

FileItemList SearchMatches::inOrder(const FileSort& sort) {
    if (records_.empty()) return {};
    const auto blocks = std::make_shared<const FileItemList::Blocks>(FileItemList::Blocks{block()});
    if (sort != sort_) order_.clear();
    std::vector<ItemRef> fresh(records_.size() - order_.size());
    std::iota(fresh.begin(), fresh.end(), static_cast<ItemRef>(order_.size()));
    FileItemList all =
        sort.merge(FileItemList(blocks, order_), sort.sorted(FileItemList(blocks, std::move(fresh))));
    sort_ = sort;
    order_.assign(all.order().begin(), all.order().end());
    return all;
}

} // namespace ombrel
