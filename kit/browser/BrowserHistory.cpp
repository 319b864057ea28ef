#include "browser/BrowserHistory.h"

#include <string_view>
#include <utility>

namespace ombrel {

void BrowserHistory::record(HistoryEntry left) {
    back_.push_back(std::move(left));
    if (back_.size() > mostEntries) back_.erase(back_.begin());
    forward_.clear();
}

std::optional<HistoryEntry> BrowserHistory::go(Direction to, HistoryEntry left) {
    auto& source = to == Direction::back ? back_ : forward_;
    auto& target = to == Direction::back ? forward_ : back_;
    if (source.empty()) return std::nullopt;
    HistoryEntry entry = std::move(source.back());
    source.pop_back();
    target.push_back(std::move(left));
    return entry;
}

std::vector<Location> BrowserHistory::places(Direction to, std::size_t most) const {
    std::vector<Location> places;
    const auto& entries = stack(to);
    for (auto entry = entries.rbegin(); entry != entries.rend() && places.size() < most; ++entry)
        places.push_back(entry->location);
    return places;
}

std::optional<FileURL> BrowserHistory::child(const FileURL& base, const FileURL& url) {
    if (url == base || !url.isWithin(base)) return std::nullopt;
    const std::string_view below = url.pathBelow(base);
    return base.appending(below.substr(0, below.find('/')));
}

std::shared_ptr<const SelectionMemory> BrowserHistory::selectionOnReturn(const HistoryEntry& entry,
                                                                         const std::optional<FileURL>& left) {
    if (entry.selection && !entry.selection->empty()) return entry.selection;
    const auto& folder = entry.location.folderURL();
    if (!folder || !left) return nullptr;
    const auto through = child(*folder, *left);
    return through ? SelectionMemory::of(std::vector<FileURL>{*through}) : nullptr;
}

} // namespace ombrel
