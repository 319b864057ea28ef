#include "operations/OperationReport.h"

#include <algorithm>
#include <iterator>

namespace ombrel {
namespace {

std::vector<ItemResult> itemsWhere(const OperationReport& report, bool isSuccess) {
    std::vector<ItemResult> found;
    std::ranges::copy_if(report.items, std::back_inserter(found),
                         [&](const ItemResult& item) { return item.outcome.isSuccess() == isSuccess; });
    return found;
}

} // namespace

std::vector<ItemResult> OperationReport::succeeded() const {
    return itemsWhere(*this, true);
}

std::vector<ItemResult> OperationReport::unsuccessful() const {
    return itemsWhere(*this, false);
}

OperationReport::Overall OperationReport::overall() const {
    using Case = ItemOutcome::Case;
    const auto any = [&](Case which) {
        return std::ranges::any_of(items,
                                   [&](const ItemResult& item) { return item.outcome.which() == which; });
    };
    if (items.empty()) return Overall::nothingToDo;
    const bool hasCancelled = any(Case::cancelled);
    const bool hasFailed = any(Case::failed);
    if (std::ranges::all_of(items, [](const ItemResult& item) { return item.outcome.isSuccess(); }))
        return Overall::succeeded;
    if (any(Case::completed) || any(Case::copiedSourceKept)) return Overall::partiallySucceeded;
    return hasCancelled && !hasFailed ? Overall::cancelled : Overall::failed;
}

} // namespace ombrel
