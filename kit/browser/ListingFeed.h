#pragma once

#include "browser/ItemArrangement.h"
#include "browser/ItemSuccession.h"
#include "browser/SelectionMemory.h"
#include "listing/DirectoryProvider.h"
#include "listing/FolderWatch.h"
#include "listing/SearchProvider.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace ombrel {

/// One state of a listing, ready to be shown. Copies share everything.
struct ListedItems {
    std::uint64_t generation = 0;
    std::uint64_t step = 0; ///< later states of one listing have higher ones
    ItemArrangement arrangement;
    bool isComplete = false;
    std::int64_t unreadableCount = 0;
    /// After a reload, or a preview: from the items shown before to these.
    std::shared_ptr<const ItemSuccession> succession;
    /// When complete: those of the items that were to be found, and what said which those are.
    std::shared_ptr<const ItemSet> found = nullptr;
    std::shared_ptr<const SelectionMemory> sought = nullptr;
};

/// Brings one pane's listings to the main thread, always as the pane wants them sorted and filtered.
///
/// A listing, of a folder or of the matches of a search, is read, put in order and filtered on workers. What
/// is handed over is the newest state, one at a time: a slow main thread skips states and is never flooded,
/// and putting a growing listing in order for the screen takes at most a fifth of a thread. Main thread only.
class ListingFeed {
public:
    /// Starts a listing; called on a worker.
    using Source = std::function<DirectoryProvider::Stream(DirectoryRequest)>;
    /// Starts a search; called on a worker.
    using SearchSource = std::function<SearchProvider::Stream(SearchRequest)>;

    /// Called on the main thread, never from within a call of the feed but `halt`.
    struct Consumer {
        std::function<void(ListedItems)> show;
        std::function<void(DirectoryError)> fail;
    };

    struct Order {
        DirectoryRequest request;
        /// What is to be found in the complete listing; may be nothing.
        std::shared_ptr<const SelectionMemory> sought = nullptr;
        /// Of the watch over the folder; waited for, though not for long, before the folder is read.
        FolderWatch::Arming arming = {};
        /// What is shown until the new listing is complete, when it replaces it in one step; nothing for a
        /// listing that is shown while it grows.
        std::optional<FileItemList> replaced = std::nullopt;
    };

    struct SearchOrder {
        SearchRequest request;
        std::shared_ptr<const SelectionMemory> sought = nullptr;
    };

    ListingFeed(Source source, Consumer consumer, SearchSource searchSource = SearchProvider::results);
    ListingFeed(const ListingFeed&) = delete;
    ListingFeed& operator=(const ListingFeed&) = delete;
    ~ListingFeed();

    /// Abandons the listing under way and starts another.
    void start(Order order, const ItemWish& wish);
    void start(SearchOrder order, const ItemWish& wish);
    /// Abandons the listing under way; nothing of it, nor of what was shown, arrives any more.
    void stop();
    /// Ends the listing under way. What had been made ready is shown before this returns, and can still be
    /// rearranged.
    void halt();
    /// What is shown now, and all that comes from now on, is wanted so; `shown` arrives again when it has
    /// been rearranged.
    void rearrange(ListedItems shown, const ItemWish& wish);
    /// The same for what is to be found: `shown`, when it is complete, arrives again when it has been looked
    /// through. Nothing ends the search.
    void seek(ListedItems shown, std::shared_ptr<const SelectionMemory> sought);

private:
    class Outbox;
    class Desk;
    std::shared_ptr<Desk> desk_;
};

} // namespace ombrel
