#include "operations/StagedItem.h"

#include "operations/StagingName.h"
#include "operations/StagingRemoval.h"

#include <utility>

namespace ombrel {

StagedItem::StagedItem(int folder) : folder_(folder), name_(StagingName::make()) {}

StagedItem::StagedItem(StagedItem&& other) noexcept
    : folder_(other.folder_), name_(std::move(other.name_)), top_(std::move(other.top_)),
      isOurs_(std::exchange(other.isOurs_, false)) {}

StagedItem::~StagedItem() {
    (void)remove();
}

std::optional<POSIXFailure> StagedItem::remove() {
    if (!std::exchange(isOurs_, false)) return std::nullopt;
    const auto failure = removeStaging(place());
    top_ = OwnedFd();
    return failure;
}

} // namespace ombrel
