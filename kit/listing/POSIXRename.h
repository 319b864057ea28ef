#pragma once

#include "listing/POSIX.h"

/// The rename that never overwrites.
namespace ombrel::POSIX {

/// Gives the entry `from` the name `to`; fails with EEXIST when something has that name, and then both are as
/// they were. See `areOneItem` for the one failure after which they are not.
///
/// One `renameat2` where the driver knows RENAME_NOREPLACE. Where it does not (many FUSE drivers, NFS), the
/// name is taken first by a call that is exclusive everywhere, and the item then moved onto what is our own:
/// a hard link for what is not a folder, an empty file where there are no hard links, an empty folder for a
/// folder, which a plain rename replaces only while it is empty.
[[nodiscard]] Result<void> renameExclusive(Place from, Place to);

/// Whether both names stand for one object that is no folder: what `renameExclusive` leaves where a hard link
/// was made and neither name could be removed then.
[[nodiscard]] bool areOneItem(Place a, Place b);

/// Lets two entries of one file system trade their names, at once or not at all. EINVAL, ENOSYS or EOPNOTSUPP
/// where the driver cannot; ENOENT when either is missing.
[[nodiscard]] Result<void> exchange(Place a, Place b);

} // namespace ombrel::POSIX
