#pragma once

#include "browser/BrowserModel.h"
#include "support/TempTree.h"

#include <string>
#include <vector>

#include "qtmain/EventLoop.h"

namespace ombrel::testing {

inline ListingFeed::Source realListings() {
    return [](const DirectoryRequest& request) { return DirectoryProvider().snapshots(request); };
}

inline bool runUntilLoaded(const BrowserModel& model) {
    return runUntil([&] { return model.listingState() == ListingState::Case::loaded; });
}

inline std::vector<std::string> namesOf(const FileItemList& items) {
    std::vector<std::string> names;
    for (const FileItemView item : items)
        names.emplace_back(item.name());
    return names;
}

inline std::vector<std::string> selectedNames(const BrowserModel& model) {
    std::vector<std::string> names;
    for (const FileItem& item : model.selection().items())
        names.emplace_back(item.name());
    return names;
}

/// The row of the item called `name`; fails the test by throwing when there is none.
inline std::size_t rowNamed(const BrowserModel& model, std::string_view name) {
    for (std::size_t row = 0; row < model.items().size(); ++row)
        if (model.items()[row].name() == name) return row;
    throw std::runtime_error("no item called " + std::string(name));
}

inline void select(BrowserModel& model, const std::vector<std::string>& names) {
    auto selection = model.selection();
    selection.clear();
    for (const auto& name : names)
        selection.change(rowNamed(model, name), FileSelection::Change::add);
    model.setSelection(std::move(selection));
}

inline std::string nameAt(const BrowserModel& model, BrowserModel::Place place) {
    const auto row = model.row(place);
    return row ? std::string(model.items()[*row].name()) : "none";
}

} // namespace ombrel::testing
