#pragma once

#include "base/FileURL.h"
#include "base/ResultStream.h"
#include "listing/DirectoryError.h"
#include "listing/FileItemList.h"
#include "listing/FileSort.h"

#include <cstdint>
#include <expected>
#include <functional>
#include <memory>
#include <stop_token>

namespace ombrel {

/// One wish to have a folder listed. Equality is member-wise.
struct DirectoryRequest {
    FileURL url;
    std::uint64_t generation =
        0; ///< the caller's counter; copied into every item, used to drop stale snapshots
    FileSort sort = {};
    bool directoriesOnly = false;      ///< folders and links to folders alone
    std::int64_t firstBatchSize = 200; ///< entries before the first partial snapshot; below 1 counts as 1

    friend bool operator==(const DirectoryRequest&, const DirectoryRequest&) = default;
};

class LazyItems;

/// Everything that a listing has read so far, in the request's order. A consumer replaces its list with each
/// snapshot.
struct DirectorySnapshot {
    DirectoryRequest request;
    bool isComplete = false;
    std::int64_t unreadableCount = 0; ///< items so far that carry a read error

    /// How many items there are, without putting them in order.
    [[nodiscard]] std::size_t count() const noexcept;
    /// The items, put together from the sorted batches on the first call (some 50 ms for a million) and kept.
    /// Any thread; belongs off the main thread for large folders.
    [[nodiscard]] const FileItemList& items() const;

    std::shared_ptr<LazyItems> lazyItems;
};

/// Reads folders and delivers them in doubling sorted batches: after N, 3N, 7N, ... entries (N the first
/// batch, no batch over 16,384) a partial snapshot of all that was read so far, then the complete one. Holds
/// no state; any number of listings may run at once.
class DirectoryProvider {
public:
    static constexpr std::int64_t largestBatch = 16384;

    using Ending = std::expected<void, Stopped<DirectoryError>>;
    using Stream = ResultStream<DirectorySnapshot, DirectoryError>;

    /// Starts the listing on its own threads and returns at once. An error follows the partial snapshots
    /// already sent. Destroying the stream ends the listing at its next entry.
    [[nodiscard]] Stream snapshots(DirectoryRequest request) const;

    /// The complete snapshot. Blocking.
    [[nodiscard]] std::expected<DirectorySnapshot, Stopped<DirectoryError>>
    load(DirectoryRequest request, std::stop_token stop = {}) const;

    /// The reading itself. Blocking; `emit` is called on the reading threads, one call at a time, in order.
    /// One lstat an entry, and a call more for links and for what may be locked; an entry that cannot be
    /// examined is an item with a read error.
    Ending read(const DirectoryRequest& request, const std::function<void(DirectorySnapshot)>& emit,
                std::stop_token stop = {}) const;
};

} // namespace ombrel
