#pragma once

#include "listing/FileReference.h"
#include "operations/ItemOutcome.h"
#include "operations/TrashBackend.h"

#include <stop_token>
#include <string_view>

namespace ombrel {

/// Copies an item (a template, say) into a folder under the preferred name (bytes) or the first free one of
/// its numbered forms, up to 500; a folder or package keeps its whole name before the number. Verified and
/// put in place as every copy is; what has a name keeps it. `destinationExists` when all are taken. `trash`
/// is that of `transfer`. Blocking.
[[nodiscard]] ItemOutcome copyUnderFreeName(const FileReference& source, const FileURL& folder,
                                            std::string_view preferredName, TrashBackend& trash,
                                            const std::stop_token& stop = {});

} // namespace ombrel
