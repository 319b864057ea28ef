#pragma once

#include "listing/FileStatus.h"
#include "listing/POSIX.h"

namespace ombrel {

/// Renames the entry `from`, of which `item` is known, into another folder of its volume; never over anything
/// (see `POSIX::renameExclusive`).
///
/// A folder that gets another parent is itself written to, so the kernel refuses one that its owner may not
/// write. The owner is given leave for that moment; the permissions are the old ones again whatever comes of
/// it. Blocking.
[[nodiscard]] POSIX::Result<void> relocate(POSIX::Place from, const FileStatus& item, POSIX::Place to);

/// After `relocate`: whether something else had the name `from` at the last moment and was moved to `to`, and
/// has its name back. Of items whose numbers do not last nothing can be told, and a look that fails proves
/// nothing. Blocking.
[[nodiscard]] bool gaveBackAnother(POSIX::Place from, const FileStatus& item, bool numbersLast,
                                   POSIX::Place to);

} // namespace ombrel
