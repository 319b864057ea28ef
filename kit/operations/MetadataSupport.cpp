#include "operations/MetadataSupport.h"

#include "listing/POSIX.h"
#include "listing/POSIXEntries.h"

#include <cerrno>

namespace ombrel {

MetadataSupport::MetadataSupport(const FileSystemTraits& traits) noexcept
    : held_(0), mayPretend_(traits.isFUSE || traits.isNetwork) {
    std::uint8_t held = bit(Feature::times);
    if (traits.holdsModes) held |= bit(Feature::modes);
    if (traits.holdsOwners) held |= bit(Feature::owners);
    if (traits.holdsAttributes) held |= bit(Feature::attributes);
    if (traits.holdsACLs) held |= bit(Feature::lists);
    held_ = held;
}

bool MetadataSupport::meansNoPlace(int errorNumber) const noexcept {
    if (errorNumber == EOPNOTSUPP || errorNumber == ENOSYS) return true;
    return mayPretend_ && (errorNumber == EPERM || errorNumber == EACCES || errorNumber == EINVAL);
}

void MetadataSupport::begin(bool folderGivesItsGroup) noexcept {
    givesItsGroup_ = folderGivesItsGroup;
    hasLearned_ = false;
    freshOwner_ = freshGroup_ = UINT32_MAX;
}

void MetadataSupport::learn(int fd, const FileStatus& status) {
    if (hasLearned_) return;
    hasLearned_ = true;
    freshOwner_ = status.owner;
    freshGroup_ = status.group;
    if (hasProbed_ || !mayPretend_ || !holds(Feature::modes)) return;
    hasProbed_ = true;
    const std::uint32_t old = status.permissions();
    const std::uint32_t other = old ^ (S_IRGRP | S_IXOTH);
    const auto changed = POSIX::changeMode(fd, other);
    const auto now = POSIX::status(fd);
    if (!changed || !now || now->permissions() != other) refuse(Feature::modes);
    (void)POSIX::changeMode(fd, old);
}

} // namespace ombrel
