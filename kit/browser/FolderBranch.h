#pragma once

#include "browser/ItemArrangement.h"
#include "browser/ListingFeed.h"
#include "browser/LiveReload.h"
#include "listing/ConcurrencyLimiter.h"
#include "services/DirectoryWatcher.h"

#include <QTimer>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>

namespace ombrel {

/// The folders in one folder, in the order of their names: read on workers, kept up to date as long as the
/// object lives. Main thread only, and nothing here waits.
class FolderBranch {
public:
    /// How long a folder may be read in silence.
    static constexpr std::chrono::milliseconds silence{300};
    /// After that long without an answer a listing gives its turn to others; it goes on all the same.
    static constexpr std::chrono::milliseconds turn{5000};

    /// Listings that take turns: at most as many run as `limiter` lets. The first states of a folder that is
    /// read within `silence` are left out.
    [[nodiscard]] static ListingFeed::Source inTurns(ListingFeed::Source listings,
                                                     std::shared_ptr<ConcurrencyLimiter> limiter);

    /// Called from the event loop for each change of what the branch answers: makes the change by calling
    /// what it is given, once. It may destroy the branch afterwards.
    using Change = std::function<void(const std::function<void()>& change)>;

    /// Begins to read.
    FolderBranch(FileURL folder, const ListingFeed::Source& listings, const ItemFilter& filter,
                 Change change);
    FolderBranch(const FolderBranch&) = delete;
    FolderBranch& operator=(const FolderBranch&) = delete;

    [[nodiscard]] const FileURL& folder() const noexcept { return folder_; }
    /// What has been read of it.
    [[nodiscard]] const FileItemList& items() const noexcept { return listed_.arrangement.items; }
    /// Whether nothing of it is missing.
    [[nodiscard]] bool isComplete() const noexcept { return listed_.isComplete && !failure_; }
    /// Why it could not be read.
    [[nodiscard]] const std::optional<DirectoryError>& failure() const noexcept { return failure_; }
    /// Whether it is worth saying that it is still being read.
    [[nodiscard]] bool isSlow() const noexcept { return isSlow_; }

    void setFilter(const ItemFilter& filter);
    /// Reads the folder again; what was read stays until then.
    void refresh();
    /// Whether it notices by itself when the folder changes. It does at first.
    [[nodiscard]] bool isWatched() const noexcept { return isWatched_; }
    void setWatched(bool watched);

private:
    void read();
    void change(const std::function<void()>& change);
    void take(ListedItems listed);
    void fail(DirectoryError error);
    void handleWatcher(DirectoryWatcher::Event event);
    [[nodiscard]] ItemWish wish() const { return {.sort = {}, .filter = filter_}; }

    const FileURL folder_;
    ItemFilter filter_;
    Change change_;
    std::uint64_t generation_ = 0;
    ListedItems listed_;
    bool wasRead_ = false;
    std::optional<DirectoryError> failure_;
    bool isSlow_ = false;
    bool isWatched_ = true;
    ListingFeed feed_;
    LiveReload live_;
    DirectoryWatcher watcher_;
    QTimer patience_;
    const std::shared_ptr<const bool> alive_ = std::make_shared<bool>(true); ///< watched over by callbacks
};

} // namespace ombrel
