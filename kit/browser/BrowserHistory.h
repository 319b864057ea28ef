#pragma once

#include "browser/Location.h"
#include "browser/SelectionMemory.h"

#include <memory>
#include <optional>
#include <vector>

namespace ombrel {

/// A place that a pane has left, with what was selected there.
struct HistoryEntry {
    Location location;
    std::shared_ptr<const SelectionMemory> selection;
};

/// Where a pane can go back and forward to. No limit of length.
class BrowserHistory {
public:
    enum class Direction : unsigned char { back, forward };
    /// How far back it reaches; each entry may remember a large selection.
    static constexpr std::size_t mostEntries = 200;

    [[nodiscard]] bool canGo(Direction to) const noexcept { return !stack(to).empty(); }
    /// Where it can go that way; nothing when it cannot.
    [[nodiscard]] std::optional<Location> nearest(Direction to) const {
        return canGo(to) ? std::optional(stack(to).back().location) : std::nullopt;
    }
    /// Where it leads that way, the nearest first, at most `most` places.
    [[nodiscard]] std::vector<Location> places(Direction to, std::size_t most) const;
    /// A new way is taken from `left`; what lay ahead is forgotten.
    void record(HistoryEntry left);
    /// The nearest entry that way; `left` becomes the nearest the other way. Nothing when there is none.
    [[nodiscard]] std::optional<HistoryEntry> go(Direction to, HistoryEntry left);

    /// The entry of `base` through which one went down to `url`; nothing when `url` does not lie below it.
    [[nodiscard]] static std::optional<FileURL> child(const FileURL& base, const FileURL& url);
    /// What to select on coming back to `entry` from the folder `left`: what was selected there, or else the
    /// folder that one went down through.
    [[nodiscard]] static std::shared_ptr<const SelectionMemory>
    selectionOnReturn(const HistoryEntry& entry, const std::optional<FileURL>& left);

private:
    [[nodiscard]] const std::vector<HistoryEntry>& stack(Direction to) const noexcept {
        return to == Direction::back ? back_ : forward_;
    }
    std::vector<HistoryEntry> back_;    // the last is the nearest
    std::vector<HistoryEntry> forward_; // the last is the nearest
};

} // namespace ombrel
