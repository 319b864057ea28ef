#pragma once

#include "operations/FileOperationFaults.h"
#include "operations/FileOperationKind.h"
#include "operations/OperationHooks.h"
#include "operations/OperationReport.h"
#include "operations/TransferItem.h"
#include "operations/TrashBackend.h"

#include <span>
#include <stop_token>
#include <vector>

namespace ombrel {

/// Copies or moves items into a folder, one after another, as one job.
///
/// Nothing is ever written under its final name: a copy is made under a hidden staging name in the
/// destination, compared with its source byte for byte, and then put in place by a rename that replaces
/// nothing. What an item replaces stays aside until the new one is safe on its medium. A move within a volume
/// is one rename; across volumes the source goes once the copy is safe, and only what is still as it was
/// copied. The report has one result for each item, or for each entry of a folder that was merged into an
/// existing one, followed by one for each entry that was left out. `trash` takes what an earlier, interrupted
/// job had replaced. Blocking.
[[nodiscard]] OperationReport transfer(FileOperationKind kind, std::span<const TransferItem> items,
                                       const FileURL& destination, const OperationHooks& hooks,
                                       TrashBackend& trash, const FileOperationFaults& faults = {},
                                       std::stop_token stop = {});

/// The locations in `destination` that the items would take and that something has already.
[[nodiscard]] std::vector<FileURL> conflicts(std::span<const FileReference> items,
                                             const FileURL& destination);

} // namespace ombrel
