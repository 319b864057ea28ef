#include "browser/BrowserModel.h"

#include "base/FileName.h"
#include "base/Log.h"
#include "base/PathInput.h"
#include "base/Text.h"
#include "browser/Disposal.h"

#include <algorithm>
#include <utility>

namespace ombrel {
namespace {

constexpr std::int64_t firstBatchSize = 200;
/// More than any folder holds: the whole listing arrives at once.
constexpr std::int64_t wholeListing = (std::int64_t{1} << 61) - 1;

/// How long a changing folder has to be quiet before it is read again.
constexpr DirectoryWatcher::Seconds quietTime(0.25);

std::optional<std::size_t> rowOf(const FileItemList& items, ItemRef item) {
    const auto order = items.order();
    const auto found = std::ranges::find(order, item);
    if (found == order.end()) return std::nullopt;
    return static_cast<std::size_t>(found - order.begin());
}

void dispose(ListedItems listed) {
    constexpr std::size_t freedInNoTime = 2000;
    if (listed.arrangement.all.size() > freedInNoTime) Disposal::elsewhere(std::move(listed));
}

} // namespace

BrowserModel::BrowserModel(ListingFeed::Source source, QObject* parent)
    : QObject(parent),
      feed_(std::move(source), {.show = [this](ListedItems listed) { apply(std::move(listed)); },
                                .fail = [this](DirectoryError error) { fail(error); }}),
      live_([this] { refresh(); }), watcher_(quietTime, [this](auto event) { handleWatcher(event); }) {}

BrowserModel::~BrowserModel() {
    selection_ = {};
    dispose(std::move(listed_));
}

QString BrowserModel::title() const {
    const auto& folder = currentURL();
    if (!folder) return {};
    return QString::fromStdString(FileName::displayText(folder->isRoot() ? folder->path() : folder->name()));
}

bool BrowserModel::canGoUp() const noexcept {
    return currentURL() && !currentURL()->isRoot();
}

// ---- Navigation

void BrowserModel::navigate(const FileURL& to, bool recordHistory) {
    go(Location::folder(to), recordHistory, {});
}

void BrowserModel::navigateHome(bool recordHistory) {
    go(Location::home(), recordHistory, {});
}

std::optional<std::string> BrowserModel::navigateToTypedPath(std::string_view text) {
    const auto typed = PathInput::parse(text, currentURL(), PathInput::userHomeDirectory());
    if (typed) {
        navigate(*typed);
        return std::nullopt;
    }
    const auto key = PathInput::messageKey(typed.error());
    return key.empty() ? std::nullopt : std::optional(Texts::localized(key));
}

void BrowserModel::go(const Location& to, bool recordHistory, const std::vector<FileURL>& selecting) {
    if (recordHistory && to != location_) history_.record(currentEntry());
    load(to, to.folderURL() ? SelectionMemory::of(selecting, *to.folderURL()) : nullptr);
}

void BrowserModel::goAlong(BrowserHistory::Direction direction) {
    if (!history_.canGo(direction)) return;
    const auto left = currentURL();
    const auto entry = history_.go(direction, currentEntry());
    load(entry->location, BrowserHistory::selectionOnReturn(*entry, left));
}

void BrowserModel::goUp() {
    if (!canGoUp()) return;
    const FileURL left = *currentURL();
    go(Location::folder(left.parent().marked(FileURL::Mark::directory)), true, {left});
}

void BrowserModel::refresh() {
    if (const auto& folder = currentURL()) reload(*folder);
}

HistoryEntry BrowserModel::currentEntry() const {
    return {location_, SelectionMemory::of(selection_)};
}

// ---- Listings

void BrowserModel::load(const Location& to, std::shared_ptr<const SelectionMemory> selecting) {
    ++generation_;
    location_ = to;
    clear();
    watcher_.stop();
    hasPendingSelection_ = selecting && !selecting->empty();
    if (const auto& folder = to.folderURL()) {
        state_ = ListingState::Case::loading;
        watcher_.watch(*folder);
        live_.listingBegan();
        feed_.start({.request = {.url = *folder,
                                 .generation = generation_,
                                 .sort = wish_.sort,
                                 .directoriesOnly = false,
                                 .firstBatchSize = firstBatchSize},
                     .remembered = hasPendingSelection_ ? std::move(selecting) : nullptr,
                     .arming = watcher_.arming()},
                    wish_);
    } else {
        state_ = ListingState::Case::loaded;
        feed_.stop();
        live_.forget();
    }
    Q_EMIT locationChanged();
    Q_EMIT historyChanged();
    Q_EMIT itemsChanged();
    Q_EMIT selectionChanged();
    Q_EMIT currentRowChanged();
    Q_EMIT listingStateChanged();
}

void BrowserModel::reload(const FileURL& url) {
    ++generation_;
    watcher_.watch(url);
    live_.listingBegan();
    feed_.start({.request = {.url = url,
                             .generation = generation_,
                             .sort = wish_.sort,
                             .directoriesOnly = false,
                             .firstBatchSize = wholeListing},
                 .remembered = nullptr,
                 .arming = watcher_.arming(),
                 .replaced = listed_.arrangement.all},
                wish_);
}

void BrowserModel::handleWatcher(DirectoryWatcher::Event event) {
    switch (event) {
    case DirectoryWatcher::Event::contentsChanged: return live_.noteChange();
    case DirectoryWatcher::Event::directoryInvalidated: return invalidate();
    }
}

void BrowserModel::invalidate() {
    ++generation_;
    watcher_.stop();
    feed_.stop();
    live_.forget();
    clear();
    hasPendingSelection_ = false;
    state_ = ListingState::Case::invalidated;
    Q_EMIT itemsChanged();
    Q_EMIT selectionChanged();
    Q_EMIT currentRowChanged();
    Q_EMIT listingStateChanged();
}

void BrowserModel::clear() {
    selection_ = {};
    marks_ = {};
    if (auto dropped = std::exchange(held_, std::nullopt)) dispose(std::move(*dropped));
    dispose(std::exchange(listed_, {}));
}

void BrowserModel::apply(ListedItems listed) {
    if (isHeld_) {
        if (listed.isComplete && listed.generation == generation_) live_.listingEnded();
        if (auto outdated = std::exchange(held_, std::move(listed))) dispose(std::move(*outdated));
        return;
    }
    Q_EMIT itemsAboutToChange();
    // A rearrangement of what is shown says nothing new about the listing.
    const bool isNews = listed.generation != listed_.generation || listed.step != listed_.step;
    const auto succession = std::exchange(listed.succession, nullptr);
    const auto remembered = std::exchange(listed.remembered, nullptr);
    ListedItems before = std::exchange(listed_, std::move(listed));
    const auto stateBefore = state_;
    if (isNews) state_ = listed_.isComplete ? ListingState::Case::loaded : ListingState::Case::loading;

    const std::size_t countBefore = selection_.count();
    selection_ = FileSelection(items(), listed_.arrangement.members,
                               succession ? succession->successors(selection_.set()) : selection_.set());
    const auto currentBefore = row(Place::current);
    follow(before.arrangement.items, succession.get());
    const bool restored = isNews && listed_.isComplete && applyPendingSelection(remembered.get());
    dispose(std::move(before));

    Q_EMIT itemsChanged();
    if (succession || restored || selection_.count() != countBefore) Q_EMIT selectionChanged();
    if (row(Place::current) != currentBefore) Q_EMIT currentRowChanged();
    if (state_ != stateBefore) Q_EMIT listingStateChanged();
    if (restored && row(Place::current)) Q_EMIT revealRequested(*row(Place::current));
    // Last, because it may begin another listing.
    if (listed_.isComplete && listed_.generation == generation_) live_.listingEnded();
}

void BrowserModel::setHeld(bool held) {
    isHeld_ = held;
    if (!held)
        if (auto listed = std::exchange(held_, std::nullopt)) apply(std::move(*listed));
    live_.setHeld(held);
}

void BrowserModel::follow(const FileItemList& before, const ItemSuccession* succession) {
    const auto successor = [&](ItemRef item) -> std::optional<ItemRef> {
        const auto next = succession ? succession->successor(item) : item;
        if (!next || !listed_.arrangement.members->contains(*next)) return std::nullopt;
        return next;
    };
    for (auto& mark : marks_) {
        if (!mark) continue;
        auto next = successor(mark->item);
        for (std::size_t row = mark->row + 1; !next && row < before.size(); ++row)
            next = successor(before.order()[row]);
        for (std::size_t row = mark->row; !next && row-- > 0;)
            next = successor(before.order()[row]);
        const auto row = next ? rowOf(*next) : std::nullopt;
        mark = row ? std::optional(Mark{*next, *row}) : std::nullopt;
    }
}

bool BrowserModel::applyPendingSelection(const ItemSet* remembered) {
    if (!std::exchange(hasPendingSelection_, false) || !selection_.empty() || !remembered) return false;
    selection_ = FileSelection(items(), listed_.arrangement.members, *remembered);
    const auto first = selection_.firstRow();
    if (!first) return false;
    mark(Place::current) = mark(Place::anchor) = Mark{items().order()[*first], *first};
    return true;
}

void BrowserModel::fail(DirectoryError error) {
    state_ = ListingState::failed(error);
    const auto generation = generation_;
    const Text text = error.text();
    Log::error(Log::Category::directory,
               "listing of " + (currentURL() ? currentURL()->uri() : std::string()) +
                   " failed: " + std::string(text.key) +
                   (text.arguments.empty() ? "" : " (" + text.arguments.front() + ")"));
    Q_EMIT listingStateChanged();
    if (generation == generation_) live_.listingEnded();
}

void BrowserModel::setSort(const FileSort& sort) {
    if (sort == wish_.sort) return;
    changeWish({sort, wish_.filter});
    Q_EMIT sortChanged();
}

void BrowserModel::setFilter(const ItemFilter& filter) {
    if (filter == wish_.filter) return;
    changeWish({wish_.sort, filter});
    Q_EMIT filterChanged();
}

void BrowserModel::changeWish(const ItemWish& wish) {
    wish_ = wish;
    feed_.rearrange(listed_, wish);
}

// ---- Selection and rows

void BrowserModel::setSelection(FileSelection selection) {
    if (selection == selection_) return;
    selection_ = std::move(selection);
    Q_EMIT selectionChanged();
}

std::optional<std::size_t> BrowserModel::row(Place place) const noexcept {
    const auto& marked = marks_[std::to_underlying(place)];
    return marked ? std::optional(marked->row) : std::nullopt;
}

void BrowserModel::setRow(Place place, std::optional<std::size_t> row) {
    if (row == this->row(place)) return;
    mark(place) = row ? std::optional(Mark{items().order()[*row], *row}) : std::nullopt;
    if (place == Place::current) Q_EMIT currentRowChanged();
}

std::optional<std::size_t> BrowserModel::rowOf(ItemRef item) const noexcept {
    return ombrel::rowOf(items(), item);
}

} // namespace ombrel
