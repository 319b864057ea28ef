#pragma once

#include "listing/POSIX.h"

#include <optional>

namespace ombrel {

/// Removes a staging item and everything in it, depth first, never through a link and never across a mount.
/// Where permissions are in the way, a folder inside it is first given to its owner. Goes on after a failure,
/// and answers the first one; nothing when all is gone, also when there was nothing. Blocking.
[[nodiscard]] std::optional<POSIXFailure> removeStaging(POSIX::Place item);

} // namespace ombrel
