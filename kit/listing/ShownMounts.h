#pragma once

#include "listing/MountTable.h"

#include <vector>

namespace ombrel {

/// The mounts that people see as volumes, in the table's order: the root, everything below /media, /mnt and
/// /run/media whatever its type, and elsewhere what holds files of a device or a server for the first time.
///
/// Left out are the kernel's own file systems, places where a volume is mounted only once somebody steps in,
/// what stands in places that belong to the system (as GLib's list has them), software images (snaps), binds,
/// mounts hidden below others, folders of dot names, and what fstab marks "x-gvfs-hide"; "x-gvfs-show" brings
/// a mount back. Valid as long as a copy of the table is.
[[nodiscard]] std::vector<const Mount*> shownMounts(const MountTable& table);

} // namespace ombrel
