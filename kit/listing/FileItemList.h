#pragma once

#include "listing/FileItem.h"
#include "listing/ItemBlock.h"

#include <cstddef>
#include <iterator>
#include <memory>
#include <span>
#include <vector>

namespace ombrel {

/// Items in an order: four bytes an entry on top of the blocks that hold them. Immutable and shared; copying
/// copies two handles. A list may hold any part of its blocks, in any order; lists that are filtered or
/// sorted out of one another share the blocks. Any thread.
class FileItemList {
public:
    using Blocks = std::vector<std::shared_ptr<const ItemBlock>>;

    /// The empty list.
    FileItemList();
    FileItemList(std::shared_ptr<const Blocks> blocks, std::vector<ItemRef> order);

    [[nodiscard]] std::size_t size() const noexcept { return order_->size(); }
    [[nodiscard]] bool empty() const noexcept { return order_->empty(); }

    /// Borrowed: valid as long as a list or item holds the block.
    [[nodiscard]] FileItemView operator[](std::size_t row) const noexcept { return view((*order_)[row]); }
    /// An item that keeps its block alive by itself.
    [[nodiscard]] FileItem item(std::size_t row) const;

    [[nodiscard]] FileItemView view(ItemRef ref) const noexcept {
        return {*(*blocks_)[ref >> ItemBlock::slotBits], ref & (ItemBlock::capacity - 1)};
    }
    [[nodiscard]] std::span<const ItemRef> order() const noexcept { return *order_; }
    [[nodiscard]] const std::shared_ptr<const Blocks>& blocks() const noexcept { return blocks_; }

    class Iterator {
    public:
        using iterator_category = std::input_iterator_tag;
        using value_type = FileItemView;
        using difference_type = std::ptrdiff_t;
        using pointer = void;
        using reference = FileItemView;
        Iterator(const FileItemList* list, std::size_t row) noexcept : list_(list), row_(row) {}
        FileItemView operator*() const noexcept { return (*list_)[row_]; }
        Iterator& operator++() noexcept {
            ++row_;
            return *this;
        }
        Iterator operator++(int) noexcept { return {list_, row_++}; }
        friend bool operator==(const Iterator&, const Iterator&) = default;

    private:
        const FileItemList* list_;
        std::size_t row_;
    };
    [[nodiscard]] Iterator begin() const noexcept { return {this, 0}; }
    [[nodiscard]] Iterator end() const noexcept { return {this, size()}; }

private:
    std::shared_ptr<const Blocks> blocks_;
    std::shared_ptr<const std::vector<ItemRef>> order_;
};

} // namespace ombrel
