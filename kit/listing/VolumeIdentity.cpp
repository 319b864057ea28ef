#include "listing/BlockDevice.h"
#include "listing/FolderBookmark.h"

namespace ombrel {
namespace {

/// Whether the source alone says which file system it is, whatever machine asks.
bool isNamedBySource(const VolumeIdentity& volume) {
    return volume.type == "zfs" || FileSystemTraits::of(volume.type).isNetwork;
}

} // namespace

VolumeIdentity VolumeIdentity::of(const Mount& mount) {
    VolumeIdentity identity{{}, mount.type, mount.source, mount.device};
    if (mount.blockDevice)
        if (const auto device = BlockDevice::of(*mount.blockDevice)) identity.uuid = device->uuid;
    return identity;
}

VolumeIdentity::Likeness VolumeIdentity::likeness(const VolumeIdentity& other) const {
    if (!uuid.empty() && !other.uuid.empty())
        return uuid == other.uuid ? Likeness::same : Likeness::different;
    if (type != other.type) return Likeness::different;
    if (isNamedBySource(*this)) return source == other.source ? Likeness::same : Likeness::different;
    return source == other.source || device == other.device ? Likeness::possible : Likeness::different;
}

} // namespace ombrel
