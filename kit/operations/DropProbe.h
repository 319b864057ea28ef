#pragma once

#include "base/FileURL.h"
#include "operations/FileOperationError.h"

#include <cstdint>
#include <expected>

namespace ombrel {

/// The device that things put into `folder` (links are followed) would lie on, or why nothing can be put
/// there: `destinationMissing`, `permissionDenied`, `readOnlyVolume` and the like. Blocking.
[[nodiscard]] std::expected<std::uint64_t, FileOperationError> deviceForDrops(const FileURL& folder);

} // namespace ombrel
