#include "operations/StagedItem.h"

#include "listing/POSIXRename.h"
#include "operations/StagingName.h"
#include "operations/StagingRemoval.h"

#include <cerrno>
#include <utility>

namespace ombrel {

StagedItem::StagedItem(int folder) : folder_(folder), name_(StagingName::make()) {}

StagedItem::StagedItem(StagedItem&& other) noexcept
    : folder_(other.folder_), name_(std::move(other.name_)), top_(std::move(other.top_)),
      isOurs_(std::exchange(other.isOurs_, false)) {}

StagedItem::~StagedItem() {
    (void)remove();
}

POSIX::Result<StagedItem> StagedItem::takenFrom(POSIX::Place place,
                                                const std::optional<FileIdentity>& identity) {
    const auto isIt = [&](POSIX::Place where) -> POSIX::Result<void> {
        const auto status = POSIX::lstat(where);
        if (!status) return std::unexpected(status.error());
        if (identity && status->identity != *identity) return std::unexpected(POSIXFailure{EEXIST});
        return {};
    };
    if (const auto found = isIt(place); !found) return std::unexpected(found.error());
    StagedItem item(place.folder);
    const auto moved = POSIX::renameExclusive(place, item.place());
    auto taken = moved ? isIt(item.place()) : moved;
    if (taken) return item;
    item.release();
    if (moved) (void)POSIX::renameExclusive(item.place(), place);
    return std::unexpected(taken.error());
}

std::optional<POSIXFailure> StagedItem::remove() {
    if (!std::exchange(isOurs_, false)) return std::nullopt;
    const auto failure = removeStaging(place());
    top_ = OwnedFd();
    return failure;
}

} // namespace ombrel
