#pragma once

#include "base/FileURL.h"
#include "browser/FileSelection.h"

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace ombrel {

/// What was selected in a folder, kept by name for the day the folder is shown again.
///
/// Made in no time from a selection of any size: the names of a large one are written down by a worker, and
/// until then its listing is kept. Immutable to its users; any thread.
class SelectionMemory {
public:
    [[nodiscard]] static std::shared_ptr<const SelectionMemory> of(FileSelection selection);
    /// Those of the locations that are entries of `folder`.
    [[nodiscard]] static std::shared_ptr<const SelectionMemory> of(const std::vector<FileURL>& urls,
                                                                   const FileURL& folder);

    [[nodiscard]] bool empty() const noexcept { return isEmpty_; }
    /// Those of the items that are remembered. Takes time in proportion to the list; for workers.
    [[nodiscard]] ItemSet find(const FileItemList& items) const;

private:
    explicit SelectionMemory(std::vector<std::string> names)
        : isEmpty_(names.empty()), names_(std::move(names)) {}
    explicit SelectionMemory(FileSelection selection)
        : isEmpty_(selection.empty()), unwritten_(std::move(selection)) {}
    void writeDown() const;

    const bool isEmpty_;
    mutable std::mutex mutex_; // guards both
    mutable FileSelection unwritten_;
    mutable std::vector<std::string> names_;
};

} // namespace ombrel
