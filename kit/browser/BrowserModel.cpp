#include "browser/BrowserModel.h"

#include "base/Log.h"
#include "base/PathInput.h"
#include "base/Text.h"
#include "browser/AddressCrumbs.h"
#include "browser/Disposal.h"
#include "services/AppServices.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace ombrel {
namespace {

constexpr std::int64_t firstBatchSize = 200;
/// More than any folder holds: the whole listing arrives at once.
constexpr std::int64_t wholeListing = (std::int64_t{1} << 61) - 1;

/// How long a changing folder has to be quiet before it is read again.
constexpr DirectoryWatcher::Seconds quietTime(0.25);

/// Up to so many items are looked through for names without a worker.
constexpr std::size_t lookedThroughInNoTime = 2000;

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
    : BrowserModel(std::move(source), SearchProvider::results, parent) {}

BrowserModel::BrowserModel(ListingFeed::Source source, ListingFeed::SearchSource searchSource,
                           QObject* parent)
    : QObject(parent), feed_(std::move(source),
                             {.show = [this](ListedItems listed) { apply(std::move(listed)); },
                              .fail = [this](DirectoryError error) { fail(error); }},
                             std::move(searchSource)),
      live_([this] { refresh(); }), watcher_(quietTime, [this](auto event) { handleWatcher(event); }) {}

BrowserModel::~BrowserModel() {
    selection_ = {};
    dispose(std::move(listed_));
}

void BrowserModel::setServices(AppServices& services) {
    services_ = &services;
    connect(&services.volumes(), &VolumeMonitor::observed, this, &BrowserModel::handleVolumeEvent);
}

QString BrowserModel::title() const {
    const auto& folder = currentURL();
    return folder ? QString::fromStdString(AddressCrumbs::titleOf(*folder, services_)) : QString();
}

bool BrowserModel::canGoUp() const noexcept {
    return currentURL() && !currentURL()->isRoot();
}

bool BrowserModel::hasReachedSearchLimit() const noexcept {
    return showsSearch() && state_ == ListingState::Case::loaded &&
           allItems().size() >= SearchProvider::resultLimit;
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
    load(to, SelectionMemory::of(selecting));
}

void BrowserModel::goAlong(BrowserHistory::Direction direction, std::size_t steps) {
    if (steps == 0 || history_.places(direction, steps).size() < steps) return;
    const auto left = currentURL();
    auto entry = history_.go(direction, currentEntry());
    while (--steps > 0)
        entry = history_.go(direction, std::move(*entry));
    load(entry->location, BrowserHistory::selectionOnReturn(*entry, left));
}

void BrowserModel::goUp() {
    if (!canGoUp()) return;
    const FileURL left = *currentURL();
    go(Location::folder(left.parent().marked(FileURL::Mark::directory)), true, {left});
}

void BrowserModel::refresh() {
    if (services_) services_->clipboard().revalidateCut();
    switch (location_.which()) {
    case Location::Case::folder: return reload(*currentURL());
    case Location::Case::search:
        return load(location_, selection_.empty() ? pendingMemory() : SelectionMemory::of(selection_));
    case Location::Case::home:
        if (services_) services_->volumes().refreshCapacities();
        return;
    }
}

HistoryEntry BrowserModel::currentEntry() const {
    return {location_, SelectionMemory::of(selection_)};
}

// ---- Searches

void BrowserModel::search(const std::string& text) {
    if (!currentURL() || text.empty()) return;
    go(Location::search(*currentURL(), text), !showsSearch(), {});
}

void BrowserModel::stopSearch() {
    if (!isSearching()) return;
    feed_.halt();
    listed_.isComplete = true;
    state_ = ListingState::Case::loaded;
    bool restored = false;
    if (pending_) {
        const ItemSet found = pending_->memory->find(allItems());
        restored = applyPendingSelection(&found);
    }
    if (restored) Q_EMIT selectionChanged();
    Q_EMIT listingStateChanged();
}

void BrowserModel::leaveSearch() {
    if (!showsSearch()) return;
    const Location folder = Location::folder(*currentURL());
    if (history_.nearest(BrowserHistory::Direction::back) == folder) return goBack();
    go(folder, true, {});
}

// ---- Listings

void BrowserModel::load(const Location& to, std::shared_ptr<const SelectionMemory> selecting) {
    ++generation_;
    location_ = to;
    clear();
    watcher_.stop();
    pending_.reset();
    if (selecting && !selecting->empty()) pending_ = PendingSelection{.memory = std::move(selecting)};
    state_ = startListing();
    Q_EMIT locationChanged();
    Q_EMIT historyChanged();
    publishEmptiness();
}

/// Of the present location; answers with the state that it begins in.
ListingState BrowserModel::startListing() {
    switch (location_.which()) {
    case Location::Case::folder:
        watcher_.watch(*currentURL());
        live_.listingBegan();
        feed_.start({.request = {.url = *currentURL(),
                                 .generation = generation_,
                                 .sort = wish_.sort,
                                 .directoriesOnly = false,
                                 .firstBatchSize = firstBatchSize},
                     .sought = pendingMemory(),
                     .arming = watcher_.arming()},
                    wish_);
        return ListingState::Case::loading;
    case Location::Case::search:
        live_.forget();
        feed_.start({.request = {.folder = *currentURL(),
                                 .text = searchQuery(),
                                 .generation = generation_,
                                 .includesHidden = wish_.filter.showsHidden,
                                 .includesProtected = wish_.filter.showsProtected},
                     .sought = pendingMemory()},
                    wish_);
        return ListingState::Case::loading;
    case Location::Case::home:
        live_.forget();
        feed_.stop();
        if (services_) services_->volumes().refreshCapacities();
        return ListingState::Case::loaded;
    }
    std::unreachable();
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
                 .sought = pendingMemory(),
                 .arming = watcher_.arming(),
                 .replaced = listed_.arrangement.all},
                wish_);
}

