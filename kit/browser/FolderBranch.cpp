#include "browser/FolderBranch.h"

#include <utility>

namespace ombrel {
namespace {

constexpr DirectoryWatcher::Seconds quiet(0.25);

} // namespace

ListingFeed::Source FolderBranch::inTurns(ListingFeed::Source listings,
                                          std::shared_ptr<ConcurrencyLimiter> limiter) {
    return [listings = std::move(listings), limiter = std::move(limiter)](const DirectoryRequest& request) {
        const auto relay = [listings, limiter, request](const DirectoryProvider::Stream::Sink& sink,
                                                        const std::stop_token& stop) {
            using Clock = std::chrono::steady_clock;
            std::optional<ConcurrencyLimiter::Slot> slot(limiter->acquire(stop));
            if (!*slot) return DirectoryProvider::Ending(std::unexpect, Stopped<DirectoryError>::cancelled());
            const auto began = Clock::now();
            auto stream = listings(request);
            // A folder in a dead mount must not keep the others from being read.
            if (!stream.waitUntil(began + turn, stop)) slot.reset();
            for (;;) {
                auto next = stream.newest(stop);
                if (!next) return DirectoryProvider::Ending(std::unexpect, next.error());
                if (!*next) return DirectoryProvider::Ending();
                if (!(*next)->isComplete && stream.waitUntil(began + silence, stop)) continue;
                sink.yield(std::move(**next));
            }
        };
        return DirectoryProvider::Stream("ombrel-tree", relay);
    };
}

FolderBranch::FolderBranch(FileURL folder, const ListingFeed::Source& listings, const ItemFilter& filter,
                           Change change)
    : folder_(std::move(folder)), filter_(filter), change_(std::move(change)),
      feed_(listings, {.show = [this](ListedItems listed) { take(std::move(listed)); },
                       .fail = [this](DirectoryError error) { fail(error); }}),
      live_([this] { read(); }),
      watcher_(quiet, [this](DirectoryWatcher::Event event) { handleWatcher(event); }) {
    patience_.setSingleShot(true);
    QObject::connect(&patience_, &QTimer::timeout, &patience_,
                     [this] { this->change([this] { isSlow_ = true; }); });
    patience_.start(silence);
    read();
}

void FolderBranch::read() {
    live_.listingBegan();
    if (isWatched_) watcher_.watch(folder_);
    ListingFeed::Order order{
        .request = {.url = folder_, .generation = ++generation_, .directoriesOnly = true},
        .sought = nullptr,
        .arming = isWatched_ ? watcher_.arming() : FolderWatch::Arming(),
        .replaced = wasRead_ ? std::optional(listed_.arrangement.all) : std::nullopt};
    feed_.start(std::move(order), wish());
}

void FolderBranch::refresh() {
    live_.noteChange();
}

void FolderBranch::change(const std::function<void()>& change) {
    // Whoever hears of it may destroy this object.
    const auto tell = change_;
    tell(change);
}

void FolderBranch::take(ListedItems listed) {
    const bool isEnding = listed.isComplete && listed.generation == generation_;
    if (isEnding) patience_.stop();
    const std::weak_ptr<const bool> alive = alive_;
    change([&] {
        if (isEnding) isSlow_ = false;
        failure_.reset();
        wasRead_ = listed.isComplete;
        listed_ = std::move(listed);
    });
    // Last, because it may begin another listing.
    if (isEnding && !alive.expired()) live_.listingEnded();
}

void FolderBranch::fail(DirectoryError error) {
    patience_.stop();
    const std::weak_ptr<const bool> alive = alive_;
    change([&] {
        isSlow_ = false;
        wasRead_ = false;
        listed_ = {};
        failure_ = error;
    });
    if (!alive.expired()) live_.listingEnded();
}

void FolderBranch::handleWatcher(DirectoryWatcher::Event event) {
    // When the folder has gone, another may stand in its place by now.
    if (event == DirectoryWatcher::Event::directoryInvalidated) wasRead_ = false;
    live_.noteChange();
}

void FolderBranch::setFilter(const ItemFilter& filter) {
    if (filter == filter_) return;
    filter_ = filter;
    feed_.rearrange(listed_, wish());
}

void FolderBranch::setWatched(bool watched) {
    if (watched == isWatched_) return;
    isWatched_ = watched;
    if (!watched) return watcher_.stop();
    live_.noteChange();
}

} // namespace ombrel
