#pragma once

#include "base/FileURL.h"
#include "base/Hash.h"
#include "base/Metadata.h"
#include "listing/MountTable.h"
#include "listing/POSIXFileSystem.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace ombrel {

/// One mounted volume as people see it. Equality and hash are member-wise. An attribute is `failed` when its
/// source did not answer (ETIMEDOUT when it did not answer in time), `unknown` when the volume has none.
struct VolumeInfo {
    FileURL url;                ///< the mount point
    Metadata<std::string> name; ///< the label that the volume carries, UTF-8
    Metadata<std::string> fileSystemType;
    Metadata<bool> isReadOnly;
    Metadata<bool> isLocal;
    Metadata<bool> isRemovable; ///< the medium can be taken out of its drive
    Metadata<bool> isEjectable; ///< or the drive unplugged, or the image detached
    Metadata<bool> isInternal;  ///< the drive is built in
    bool isRootFileSystem = false;
    Metadata<std::int64_t> totalCapacity;     ///< bytes
    Metadata<std::int64_t> availableCapacity; ///< bytes

    /// What the mount table and the device tell; capacities stay `unknown`. Blocking, though never on the
    /// volume.
    [[nodiscard]] static VolumeInfo describe(const Mount& mount);
    /// The volume mounted at `url`, capacities included. Where nothing is mounted, all is `failed`. Blocking,
    /// and for ever on a volume that does not answer: CapacityQuery is the way to ask for many.
    [[nodiscard]] static VolumeInfo read(const FileURL& url);

    void setCapacity(const POSIX::Result<POSIX::Capacity>& capacity);

    /// The name, or the mount point's last component where there is none.
    [[nodiscard]] std::string displayName() const;

    [[nodiscard]] std::size_t hashValue() const;
    friend bool operator==(const VolumeInfo&, const VolumeInfo&) = default;
};

} // namespace ombrel
