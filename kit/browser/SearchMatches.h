#pragma once

#include "listing/FileItemList.h"
#include "listing/FileSort.h"
#include "listing/SearchProvider.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace ombrel {

/// The matches of one search so far, in a pane's order.
///
/// They come in small batches, each folder's in a block of its own; here they all become one block, so that
/// sets of them stay small. A match keeps its reference while more come. Any one thread at a time.
class SearchMatches {
public:
    explicit SearchMatches(std::uint64_t generation) : generation_(generation) {}

    void add(const FileItemList& batch);
    [[nodiscard]] std::size_t count() const noexcept { return records_.size(); }

    /// All of them in the order of `sort`: what is new is sorted by itself and merged with what was in order
    /// before.
    [[nodiscard]] FileItemList inOrder(const FileSort& sort);

private:
    static_assert(SearchProvider::resultLimit <= ItemBlock::capacity);
    [[nodiscard]] std::shared_ptr<const ItemBlock> block() const;
    std::uint16_t placeIndex(const ItemBlock::Place& place);

    const std::uint64_t generation_;
    std::vector<ItemRecord> records_;
    std::vector<ItemBlock::Place> places_;
    std::string names_;
    std::string keys_;
    FileSort sort_;              // of `order_`
    std::vector<ItemRef> order_; // of the matches that were there at the last call of `inOrder`
};

} // namespace ombrel
