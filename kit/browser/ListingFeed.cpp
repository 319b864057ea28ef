#include "browser/ListingFeed.h"

#include "base/MainThread.h"
#include "base/Worker.h"
#include "browser/Disposal.h"
#include "browser/SearchMatches.h"
#include "listing/FolderSentry.h"
#include "listing/POSIX.h"

#include <cassert>
#include <chrono>
#include <mutex>
#include <system_error>
#include <utility>

namespace ombrel {

namespace {

/// Of the state that comes before the listing proper; see `preview`.
constexpr std::uint64_t previewStep = 1;

} // namespace

/// What a listing's worker and the main thread share.
class ListingFeed::Outbox {
public:
    struct Wish {
        ItemWish items;
        std::shared_ptr<const SelectionMemory> sought;
    };

    explicit Outbox(Wish wish) : wish_(std::move(wish)) {}

    /// Each answers whether the main thread has to be woken.
    bool put(ListedItems listed) {
        std::optional<ListedItems> outdated; // freed after the lock is
        const std::scoped_lock lock(mutex_);
        if (isAbandoned_) return false;
        outdated = std::exchange(waiting_, std::move(listed));
        return !std::exchange(isAnnounced_, true);
    }
    bool fail(DirectoryError error) {
        const std::scoped_lock lock(mutex_);
        if (isAbandoned_) return false;
        failure_ = error;
        return !std::exchange(isAnnounced_, true);
    }

    struct Contents {
        std::optional<ListedItems> listed;
        std::optional<DirectoryError> failure;
    };
    Contents take() {
        const std::scoped_lock lock(mutex_);
        isAnnounced_ = false;
        return {std::exchange(waiting_, std::nullopt), std::exchange(failure_, std::nullopt)};
    }
    Contents abandon() {
        const std::scoped_lock lock(mutex_);
        isAbandoned_ = true;
        return {std::exchange(waiting_, std::nullopt), std::nullopt};
    }

    [[nodiscard]] Wish wish() const {
        const std::scoped_lock lock(mutex_);
        return wish_;
    }
    void setWish(Wish wish) {
        const std::scoped_lock lock(mutex_);
        wish_ = std::move(wish);
    }

private:
    mutable std::mutex mutex_; // guards everything below
    Wish wish_;
    std::optional<ListedItems> waiting_;
    std::optional<DirectoryError> failure_;
    bool isAnnounced_ = false;
    bool isAbandoned_ = false;
};

/// The main thread's end. Workers know it weakly and only to hand it on in what they post.
class ListingFeed::Desk : public std::enable_shared_from_this<Desk> {
public:
    Desk(Source source, SearchSource searchSource, Consumer consumer)
        : source_(std::move(source)), searchSource_(std::move(searchSource)), consumer_(std::move(consumer)) {
    }
    ~Desk() { abandon(); }

    void start(Order order, const ItemWish& wish);
    void start(SearchOrder order, const ItemWish& wish);
    void stop() {
        abandon();
        shown_.reset();
    }
    void halt();
    void rearrange(ListedItems shown, const ItemWish& wish);
    void seek(ListedItems shown, std::shared_ptr<const SelectionMemory> sought);

private:
    struct State {
        std::uint64_t generation;
        std::uint64_t step;
        ItemWish wish;
        std::shared_ptr<const SelectionMemory> sought;
    };
    class Delivery;
    using Work = std::function<void(const Delivery&, const std::stop_token&)>;

    void begin(std::uint64_t generation, Outbox::Wish wish, Work work);
    void abandon();
    void collect(const std::shared_ptr<Outbox>& outbox);
    void accept(ListedItems listed);
    [[nodiscard]] bool isAsWished(const ItemWish& wish, bool isComplete,
                                  const std::shared_ptr<const SelectionMemory>& sought) const;
    [[nodiscard]] bool isOutdated(const ListedItems& listed) const;
    void arrange(ListedItems listed);
    void arranged(ListedItems listed);