void BrowserModel::handleWatcher(DirectoryWatcher::Event event) {
    switch (event) {
    case DirectoryWatcher::Event::contentsChanged: return live_.noteChange();
    case DirectoryWatcher::Event::directoryInvalidated: return abandon(ListingState::Case::invalidated);
    }
}

/// The place stays, what it listed goes.
void BrowserModel::abandon(ListingState state) {
    ++generation_;
    watcher_.stop();
    feed_.stop();
    live_.forget();
    clear();
    pending_.reset();
    state_ = state;
    publishEmptiness();
}

void BrowserModel::publishEmptiness() {
    Q_EMIT itemsChanged();
    Q_EMIT selectionChanged();
    Q_EMIT currentRowChanged();
    Q_EMIT listingStateChanged();
}

void BrowserModel::handleVolumeEvent(const VolumeMonitor::Event& event) {
    using Kind = VolumeMonitor::Event::Kind;
    if (isHome()) {
        if (services_) services_->volumes().refreshCapacities();
        return;
    }
    if (event.url.isRoot() || !currentURL()->standardized().isWithin(event.url.standardized())) return;
    const auto unavailable = ListingState::failed(DirectoryError::Case::volumeUnavailable);
    if (event.kind == Kind::unmounted) abandon(unavailable);
    // The pane has said that the folder will come back.
    if (event.kind == Kind::mounted && state_ == unavailable) refresh();
}

void BrowserModel::requestAccess() {
    if (!services_ || !currentURL()) return;
    services_->access().requestAccess(
        *currentURL(), "access.panel.message", nullptr,
        [self = QPointer(this), asked = location_](const AccessManager::Grant& grant) {
            if (self && grant && self->location_ == asked) self->refresh();
        });
}

void BrowserModel::clear() {
    selection_ = {};
    marks_ = {};
    if (auto dropped = std::exchange(held_, std::nullopt)) dispose(std::move(*dropped));
    dispose(std::exchange(listed_, {}));
}

