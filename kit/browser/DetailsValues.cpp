#include "browser/DetailsValues.h"

#include "base/MainThread.h"
#include "listing/FileTypeNames.h"
#include "listing/POSIX.h"

#include <algorithm>
#include <iterator>
#include <ranges>
#include <system_error>
#include <utility>

namespace ombrel {
namespace {

/// Larger selections are not compared item by item.
constexpr std::size_t mostCompared = 1000;

std::optional<std::int64_t> itemsIn(const FileURL& folder, bool showsHidden, const std::stop_token& stop) {
    auto stream = POSIX::openDirectory(folder);
    if (!stream) return std::nullopt;
    std::int64_t count = 0;
    while (!stop.stop_requested()) {
        const auto entry = POSIX::readEntry(*stream);
        if (!entry) return std::nullopt;
        if (!*entry) return count;
        if (showsHidden || !(*entry)->name.starts_with('.')) ++count;
    }
    return std::nullopt;
}

} // namespace

DetailsValues::Common DetailsValues::Common::of(const std::vector<FileItem>& items,
                                                const std::stop_token& stop) {
    if (items.empty()) return {};
    Common common{.type = FileTypeNames::name(items.front()),
                  .folder = items.front().folder(),
                  .firstModified = {},
                  .lastModified = {}};
    for (const FileItem& item : items) {
        if (stop.stop_requested()) break;
        if (!common.type.empty() && FileTypeNames::name(item) != common.type) common.type.clear();
        if (common.folder && item.folder() != *common.folder) common.folder.reset();
        const auto modified = item.modificationDate();
        if (!modified.hasValue()) continue;
        common.firstModified = std::min(common.firstModified.value_or(modified.value()), modified.value());
        common.lastModified = std::max(common.lastModified.value_or(modified.value()), modified.value());
    }
    return common;
}

/// What a worker adds to the content.
struct DetailsValues::Found {
    std::vector<FileItem> previews;
    std::optional<ItemValues> facts;
    std::optional<std::int64_t> items;
    std::vector<FileURL> counted; ///< of several items, what their size is to be counted of
    Common common;
};

DetailsValues::DetailsValues(std::chrono::milliseconds quiet, QObject* parent) : QObject(parent) {
    timer_.setSingleShot(true);
    timer_.setInterval(quiet);
    connect(&timer_, &QTimer::timeout, this, &DetailsValues::load);
    connect(&contents_, &ContentsCount::changed, this, &DetailsValues::takeContents);
}

void DetailsValues::follow(BrowserModel& pane) {
    if (pane_) pane_->disconnect(this);
    pane_ = &pane;
    connect(&pane, &BrowserModel::selectionChanged, this, &DetailsValues::wait);
    connect(&pane, &BrowserModel::locationChanged, this, &DetailsValues::wait);
    connect(&pane, &BrowserModel::itemsChanged, this, &DetailsValues::wait);
    connect(&pane, &BrowserModel::listingStateChanged, this, &DetailsValues::wait);
    load();
}

void DetailsValues::setActive(bool active) {
    if (std::exchange(isActive_, active) == active) return;
    if (active) return load();
    timer_.stop();
    ++ticket_;
    isReading_ = false;
    reader_ = Worker();
    contents_.stop();
    shown_.clear();
}

bool DetailsValues::isSettled() const {
    return !timer_.isActive() && !isReading_ && !contents_.isCounting();
}

void DetailsValues::wait() {
    if (isActive_) timer_.start();
}

void DetailsValues::load() {
    if (!isActive_ || !pane_) return;
    timer_.stop();
    const FileSelection& selection = pane_->selection();
    auto selected = selection.count() <= mostCompared ? selection.items() : std::vector<FileItem>();
    // A folder in which other items come and go is read anew all the time.
    const bool isShown = !selected.empty() && std::ranges::equal(selected, shown_, areAlike);
    shown_ = std::move(selected); // or they would keep the listing before in memory
    if (isShown) return;
    ++ticket_;
    contents_.stop();
    reader_ = Worker();
    const std::size_t count = selection.empty() ? (pane_->currentURL() ? 1 : 0) : selection.count();
    const bool isOfFolder = selection.empty();
    // The pane is counting its folder already.
    const bool isCountedHere = isOfFolder && !pane_->showsSearch();
    std::optional<std::int64_t> counted;
    if (isCountedHere && pane_->listingState() == ListingState::Case::loaded)
        counted = static_cast<std::int64_t>(pane_->items().size());
    isReading_ = count > 0;
    // What the listing knows is there at once; for the folder itself, what was there stays until it is read.
    if (count == 1 && !isOfFolder) {
        content_ = {.count = 1, .previews = shown_, .facts = {}, .items = {}, .totalSize = {}, .common = {}};
        content_.facts = ItemValues::known(content_.previews.front());
        Q_EMIT changed();
    } else if (count == 0) {
        content_ = {};
        Q_EMIT changed();
        return;
    }
    read(isCountedHere, counted);
}

void DetailsValues::read(bool isCountedHere, std::optional<std::int64_t> counted) {
    const FileSelection& selection = pane_->selection();
    // Nothing selected is the folder itself.
    const auto folder = selection.empty() ? pane_->currentURL() : std::nullopt;
    auto body = [self = QPointer(this), ticket = ticket_, selection = FileSelection(selection), folder,
                 isCountedHere, counted,
                 showsHidden = pane_->filter().showsHidden](const std::stop_token& stop) mutable {
        Found found;
        const auto items = folder ? std::vector{itemAt(*folder)} : selection.items();
        selection = {};
        std::ranges::copy(items | std::views::take(mostPreviews), std::back_inserter(found.previews));
        if (items.size() > 1) {
            std::ranges::transform(items, std::back_inserter(found.counted), &FileItem::url);
            found.common = Common::of(items, stop);
        } else {
            const FileItem& one = items.front();
            found.facts = ItemValues::read(one);
            // The root is an item of no folder.
            if (folder) found.facts->url = *folder;
            found.facts->dimensions = ItemValues::dimensionsOf(one);
            if (isCountedHere)
                found.items = counted;
            else if (found.facts->isFolder)
                found.items = itemsIn(one.url(), showsHidden, stop);
        }
        if (stop.stop_requested()) return;
        MainThread::post([self, ticket, found = std::move(found)]() mutable {
            if (self) self->take(ticket, std::move(found));
        });
    };
    try {
        reader_ = Worker("ombrel-details", std::move(body));
    } catch (const std::system_error&) {
        // What the listing told has to do.
        isReading_ = false;
    }
}

void DetailsValues::take(std::uint64_t ticket, Found found) {
    if (ticket != ticket_) return;
    isReading_ = false;
    content_ = {.count = found.counted.empty() ? 1 : found.counted.size(),
                .previews = std::move(found.previews),
                .facts = std::move(found.facts).value_or(ItemValues{}),
                .items = found.items,
                .totalSize = {},
                .common = std::move(found.common)};
    if (found.counted.empty())
        Q_EMIT changed();
    else
        contents_.start(std::move(found.counted));
}

void DetailsValues::takeContents() {
    content_.totalSize = contents_.contents().bytes;
    content_.isTotalKnown = contents_.contents().isComplete;
    Q_EMIT changed();
}

} // namespace ombrel
