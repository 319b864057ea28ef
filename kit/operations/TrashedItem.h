#pragma once

#include "base/FileURL.h"
#include "listing/FileStatus.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace ombrel {

/// One item in a trash.
struct TrashedItem {
    FileURL location; ///< where it is now: "<trash>/files/<name>"
    /// Where it was. Nothing when the trash has no readable record of it: such an item is to be shown as one
    /// that needs the user's decision, and is never removed unasked.
    std::optional<FileURL> original;
    /// Seconds since 1970-01-01 UTC, see `TrashInfo::deletedAt`.
    std::optional<std::int64_t> deletedAt;
    FileStatus status;
    /// Bytes: a file's own, or a folder's on the medium where they are known without counting them now.
    std::optional<std::int64_t> size;
};

/// What is in the trash, all places taken together.
struct TrashListing {
    std::vector<TrashedItem> items;
    /// Records of items that are not there any more; harmless, removed when the trash is emptied.
    std::vector<FileURL> staleRecords;
    /// Mount points of volumes that did not answer in time or whose trash could not be read.
    std::vector<FileURL> unreadable;
};

} // namespace ombrel
