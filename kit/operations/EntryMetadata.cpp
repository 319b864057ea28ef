#include "operations/EntryMetadata.h"

#include "listing/POSIXEntries.h"
#include "listing/POSIXMetadata.h"

#include <algorithm>
#include <cerrno>
#include <string>
#include <string_view>
#include <vector>

namespace ombrel::EntryMetadata {
namespace {

using Feature = MetadataSupport::Feature;

constexpr auto accessList = "system.posix_acl_access";
constexpr auto defaultList = "system.posix_acl_default";

/// What an attribute is, by its name (xattr(7)).
enum class Sort : std::uint8_t { user, list, privileged, foreign };

Sort sortOf(std::string_view name) noexcept {
    if (name.starts_with("user.")) return Sort::user;
    if (name == accessList || name == defaultList) return Sort::list;
    if (name.starts_with("security.") || name.starts_with("trusted.")) return Sort::privileged;
    return Sort::foreign;
}

Feature featureOf(Sort sort) noexcept {
    return sort == Sort::list ? Feature::lists : Feature::attributes;
}

/// Passes over what the file system has no place for and remembers that.
POSIX::Result<void> unlessRefused(POSIX::Result<void> carried, Feature feature, MetadataSupport& support) {
    if (carried || !support.meansNoPlace(carried.error().number)) return carried;
    support.refuse(feature);
    return {};
}

bool meansAbsent(POSIXFailure failure) noexcept {
    return failure.number == ENODATA || failure.number == EOPNOTSUPP;
}

struct Ownership {
    std::uint32_t owner, group;
};

/// The owner and group that the copy ends up with. `change` is given what to set.
template <typename Change>
POSIX::Result<Ownership> carryOwner(const FileStatus& source, MetadataSupport& support, Change change) {
    Ownership now{support.freshOwner(), support.freshGroup()};
    const std::uint32_t wantedGroup = support.givesItsGroup() ? now.group : source.group;
    if (!support.holds(Feature::owners) || (now.owner == source.owner && now.group == wantedGroup))
        return now;
    const auto owner = now.owner == source.owner ? POSIX::keepOwner : source.owner;
    const auto group = now.group == wantedGroup ? POSIX::keepOwner : wantedGroup;
    auto changed = change(owner, group);
    if (changed) return Ownership{source.owner, wantedGroup};
    const auto isRefusal = [](int number) { return number == EPERM || number == EINVAL; };
    if (isRefusal(changed.error().number) && owner != POSIX::keepOwner && group != POSIX::keepOwner) {
        changed = change(POSIX::keepOwner, group);
        if (changed) return Ownership{now.owner, wantedGroup};
    }
    if (isRefusal(changed.error().number)) return now;
    changed = unlessRefused(changed, Feature::owners, support);
    if (!changed) return std::unexpected(changed.error());
    return now;
}

std::uint32_t modeFor(const FileStatus& source, Ownership copy, const MetadataSupport& support) noexcept {
    std::uint32_t mode = source.permissions();
    if (copy.owner != source.owner) mode &= ~static_cast<std::uint32_t>(S_ISUID);
    if (copy.group != source.group) mode &= ~static_cast<std::uint32_t>(S_ISGID);
    if (source.isDirectory() && support.givesItsGroup()) mode |= S_ISGID;
    return mode;
}

/// Answers whether there are any.
POSIX::Result<bool> carryAttributes(int from, int to, MetadataSupport& support) {
    const auto names = POSIX::attributeNames(from);
    if (!names) {
        if (names.error().number == EOPNOTSUPP) return false;
        return std::unexpected(names.error());
    }
    for (const auto& name : *names) {
        const Sort sort = sortOf(name);
        if (sort == Sort::foreign) continue;
        if (sort != Sort::privileged && !support.holds(featureOf(sort))) continue;
        const auto value = POSIX::attribute(from, name);
        POSIX::Result<void> carried;
        if (value)
            carried = POSIX::setAttribute(to, name, *value);
        else if (value.error().number != ENODATA)
            carried = std::unexpected(value.error());
        if (sort == Sort::privileged) continue;
        if (carried && value && support.needsProof(featureOf(sort))) {
            const auto kept = POSIX::attribute(to, name);
            support.prove(featureOf(sort), kept || !meansAbsent(kept.error()));
        }
        carried = unlessRefused(carried, featureOf(sort), support);
        if (!carried) return std::unexpected(carried.error());
    }
    return !names->empty();
}

/// Names and values of what is compared.
POSIX::Result<std::vector<std::string>> comparableNames(int fd, const MetadataSupport& support) {
    auto names = POSIX::attributeNames(fd);
    if (!names) {
        if (names.error().number == EOPNOTSUPP) return std::vector<std::string>();
        return names;
    }
    std::erase_if(*names, [&](const std::string& name) {
        const Sort sort = sortOf(name);
        return sort == Sort::privileged || sort == Sort::foreign || !support.holds(featureOf(sort));
    });
    std::ranges::sort(*names);
    return names;
}

} // namespace

POSIX::Result<bool> carry(int from, const FileStatus& source, int to, MetadataSupport& support) {
    const auto ownership = carryOwner(source, support, [&](std::uint32_t owner, std::uint32_t group) {
        return POSIX::changeOwner(to, owner, group);
    });
    if (!ownership) return std::unexpected(ownership.error());
    const auto hasAttributes = carryAttributes(from, to, support);
    if (!hasAttributes) return hasAttributes;
    POSIX::Result<void> carried;
    if (support.holds(Feature::modes)) {
        const auto mode = modeFor(source, *ownership, support);
        carried = unlessRefused(POSIX::changeMode(to, mode), Feature::modes, support);
    }
    if (carried && support.holds(Feature::times))
        carried =
            unlessRefused(POSIX::changeTimes(to, source.accessed, source.modified), Feature::times, support);
    if (!carried) return std::unexpected(carried.error());
    return hasAttributes;
}

POSIX::Result<void> carry(const FileStatus& source, POSIX::Place to, MetadataSupport& support) {
    const auto ownership = carryOwner(source, support, [&](std::uint32_t owner, std::uint32_t group) {
        return POSIX::changeOwner(to, owner, group);
    });
    if (!ownership) return std::unexpected(ownership.error());
    if (!source.isSymlink() && support.holds(Feature::modes)) {
        const auto mode = modeFor(source, *ownership, support);
        const auto carried = unlessRefused(POSIX::changeMode(to, mode), Feature::modes, support);
        if (!carried) return carried;
    }
    if (!support.holds(Feature::times)) return {};
    const auto carried = POSIX::changeTimes(to, source.accessed, source.modified);
    // Some file systems keep no times of links.
    if (!carried && source.isSymlink() && support.meansNoPlace(carried.error().number)) return {};
    return unlessRefused(carried, Feature::times, support);
}

void dropInherited(int fd) {
    (void)POSIX::removeAttribute(fd, accessList);
    (void)POSIX::removeAttribute(fd, defaultList);
}

bool handsDownLists(int folder) {
    return POSIX::attribute(folder, defaultList).has_value();
}

bool haveEqualModes(const FileStatus& source, const FileStatus& copy,
                    const MetadataSupport& support) noexcept {
    if (!support.holds(Feature::modes)) return true;
    std::uint32_t compared = 01777;
    if (source.owner == copy.owner) compared |= S_ISUID;
    if (source.group == copy.group && !support.givesItsGroup()) compared |= S_ISGID;
    return ((source.mode ^ copy.mode) & compared) == 0;
}

POSIX::Result<bool> areEqual(int a, const FileStatus& source, int b, const FileStatus& copy,
                             const MetadataSupport& support) {
    if (!haveEqualModes(source, copy, support)) return false;
    return haveEqualAttributes(a, b, support);
}

POSIX::Result<bool> hasNoAttributes(int fd, const MetadataSupport& support) {
    if (!support.holds(Feature::attributes) && !support.holds(Feature::lists)) return true;
    const auto names = comparableNames(fd, support);
    if (!names) return std::unexpected(names.error());
    return names->empty();
}

POSIX::Result<bool> haveEqualAttributes(int a, int b, const MetadataSupport& support) {
    if (!support.holds(Feature::attributes) && !support.holds(Feature::lists)) return true;
    const auto names = comparableNames(a, support);
    if (!names) return std::unexpected(names.error());
    const auto copied = comparableNames(b, support);
    if (!copied) return std::unexpected(copied.error());
    if (*names != *copied) return false;
    for (const auto& name : *names) {
        const auto value = POSIX::attribute(a, name);
        if (!value) return std::unexpected(value.error());
        const auto other = POSIX::attribute(b, name);
        if (!other) return std::unexpected(other.error());
        if (*value != *other) return false;
    }
    return true;
}

} // namespace ombrel::EntryMetadata
