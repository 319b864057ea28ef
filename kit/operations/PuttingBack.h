#pragma once

#include "listing/FileReference.h"
#include "operations/OperationHooks.h"
#include "operations/OperationReport.h"
#include "operations/TrashBackend.h"

#include <cstdint>
#include <optional>
#include <span>
#include <stop_token>

namespace ombrel {

/// An item in the trash that is to leave it.
struct PutBackItem {
    FileReference item; ///< as it is in the trash
    /// Where it is to go; nothing for where its record says that it was.
    std::optional<FileURL> original;
};

/// What to do when the folder that an item was in is not there any more.
enum class MissingFolders : std::uint8_t { refuse, make };

/// Moves items out of the trash to where they were, one after another, and drops their records: a report of
/// kind `move` with the item's place in the trash as source. Each is one rename that replaces nothing. A name
/// that is taken is a conflict: `keepBoth` numbers the item, `replace` first moves what is there to the
/// trash, from where it can be put back in turn. An item without a record fails as `trashUnavailable` with
/// the reason `noRecord`, one whose folder is gone as `destinationMissing` unless folders are to be made.
/// Blocking.
[[nodiscard]] OperationReport putBack(TrashBackend& trash, std::span<const PutBackItem> items,
                                      MissingFolders folders, const OperationHooks& hooks,
                                      std::stop_token stop = {});

} // namespace ombrel
