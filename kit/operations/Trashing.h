#pragma once

#include "listing/FileReference.h"
#include "operations/OperationHooks.h"
#include "operations/OperationReport.h"
#include "operations/TrashBackend.h"

#include <span>
#include <stop_token>

namespace ombrel {

/// Moves items to the trash, one after another (phase `trashing`). An item's result has its place in the
/// trash as destination, so that it can be put back; one that no trash takes is asked about with the reason
/// in the facts, and nothing is ever deleted instead. Blocking.
[[nodiscard]] OperationReport moveToTrash(TrashBackend& trash, std::span<const FileReference> items,
                                          const OperationHooks& hooks, std::stop_token stop = {});

/// Removes for good what is in the trash of all volumes, with the records of it (phases `preparing`,
/// `deleting`). Items that the trash has no record of stay: they are `unrecorded` and need a decision of
/// their own. Blocking.
struct EmptiedTrash {
    OperationReport report; ///< one result for each item, by its location in the trash
    std::vector<FileURL> unrecorded;
    std::vector<FileURL> unreadable; ///< as in `TrashListing`
};
[[nodiscard]] EmptiedTrash emptyTrash(TrashBackend& trash, const OperationHooks& hooks,
                                      std::stop_token stop = {});

} // namespace ombrel