    Source source_;
    SearchSource searchSource_;
    Consumer consumer_;
    Outbox::Wish wish_;
    std::uint64_t generation_ = 0;
    std::shared_ptr<Outbox> outbox_;
    Worker worker_;
    std::optional<State> shown_;
    bool isArranging_ = false;
    std::optional<ListedItems> toArrange_; // waits until the arranging under way is done
};

/// What a listing's worker hands its results to.
class ListingFeed::Desk::Delivery {
public:
    Delivery(std::shared_ptr<Outbox> outbox, std::weak_ptr<Desk> desk)
        : outbox_(std::move(outbox)), desk_(std::move(desk)) {}

    [[nodiscard]] Outbox::Wish wish() const { return outbox_->wish(); }
    void show(ListedItems listed) const {
        if (outbox_->put(std::move(listed))) wake();
    }
    void fail(DirectoryError error) const {
        if (outbox_->fail(error)) wake();
    }

private:
    void wake() const {
        MainThread::post([outbox = outbox_, desk = desk_] {
            if (const auto self = desk.lock()) self->collect(outbox);
        });
    }

    std::shared_ptr<Outbox> outbox_;
    std::weak_ptr<Desk> desk_;
};

namespace {

using Clock = std::chrono::steady_clock;

/// A watch that takes longer reports a change once it stands.
constexpr std::chrono::milliseconds longestArming(100);
/// The same where the screen shows meanwhile how the folder begins.
constexpr std::chrono::milliseconds longestArmingBehindPreview(1000);
/// How long a growing listing is not put in order again, in times of what it took.
constexpr int restPerWork = 4;

void find(ListedItems& listed, std::shared_ptr<const SelectionMemory> sought) {
    listed.found = sought ? std::make_shared<const ItemSet>(sought->find(listed.arrangement.all)) : nullptr;
    listed.sought = std::move(sought);
}

/// What items take the place of with the first listing that shows them.
struct Predecessor {
    std::optional<FileItemList> items;
    bool isReplacedWhole = false; ///< in one step, by the complete listing
};

/// The consumer of one folder's stream.
template <typename Delivery>
void list(DirectoryProvider::Stream stream, const Predecessor& before, std::uint64_t step,
          const Delivery& delivery, const std::stop_token& stop) {
    Clock::time_point restsUntil = Clock::now(); // until then a newer state takes the place of a partial one
    for (;;) {
        auto next = stream.newest(stop);
        if (!next) {
            if (!next.error().wasCancelled()) delivery.fail(next.error().error());
            return;
        }
        if (!*next) return;
        DirectorySnapshot snapshot = std::move(**next);
        if (!snapshot.isComplete) {
            const bool isLess = before.items && snapshot.count() < before.items->size();
            if (before.isReplacedWhole || isLess || stream.waitUntil(restsUntil, stop)) continue;
        }
        const auto began = Clock::now();

        auto wish = delivery.wish();
        ListedItems listed{.generation = snapshot.request.generation,
                           .step = ++step,
                           .arrangement =
                               ItemArrangement::make(snapshot.items(), snapshot.request.sort, wish.items),
                           .isComplete = snapshot.isComplete,
                           .unreadableCount = snapshot.unreadableCount,
                           .succession = nullptr};
        if (before.items)
            listed.succession = std::make_shared<const ItemSuccession>(*before.items, listed.arrangement.all);
        if (listed.isComplete) find(listed, std::move(wish.sought));
        delivery.show(std::move(listed));
        restsUntil = Clock::now() + restPerWork * (Clock::now() - began);
    }
}

/// Whether it holds so much that watching it takes long.
bool isLarge(const FileURL& folder) {
    const auto status = POSIX::statFollowing(folder);
    return status && status->size >= FolderSentry::largeFolder;
}

/// Shows how the folder begins and reads no further. Answers with what it has shown; nothing when the folder
/// is read in no time anyway.
template <typename Delivery>
std::optional<FileItemList> preview(DirectoryProvider::Stream stream, const Delivery& delivery,
                                    const std::stop_token& stop) {
    const auto first = stream.next(stop);
    if (!first || !*first || (*first)->isComplete) return std::nullopt;
    const DirectorySnapshot& snapshot = **first;
    const auto wish = delivery.wish();
    delivery.show({.generation = snapshot.request.generation,
                   .step = previewStep,
                   .arrangement = ItemArrangement::make(snapshot.items(), snapshot.request.sort, wish.items),
                   .unreadableCount = snapshot.unreadableCount,
                   .succession = nullptr});
    return snapshot.items();
}

/// Both, once the folder is watched.
template <typename Delivery>
void listWatched(const ListingFeed::Source& source, const ListingFeed::Order& order, const Delivery& delivery,
                 const std::stop_token& stop) {
    Predecessor before{order.replaced, order.replaced.has_value()};
    if (!before.items && !order.request.directoriesOnly && isLarge(order.request.url))
        before.items = preview(source(order.request), delivery, stop);
    const bool hasPreview = before.items && !before.isReplacedWhole;
    order.arming.wait(hasPreview ? longestArmingBehindPreview : longestArming, stop);
    list(source(order.request), before, hasPreview ? previewStep : 0, delivery, stop);
}

/// The consumer of one search's stream.
template <typename Delivery>
void gather(SearchProvider::Stream stream, std::uint64_t generation, const Delivery& delivery,
            const std::stop_token& stop) {
    SearchMatches matches(generation);
    Clock::time_point restsUntil = Clock::now();
    for (std::uint64_t step = 1;; ++step) {
        auto next = stream.next(stop);
        if (!next && next.error().wasCancelled()) return;
        const bool isComplete = next && !*next;
        if (next && *next) {
            matches.add(**next);
            if (Clock::now() < restsUntil && stream.waitUntil(restsUntil, stop)) continue;
        }
        const auto began = Clock::now();
        auto wish = delivery.wish();
        ListedItems listed{.generation = generation,
                           .step = step,
                           .arrangement = ItemArrangement::make(matches.inOrder(wish.items.sort),
                                                                wish.items.sort, wish.items),
                           .isComplete = isComplete,
                           .succession = nullptr};
        if (isComplete) find(listed, std::move(wish.sought));
        delivery.show(std::move(listed));
        if (!next) return delivery.fail(next.error().error());
        if (isComplete) return;
        restsUntil = Clock::now() + restPerWork * (Clock::now() - began);
    }
}

} // namespace

void ListingFeed::Desk::begin(std::uint64_t generation, Outbox::Wish wish, Work work) {
    wish_ = std::move(wish);
    generation_ = generation;
    outbox_ = std::make_shared<Outbox>(wish_);
    const Delivery delivery(outbox_, weak_from_this());
    try {
        worker_ = Worker("ombrel-feed", [delivery, work = std::move(work)](const std::stop_token& stop) {
            work(delivery, stop);
        });
    } catch (const std::system_error& failure) {
        delivery.fail(DirectoryError::from(failure.code().value()));
    }
}

void ListingFeed::Desk::start(Order order, const ItemWish& wish) {
    abandon();
    if (!order.replaced) shown_.reset();
    const auto generation = order.request.generation;
    auto sought = std::move(order.sought);
    begin(
        generation, {wish, std::move(sought)},
        [source = source_, order = std::move(order)](const Delivery& delivery, const std::stop_token& stop) {
            listWatched(source, order, delivery, stop);
        });
}

void ListingFeed::Desk::start(SearchOrder order, const ItemWish& wish) {
    stop();
    begin(order.request.generation, {wish, std::move(order.sought)},
          [source = searchSource_, request = std::move(order.request)](const Delivery& delivery,
                                                                       const std::stop_token& stop) {
              gather(source(request), request.generation, delivery, stop);
          });
}

void ListingFeed::Desk::abandon() {
    worker_ = Worker();
    if (!outbox_) return;
    if (auto left = outbox_->abandon().listed) Disposal::elsewhere(std::move(*left));
    outbox_.reset();
}

void ListingFeed::Desk::halt() {
    worker_ = Worker();
    if (!outbox_) return;
    if (auto ready = outbox_->abandon().listed) accept(std::move(*ready));
    outbox_.reset();
}

void ListingFeed::Desk::rearrange(ListedItems shown, const ItemWish& wish) {
    wish_.items = wish;
    if (outbox_) outbox_->setWish(wish_);
    if (shown_ && shown.arrangement.wish != wish) arrange(std::move(shown));
}

void ListingFeed::Desk::seek(ListedItems shown, std::shared_ptr<const SelectionMemory> sought) {
    wish_.sought = std::move(sought);
    if (outbox_) outbox_->setWish(wish_);
    if (shown_ && !isAsWished(wish_.items, shown.isComplete, shown.sought)) arrange(std::move(shown));
}

void ListingFeed::Desk::collect(const std::shared_ptr<Outbox>& outbox) {
    if (outbox != outbox_) return;
    auto contents = outbox->take();
    if (contents.listed) accept(std::move(*contents.listed));
    if (contents.failure && outbox == outbox_) consumer_.fail(*contents.failure);
}

bool ListingFeed::Desk::isAsWished(const ItemWish& wish, bool isComplete,
                                   const std::shared_ptr<const SelectionMemory>& sought) const {
    return wish == wish_.items && (!isComplete || !wish_.sought || sought == wish_.sought);
}

bool ListingFeed::Desk::isOutdated(const ListedItems& listed) const {
    if (!shown_ || shown_->generation != listed.generation)
        return listed.generation != generation_ || !outbox_;
    return listed.step < shown_->step ||
           (listed.step == shown_->step && isAsWished(shown_->wish, listed.isComplete, shown_->sought));
}

void ListingFeed::Desk::accept(ListedItems listed) {
    if (isOutdated(listed)) return Disposal::elsewhere(std::move(listed));
    if (!isAsWished(listed.arrangement.wish, listed.isComplete, listed.sought))
        return arrange(std::move(listed));
    // Each state of a listing says how it follows the preview; of each other they are mere continuations.
    const bool isContinued = shown_ && shown_->generation == listed.generation && shown_->step > previewStep;
    if (isContinued) listed.succession.reset();
    shown_ = State{listed.generation, listed.step, wish_.items, listed.sought};
    consumer_.show(std::move(listed));
}

void ListingFeed::Desk::arrange(ListedItems listed) {
    if (isArranging_) {
        const auto age = [](const ListedItems& items) { return std::pair(items.generation, items.step); };
        if (toArrange_ && age(*toArrange_) < age(listed)) std::swap(*toArrange_, listed);
        if (!toArrange_)
            toArrange_ = std::move(listed);
        else
            Disposal::elsewhere(std::move(listed));
        return;
    }
    isArranging_ = true;
    try {
        Worker("ombrel-arrange", [self = weak_from_this(), wish = wish_,
                                  listed = std::move(listed)](const std::stop_token&) mutable {
            auto& arrangement = listed.arrangement;
            if (arrangement.wish != wish.items)
                arrangement =
                    ItemArrangement::make(std::move(arrangement.all), arrangement.wish.sort, wish.items);
            if (listed.isComplete && listed.sought != wish.sought) find(listed, std::move(wish.sought));
            MainThread::post([self, listed = std::move(listed)]() mutable {
                if (const auto desk = self.lock()) desk->arranged(std::move(listed));
            });
        }).detach();
    } catch (const std::system_error&) {
        // Without a thread the order stays as it is; the next change of the wish tries again.
        isArranging_ = false;
    }
}

void ListingFeed::Desk::arranged(ListedItems listed) {
    isArranging_ = false;
    auto next = std::exchange(toArrange_, std::nullopt);
    accept(std::move(listed));
    if (next) accept(std::move(*next));
}

ListingFeed::ListingFeed(Source source, Consumer consumer, SearchSource searchSource)
    : desk_(std::make_shared<Desk>(std::move(source), std::move(searchSource), std::move(consumer))) {}

ListingFeed::~ListingFeed() = default;

void ListingFeed::start(Order order, const ItemWish& wish) {
    desk_->start(std::move(order), wish);
}

void ListingFeed::start(SearchOrder order, const ItemWish& wish) {
    desk_->start(std::move(order), wish);
}

void ListingFeed::stop() {
    desk_->stop();
}

void ListingFeed::halt() {
    desk_->halt();
}

void ListingFeed::rearrange(ListedItems shown, const ItemWish& wish) {
    desk_->rearrange(std::move(shown), wish);
}

void ListingFeed::seek(ListedItems shown, std::shared_ptr<const SelectionMemory> sought) {
    desk_->seek(std::move(shown), std::move(sought));
}

} // namespace ombrel
