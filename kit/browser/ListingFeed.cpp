#include "browser/ListingFeed.h"

#include "base/MainThread.h"
#include "base/Worker.h"
#include "browser/Disposal.h"

#include <cassert>
#include <chrono>
#include <mutex>
#include <system_error>
#include <utility>

namespace ombrel {

/// What a listing's worker and the main thread share.
class ListingFeed::Outbox {
public:
    explicit Outbox(const ItemWish& wish) : wish_(wish) {}

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

    [[nodiscard]] ItemWish wish() const {
        const std::scoped_lock lock(mutex_);
        return wish_;
    }
    void setWish(const ItemWish& wish) {
        const std::scoped_lock lock(mutex_);
        wish_ = wish;
    }

private:
    mutable std::mutex mutex_; // guards everything below
    ItemWish wish_;
    std::optional<ListedItems> waiting_;
    std::optional<DirectoryError> failure_;
    bool isAnnounced_ = false;
    bool isAbandoned_ = false;
};

/// The main thread's end. Workers know it weakly and only to hand it on in what they post.
class ListingFeed::Desk : public std::enable_shared_from_this<Desk> {
public:
    Desk(Source source, Consumer consumer) : source_(std::move(source)), consumer_(std::move(consumer)) {}
    ~Desk() { abandon(); }

    void start(Order order, const ItemWish& wish);
    void stop() {
        abandon();
        shown_.reset();
    }
    void rearrange(ListedItems shown, const ItemWish& wish);

private:
    struct State {
        std::uint64_t generation;
        std::uint64_t step;
        ItemWish wish;
    };

    void abandon();
    void collect(const std::shared_ptr<Outbox>& outbox);
    void accept(ListedItems listed);
    [[nodiscard]] bool isOutdated(const ListedItems& listed) const;
    void arrange(ListedItems listed);
    void arranged(ListedItems listed);

    Source source_;
    Consumer consumer_;
    ItemWish wish_;
    std::uint64_t generation_ = 0;
    std::shared_ptr<Outbox> outbox_;
    Worker worker_;
    std::optional<State> shown_;
    bool isArranging_ = false;
    std::optional<ListedItems> toArrange_; // waits until the arranging under way is done
};

namespace {

/// A watch that takes longer reports a change once it stands.
constexpr std::chrono::milliseconds longestArming(100);

/// The consumer of one listing's stream.
void consume(DirectoryProvider::Stream stream, const ListingFeed::Order& order,
             const std::function<ItemWish()>& wish, const std::function<void(ListedItems)>& deliver,
             const std::function<void(DirectoryError)>& fail, const std::stop_token& stop) {
    using Clock = std::chrono::steady_clock;
    constexpr int restPerWork = 4;
    Clock::time_point restsUntil = Clock::now(); // until then a newer state takes the place of a partial one
    std::uint64_t step = 0;
    for (;;) {
        auto next = stream.newest(stop);
        if (!next) {
            if (!next.error().wasCancelled()) fail(next.error().error());
            return;
        }
        if (!*next) return;
        DirectorySnapshot snapshot = std::move(**next);
        if (!snapshot.isComplete && (order.replaced || stream.waitUntil(restsUntil, stop))) continue;
        const auto began = Clock::now();

        ListedItems listed{.generation = snapshot.request.generation,
                           .step = ++step,
                           .arrangement =
                               ItemArrangement::make(snapshot.items(), snapshot.request.sort, wish()),
                           .isComplete = snapshot.isComplete,
                           .unreadableCount = snapshot.unreadableCount,
                           .succession = nullptr,
                           .remembered = nullptr};
        const FileItemList& all = listed.arrangement.all;
        if (order.replaced) listed.succession = std::make_shared<const ItemSuccession>(*order.replaced, all);
        if (listed.isComplete && order.remembered)
            listed.remembered = std::make_shared<const ItemSet>(order.remembered->find(all));
        deliver(std::move(listed));
        restsUntil = Clock::now() + restPerWork * (Clock::now() - began);
    }
}

} // namespace

void ListingFeed::Desk::start(Order order, const ItemWish& wish) {
    abandon();
    if (!order.replaced) shown_.reset();
    wish_ = wish;
    generation_ = order.request.generation;
    outbox_ = std::make_shared<Outbox>(wish);
    const auto wake = [outbox = outbox_, self = weak_from_this()] {
        MainThread::post([outbox, self] {
            if (const auto desk = self.lock()) desk->collect(outbox);
        });
    };
    try {
        worker_ = Worker("ombrel-feed", [wake, outbox = outbox_, source = source_,
                                         order = std::move(order)](const std::stop_token& stop) {
            order.arming.wait(longestArming, stop);
            consume(
                source(order.request), order, [&] { return outbox->wish(); },
                [&](ListedItems listed) {
                    if (outbox->put(std::move(listed))) wake();
                },
                [&](DirectoryError error) {
                    if (outbox->fail(error)) wake();
                },
                stop);
        });
    } catch (const std::system_error& failure) {
        if (outbox_->fail(DirectoryError::from(failure.code().value()))) wake();
    }
}

void ListingFeed::Desk::abandon() {
    worker_ = Worker();
    if (!outbox_) return;
    if (auto left = outbox_->abandon().listed) Disposal::elsewhere(std::move(*left));
    outbox_.reset();
}

void ListingFeed::Desk::rearrange(ListedItems shown, const ItemWish& wish) {
    wish_ = wish;
    if (outbox_) outbox_->setWish(wish);
    if (shown_ && shown.arrangement.wish != wish) arrange(std::move(shown));
}

void ListingFeed::Desk::collect(const std::shared_ptr<Outbox>& outbox) {
    if (outbox != outbox_) return;
    auto contents = outbox->take();
    if (contents.listed) accept(std::move(*contents.listed));
    if (contents.failure && outbox == outbox_) consumer_.fail(*contents.failure);
}

bool ListingFeed::Desk::isOutdated(const ListedItems& listed) const {
    if (!shown_ || shown_->generation != listed.generation)
        return listed.generation != generation_ || !outbox_;
    return listed.step < shown_->step || (listed.step == shown_->step && shown_->wish == wish_);
}

void ListingFeed::Desk::accept(ListedItems listed) {
    if (isOutdated(listed)) return Disposal::elsewhere(std::move(listed));
    if (listed.arrangement.wish != wish_) return arrange(std::move(listed));
    shown_ = State{listed.generation, listed.step, wish_};
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
            arrangement = ItemArrangement::make(std::move(arrangement.all), arrangement.wish.sort, wish);
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

ListingFeed::ListingFeed(Source source, Consumer consumer)
    : desk_(std::make_shared<Desk>(std::move(source), std::move(consumer))) {}

ListingFeed::~ListingFeed() = default;

void ListingFeed::start(Order order, const ItemWish& wish) {
    desk_->start(std::move(order), wish);
}

void ListingFeed::stop() {
    desk_->stop();
}

void ListingFeed::rearrange(ListedItems shown, const ItemWish& wish) {
    desk_->rearrange(std::move(shown), wish);
}

} // namespace ombrel
