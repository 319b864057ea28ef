#pragma once

#include "browser/ItemSet.h"
#include "browser/RowRange.h"
#include "listing/FileItem.h"
#include "listing/FileItemList.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

namespace ombrel {

/// The selected rows of a list. A plain value of some 150 KB for a list of a million; nothing here takes more
/// than about two milliseconds at that size but `items`.
class FileSelection {
public:
    /// What happens to the rows of a range.
    enum class Change : unsigned char { add, remove, flip };

    /// Nothing, of the empty list.
    FileSelection() = default;
    /// Those of `selected` that are in the list; `members` is the list as a set.
    FileSelection(FileItemList list, std::shared_ptr<const ItemSet> members, ItemSet selected = {});

    [[nodiscard]] const FileItemList& list() const noexcept { return list_; }
    [[nodiscard]] std::size_t count() const noexcept { return selected_.count(); }
    [[nodiscard]] bool empty() const noexcept { return selected_.empty(); }
    [[nodiscard]] bool isEverything() const noexcept { return !list_.empty() && count() == list_.size(); }
    [[nodiscard]] bool contains(std::size_t row) const noexcept {
        return selected_.contains(list_.order()[row]);
    }
    [[nodiscard]] const ItemSet& set() const noexcept { return selected_; }

    void clear() noexcept { selected_.clear(); }
    void selectAll() { selected_ = *members_; }
    /// These and no others; those that are not in the list are left out.
    void select(ItemSet selected);
    void change(RowRange rows, Change change);
    void change(std::size_t row, Change how) { change(RowRange{row, row + 1}, how); }

    /// The topmost selected row.
    [[nodiscard]] std::optional<std::size_t> firstRow() const noexcept;
    /// The selected items in the order of the list. Takes time in proportion to the list.
    [[nodiscard]] std::vector<FileItem> items() const;

    /// Whether the same items of the same list are selected, whatever its order.
    friend bool operator==(const FileSelection& a, const FileSelection& b) noexcept {
        return a.list_.blocks() == b.list_.blocks() && a.selected_ == b.selected_;
    }

private:
    FileItemList list_;
    std::shared_ptr<const ItemSet> members_ = std::make_shared<const ItemSet>();
    ItemSet selected_;
};

} // namespace ombrel
