#pragma once

#include "listing/FileReference.h"
#include "operations/OperationHooks.h"
#include "operations/OperationReport.h"

#include <span>
#include <stop_token>

namespace ombrel {

/// Removes items and everything in them, for good, one after another. Progress counts entries: they are
/// counted first (phase `preparing`), then removed (phase `deleting`). The report has one result for each
/// item, followed by one for each entry inside it that was left. Blocking.
[[nodiscard]] OperationReport deletePermanently(std::span<const FileReference> items,
                                                const OperationHooks& hooks, std::stop_token stop = {});

} // namespace ombrel
