#include "browser/ItemProperties.h"

#include "base/MainThread.h"

#include <QPointer>

#include <algorithm>
#include <iterator>
#include <ranges>
#include <system_error>
#include <utility>

namespace ombrel {
namespace {

/// Larger selections are not compared item by item.
constexpr std::size_t mostCompared = 100;

std::optional<FileURL> placeOf(const ItemProperties::Subject& subject) {
    if (const auto* url = std::get_if<FileURL>(&subject)) return *url;
    if (const auto* volume = std::get_if<VolumeInfo>(&subject)) return volume->url;
    const auto& selection = std::get<FileSelection>(subject);
    if (selection.count() != 1) return std::nullopt;
    std::optional<FileURL> one;
    selection.set().forEach([&](ItemRef ref) { one = selection.list().view(ref).url(); });
    return one;
}

std::vector<FileURL> sorted(const FileSelection& selection) {
    std::vector<FileURL> urls;
    selection.set().forEach([&](ItemRef ref) { urls.push_back(selection.list().view(ref).url()); });
    std::ranges::sort(urls);
    return urls;
}

} // namespace

/// What a worker has read.
struct ItemProperties::Found {
    std::size_t count = 0;
    std::vector<FileItem> previews;
    ItemValues facts;
    std::optional<FileURL> commonFolder;
    std::vector<FileURL> counted;
    std::int64_t folderCount = 0;
};

bool ItemProperties::areSame(const Subject& a, const Subject& b) {
    if (const auto one = placeOf(a), other = placeOf(b); one || other)
        return one == other && std::holds_alternative<VolumeInfo>(a) == std::holds_alternative<VolumeInfo>(b);
    const auto& one = std::get<FileSelection>(a);
    const auto& other = std::get<FileSelection>(b);
    if (one == other) return true;
    return one.count() == other.count() && one.count() <= mostCompared && sorted(one) == sorted(other);
}

ItemProperties::ItemProperties(Subject subject, QObject* parent)
    : QObject(parent), subject_(std::move(subject)) {
    connect(&contents_, &ContentsCount::changed, this, &ItemProperties::changed);
    if (volume()) {
        isRead_ = true;
        return;
    }
    if (const auto* selection = std::get_if<FileSelection>(&subject_)) count_ = selection->count();
    try {
        reader_ = Worker("ombrel-props", [self = QPointer(this),
                                          theSubject = subject_](const std::stop_token& stop) mutable {
            const auto* const selection = std::get_if<FileSelection>(&theSubject);
            const auto items =
                selection ? selection->items() : std::vector{itemAt(std::get<FileURL>(theSubject))};
            Found found{.count = items.size(),
                        .previews = {},
                        .facts = {},
                        .commonFolder = {},
                        .counted = {},
                        .folderCount = 0};
            std::ranges::copy(items | std::views::take(mostPreviews), std::back_inserter(found.previews));
            if (items.size() == 1) {
                found.facts = ItemValues::read(items.front());
                found.facts.dimensions = ItemValues::dimensionsOf(items.front());
                if (found.facts.isFolder && !found.facts.linkTarget) found.counted = {items.front().url()};
            } else {
                std::ranges::transform(items, std::back_inserter(found.counted), &FileItem::url);
                found.folderCount = std::ranges::count_if(items, [](const FileItem& item) {
                    return item.kind().which() == FileKind::Case::directory || item.isPackage();
                });
                found.commonFolder = items.front().folder();
                if (std::ranges::any_of(
                        items, [&](const FileItem& item) { return item.folder() != *found.commonFolder; }))
                    found.commonFolder.reset();
            }
            if (stop.stop_requested()) return;
            MainThread::post([self, found = std::move(found)]() mutable {
                if (self) self->take(std::move(found));
            });
        });
    } catch (const std::system_error&) {
        // The values stay empty; closing and opening tries again.
    }
}

void ItemProperties::take(Found found) {
    isRead_ = true;
    count_ = found.count;
    folderCount_ = found.folderCount;
    previews_ = std::move(found.previews);
    facts_ = std::move(found.facts);
    commonFolder_ = std::move(found.commonFolder);
    if (found.counted.empty())
        Q_EMIT changed();
    else
        contents_.start(std::move(found.counted));
}

} // namespace ombrel
