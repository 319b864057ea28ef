#include "listing/LazyItems.h"

#include <numeric>

namespace ombrel {

LazyItems::LazyItems(const FileSort& sort, std::shared_ptr<const FileItemList::Blocks> blocks,
                     std::vector<std::shared_ptr<const SortedRun>> runs)
    : sort_(sort),
      count_(std::accumulate(runs.begin(), runs.end(), std::size_t{0},
                             [](std::size_t sum, const auto& run) { return sum + run->size(); })),
      blocks_(std::move(blocks)), runs_(std::move(runs)) {}

const FileItemList& LazyItems::list() {
    std::call_once(once_, [this] {
        const EntryOrder order(sort_, *blocks_);
        auto refs = order.mergedRefs(runs_);
        list_ = FileItemList(std::move(blocks_), std::move(refs));
        runs_ = {};
    });
    return list_;
}

} // namespace ombrel
