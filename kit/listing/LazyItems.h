#pragma once

#include "listing/EntryOrder.h"
#include "listing/FileItemList.h"
#include "listing/FileSort.h"

#include <cstddef>
#include <memory>
#include <mutex>
#include <vector>

namespace ombrel {

/// The items of one snapshot: sorted runs at first, one list once somebody asks. So the listing does not put
/// a million items in order for each of its snapshots when the consumer looks only at some. Any thread.
class LazyItems {
public:
    LazyItems(const FileSort& sort, std::shared_ptr<const FileItemList::Blocks> blocks,
              std::vector<std::shared_ptr<const SortedRun>> runs);

    [[nodiscard]] std::size_t count() const noexcept { return count_; }
    /// Merges on the first call; others wait for it.
    [[nodiscard]] const FileItemList& list();

private:
    const FileSort sort_;
    const std::size_t count_;
    std::once_flag once_; // the merge, which consumes blocks_ and runs_
    std::shared_ptr<const FileItemList::Blocks> blocks_;
    std::vector<std::shared_ptr<const SortedRun>> runs_;
    FileItemList list_;
};

} // namespace ombrel
