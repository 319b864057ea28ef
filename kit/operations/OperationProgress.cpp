#include "operations/OperationProgress.h"

#include <algorithm>
#include <utility>

namespace ombrel {

double OperationProgress::fraction() const noexcept {
    const auto quotient = [](std::int64_t done, std::int64_t total) {
        return std::clamp(static_cast<double>(done) / static_cast<double>(total), 0.0, 1.0);
    };
    if (totalBytes >= 1) return quotient(completedBytes, totalBytes);
    if (totalItems >= 1) return quotient(completedItems, totalItems);
    return 0;
}

Text textOf(OperationProgress::Phase phase) {
    using Phase = OperationProgress::Phase;
    switch (phase) {
    case Phase::preparing: return {"progress.phase.prepare"};
    case Phase::copying: return {"progress.phase.copy"};
    case Phase::verifying: return {"progress.phase.verify"};
    case Phase::removingSource: return {"progress.phase.removeSource"};
    case Phase::trashing: return {"progress.phase.trash"};
    case Phase::deleting: return {"progress.phase.delete"};
    }
    std::unreachable();
}

} // namespace ombrel
