#include "browser/FileSelection.h"

#include <utility>

namespace ombrel {

FileSelection::FileSelection(FileItemList list, std::shared_ptr<const ItemSet> members, ItemSet selected)
    : list_(std::move(list)), members_(std::move(members)) {
    select(std::move(selected));
}

void FileSelection::select(ItemSet selected) {
    selected_ = std::move(selected);
    if (!selected_.empty()) selected_ &= *members_;
}

void FileSelection::change(RowRange rows, Change change) {
    if (rows.empty()) return;
    const auto refs = list_.order().subspan(rows.begin, rows.size());
    switch (change) {
    case Change::add: selected_.insert(refs); break;
    case Change::remove: selected_.erase(refs); break;
    case Change::flip: selected_.flip(refs); break;
    }
}

std::optional<std::size_t> FileSelection::firstRow() const noexcept {
    if (empty()) return std::nullopt;
    std::size_t row = 0;
    while (!contains(row))
        ++row;
    return row;
}

std::vector<FileItem> FileSelection::items() const {
    std::vector<FileItem> found;
    found.reserve(count());
    for (std::size_t row = 0; found.size() < count(); ++row)
        if (contains(row)) found.push_back(list_.item(row));
    return found;
}

} // namespace ombrel
