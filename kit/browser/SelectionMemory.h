#pragma once

#include "base/FileURL.h"
#include "browser/FileSelection.h"

#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace ombrel {

/// What was selected in a place, kept by name for the day the place is shown again.
///
/// Made in no time from a selection of any size: the names of a large one are written down by a worker, and
/// until then its listing is kept. Immutable to its users; any thread.
class SelectionMemory {
public:
    [[nodiscard]] static std::shared_ptr<const SelectionMemory> of(FileSelection selection);
    [[nodiscard]] static std::shared_ptr<const SelectionMemory> of(std::vector<FileURL> urls);

    [[nodiscard]] bool empty() const noexcept { return count_ == 0; }
    /// How many items are remembered.
    [[nodiscard]] std::size_t count() const noexcept { return count_; }
    /// Those of the items that are remembered. Takes time in proportion to the list; for workers.
    [[nodiscard]] ItemSet find(const FileItemList& items) const;

private:
    struct Group {
        FileURL folder;
        std::vector<std::string> names;
    };

    explicit SelectionMemory(const std::vector<FileURL>& urls);
    explicit SelectionMemory(FileSelection selection)
        : count_(selection.count()), unwritten_(std::move(selection)) {}
    void writeDown() const;

    const std::size_t count_;
    mutable std::mutex mutex_; // guards both
    mutable FileSelection unwritten_;
    mutable std::vector<Group> groups_; // one for a folder
};

} // namespace ombrel