void BrowserModel::apply(ListedItems listed) {
    // A search that was stopped does not go on because what it found is sorted anew.
    if (showsSearch() && state_ == ListingState::Case::loaded) listed.isComplete = true;
    if (isHeld_) {
        if (listed.isComplete && listed.generation == generation_) live_.listingEnded();
        if (auto outdated = std::exchange(held_, std::move(listed))) dispose(std::move(*outdated));
        return;
    }
    Q_EMIT itemsAboutToChange();
    // A rearrangement of what is shown says nothing new about the listing.
    const bool isNews = listed.generation != listed_.generation || listed.step != listed_.step;
    const auto succession = std::exchange(listed.succession, nullptr);
    const auto found = std::exchange(listed.found, nullptr);
    ListedItems before = std::exchange(listed_, std::move(listed));
    const auto stateBefore = state_;
    if (isNews) state_ = listed_.isComplete ? ListingState::Case::loaded : ListingState::Case::loading;

    const std::size_t countBefore = selection_.count();
    selection_ = FileSelection(items(), listed_.arrangement.members,
                               succession ? succession->successors(selection_.set()) : selection_.set());
    const auto currentBefore = row(Place::current);
    follow(before.arrangement.items, succession.get());
    const bool isSought = pending_ && listed_.isComplete && listed_.sought == pending_->memory;
    const bool restored = isSought && applyPendingSelection(found.get());
    dispose(std::move(before));

    if (succession) Q_EMIT itemsSucceeded(*succession);
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

std::shared_ptr<const SelectionMemory> BrowserModel::pendingMemory() const {
    return pending_ ? pending_->memory : nullptr;
}

void BrowserModel::selectWhenListed(const std::vector<FileURL>& urls, Insistence insistence) {
    std::vector<FileURL> here;
    std::ranges::copy_if(urls, std::back_inserter(here),
                         [&](const FileURL& url) { return location_.mayList(url); });
    if (here.empty()) return;
    pending_ = PendingSelection{
        .memory = SelectionMemory::of(std::move(here)), .insistence = insistence, .isForOneListing = false};
    if (listed_.isComplete && items().size() <= lookedThroughInNoTime) {
        const ItemSet found = pending_->memory->find(items());
        if (applyPendingSelection(&found)) {
            Q_EMIT selectionChanged();
            Q_EMIT currentRowChanged();
            if (row(Place::current)) Q_EMIT revealRequested(*row(Place::current));
        }
    }
    if (pending_) feed_.seek(listed_, pending_->memory);
}

bool BrowserModel::applyPendingSelection(const ItemSet* found) {
    PendingSelection& pending = *pending_;
    const bool isOverruled = pending.isOverruled && pending.insistence == Insistence::yields;
    FileSelection restored(items(), listed_.arrangement.members, found ? *found : ItemSet());
    const bool isMore = restored.count() > std::exchange(pending.foundCount, restored.count());
    if (isOverruled || pending.isForOneListing || restored.count() == pending.memory->count())
        pending_.reset();
    if (isOverruled || !isMore) return false;
    selection_ = std::move(restored);
    const std::size_t first = *selection_.firstRow();
    mark(Place::current) = mark(Place::anchor) = Mark{items().order()[first], first};
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
    const bool wasReload = !listed_.arrangement.all.empty() && listed_.generation != generation_;
    if (wasReload) {
        // Nobody acts on what cannot be seen; once it can be again, it is as it was.
        if (!selection_.empty())
            pending_ = PendingSelection{.memory = SelectionMemory::of(std::move(selection_))};
        feed_.stop();
        clear();
        publishEmptiness();
    } else {
        Q_EMIT listingStateChanged();
    }
    if (generation == generation_) live_.listingEnded();
}

void BrowserModel::setSort(const FileSort& sort) {
    if (sort == wish_.sort) return;
    changeWish({sort, wish_.filter});
    Q_EMIT sortChanged();
}

void BrowserModel::setFilter(const ItemFilter& filter) {
    if (filter == wish_.filter) return;
    const bool findsMore = (filter.showsHidden && !wish_.filter.showsHidden) ||
                           (filter.showsProtected && !wish_.filter.showsProtected);
    changeWish({wish_.sort, filter});
    Q_EMIT filterChanged();
    // What a search was not to find it has not kept.
    if (showsSearch() && findsMore) refresh();
}

void BrowserModel::setViewMode(ViewMode mode) {
    if (std::exchange(viewMode_, mode) != mode) Q_EMIT viewModeChanged();
}

void BrowserModel::setTextEditing(bool editing) {
    if (std::exchange(isTextEditing_, editing) != editing) Q_EMIT focusChanged();
}

void BrowserModel::setFileViewHasFocus(bool has) {
    if (std::exchange(fileViewHasFocus_, has) != has) Q_EMIT focusChanged();
}

void BrowserModel::setLastReport(std::optional<OperationReport> report) {
    lastReport_ = std::move(report);
    Q_EMIT lastReportChanged();
}

void BrowserModel::changeWish(const ItemWish& wish) {
    wish_ = wish;
    feed_.rearrange(listed_, wish);
}

// ---- Selection and rows

void BrowserModel::setSelection(FileSelection selection) {
    if (pending_) pending_->isOverruled = !selection.empty() || pending_->foundCount > 0;
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
