#include "listing/VolumeInfo.h"

#include "base/FileName.h"
#include "listing/BlockDevice.h"

#include <optional>

namespace ombrel {
namespace {

/// "My%20Share" in the option that fstab gives desktops.
std::string decoded(std::string_view text) {
    const auto path = FileURL::fromURI("file:///" + std::string(text));
    return path ? std::string(path->name()) : std::string(text);
}

template <typename T>
std::size_t hashOfMetadata(const Metadata<T>& metadata) {
    if (metadata.hasValue()) return std::hash<T>{}(metadata.value());
    return metadata.isFailed() ? 1 + static_cast<std::size_t>(metadata.errorNumber().value_or(0)) : 0;
}

void describeDevice(VolumeInfo& volume, const BlockDevice& device, const Mount& mount) {
    if (!device.label.empty()) volume.name = device.label;
    if (mount.type.starts_with("fuseblk") && !device.format.empty()) volume.fileSystemType = device.format;
    volume.isRemovable = device.isRemovable;
    volume.isEjectable = device.isEjectable;
    volume.isInternal = device.isInternal;
}

} // namespace

VolumeInfo VolumeInfo::describe(const Mount& mount) {
    VolumeInfo volume;
    volume.url = mount.point;
    volume.fileSystemType = mount.type;
    volume.isReadOnly = mount.isReadOnly;
    volume.isLocal = !mount.traits.isNetwork;
    volume.isRootFileSystem = mount.point.isRoot();
    if (mount.blockDevice) {
        if (const auto device = BlockDevice::of(*mount.blockDevice)) describeDevice(volume, *device, mount);
    } else {
        volume.isRemovable = false;
        volume.isEjectable = false;
        volume.isInternal = !mount.traits.isNetwork;
    }
    if (const auto name = mount.optionValue("x-gvfs-name"); name && !name->empty())
        volume.name = decoded(*name);
    return volume;
}

VolumeInfo VolumeInfo::read(const FileURL& url) {
    const auto table = MountTable::current();
    const Mount* mount = table.containing(url);
    VolumeInfo volume;
    if (mount && mount->point == url) {
        volume = describe(*mount);
        volume.setCapacity(POSIX::capacity(url));
        return volume;
    }
    volume.url = url;
    const int reason = POSIX::lstat(url) ? EINVAL : ENOENT;
    volume.fileSystemType = Metadata<std::string>::failed(reason);
    for (auto* flag :
         {&volume.isReadOnly, &volume.isLocal, &volume.isRemovable, &volume.isEjectable, &volume.isInternal})
        *flag = Metadata<bool>::failed(reason);
    volume.setCapacity(std::unexpected(POSIXFailure{reason}));
    return volume;
}

void VolumeInfo::setCapacity(const POSIX::Result<POSIX::Capacity>& capacity) {
    using Bytes = Metadata<std::int64_t>;
    totalCapacity = capacity ? Bytes(capacity->total) : Bytes::failed(capacity.error().number);
    availableCapacity = capacity ? Bytes(capacity->available) : Bytes::failed(capacity.error().number);
}

std::string VolumeInfo::displayName() const {
    if (name.hasValue() && !name.value().empty()) return name.value();
    return FileName::displayText(url.title());
}

std::size_t VolumeInfo::hashValue() const {
    return hashOf(url, hashOfMetadata(name), hashOfMetadata(fileSystemType), hashOfMetadata(isReadOnly),
                  hashOfMetadata(isLocal), hashOfMetadata(isRemovable), hashOfMetadata(isEjectable),
                  hashOfMetadata(isInternal), isRootFileSystem, hashOfMetadata(totalCapacity),
                  hashOfMetadata(availableCapacity));
}

} // namespace ombrel
