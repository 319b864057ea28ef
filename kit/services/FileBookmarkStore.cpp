#include "services/FileBookmarkStore.h"

#include "base/Log.h"
#include "base/UserFolders.h"
#include "services/PropertyList.h"

#include <QString>

#include <algorithm>
#include <optional>
#include <string>

namespace ombrel {
namespace {

using Failure = BookmarkStore::Failure;
using Fault = BookmarkStore::Fault;
using PropertyList::Root;

constexpr const char* idKey = "id";
constexpr const char* bookmarkKey = "bookmark";
constexpr const char* displayNameKey = "displayName";
constexpr const char* addedAtKey = "addedAt";

std::string textOf(const QUuid& id) {
    return id.toString(QUuid::WithoutBraces).toUpper().toStdString();
}

std::optional<QUuid> uuidOf(const std::string& text) {
    constexpr std::size_t length = 36;
    const QUuid id = text.size() == length ? QUuid::fromString(QString::fromStdString(text)) : QUuid();
    return id.isNull() ? std::nullopt : std::optional(id);
}

std::optional<BookmarkRecord> recordOf(plist_t dictionary) {
    const auto text = PropertyList::stringAt(dictionary, idKey);
    const auto id = text ? uuidOf(*text) : std::nullopt;
    auto bookmark = PropertyList::dataAt(dictionary, bookmarkKey);
    auto displayName = PropertyList::stringAt(dictionary, displayNameKey);
    const auto addedAt = PropertyList::dateAt(dictionary, addedAtKey);
    if (!id || !bookmark || !displayName || !addedAt) return std::nullopt;
    return BookmarkRecord{*id, *std::move(bookmark), *std::move(displayName), *addedAt};
}

void write(const BookmarkRecord& record, plist_t dictionary) {
    PropertyList::setString(dictionary, idKey, textOf(record.id));
    PropertyList::setData(dictionary, bookmarkKey, record.bookmark);
    PropertyList::setString(dictionary, displayNameKey, record.displayName);
    PropertyList::setDate(dictionary, addedAtKey, record.addedAt);
}

const BookmarkRecord* find(const std::vector<BookmarkRecord>& records, const QUuid& id) {
    const auto found = std::ranges::find(records, id, &BookmarkRecord::id);
    return found == records.end() ? nullptr : &*found;
}

/// One dictionary of the file and the record that it holds.
struct Entry {
    Root dictionary;
    BookmarkRecord record;
};

/// What the file holds; nothing when it is not a list of records.
std::optional<std::vector<Entry>> entriesOf(std::string_view bytes) {
    const auto root = PropertyList::parse(bytes);
    if (!root || plist_get_node_type(root.get()) != PLIST_ARRAY) return std::nullopt;
    std::vector<Entry> entries;
    const auto count = plist_array_get_size(root.get());
    for (std::uint32_t i = 0; i < count; ++i) {
        const plist_t dictionary = plist_array_get_item(root.get(), i);
        auto record = recordOf(dictionary);
        if (!record) return std::nullopt;
        entries.push_back({Root(plist_copy(dictionary)), *std::move(record)});
    }
    return entries;
}

Entry entryOf(const BookmarkRecord& record) {
    Root dictionary(plist_new_dict());
    write(record, dictionary.get());
    return {std::move(dictionary), record};
}

std::expected<std::optional<std::vector<Entry>>, Failure> read(const StoreFile& file) {
    const auto bytes = file.read();
    if (!bytes) return std::unexpected(Failure{Fault::unreadable, bytes.error()});
    if (!*bytes) return std::nullopt;
    auto entries = entriesOf(**bytes);
    if (!entries) return std::unexpected(Failure{Fault::damaged});
    return entries;
}

/// Brings what differs between `before` and `wanted` to `entries`.
void merge(std::vector<Entry>& entries, const std::vector<BookmarkRecord>& before,
           const std::vector<BookmarkRecord>& wanted) {
    std::erase_if(entries, [&](const Entry& entry) {
        return find(before, entry.record.id) && !find(wanted, entry.record.id);
    });
    for (const auto& record : wanted) {
        const auto* known = find(before, record.id);
        const auto place =
            std::ranges::find(entries, record.id, [](const Entry& entry) { return entry.record.id; });
        if (place == entries.end()) {
            if (!known) entries.push_back(entryOf(record));
        } else if (!known || *known != record) {
            write(record, place->dictionary.get());
        }
    }
}

std::string bytesOf(const std::vector<Entry>& entries) {
    const Root array(plist_new_array());
    for (const auto& entry : entries)
        plist_array_append_item(array.get(), plist_copy(entry.dictionary.get()));
    return PropertyList::binary(array);
}

} // namespace

FileURL FileBookmarkStore::standardURL() {
    return UserFolders::ours(UserFolders::data()).appending("Locations.plist");
}

std::expected<std::vector<BookmarkRecord>, Failure> FileBookmarkStore::load() {
    known_.clear();
    const auto entries = read(file_);
    if (!entries) return std::unexpected(entries.error());
    if (*entries)
        for (const auto& entry : **entries)
            known_.push_back(entry.record);
    return known_;
}

std::expected<void, Failure> FileBookmarkStore::save(const std::vector<BookmarkRecord>& records) {
    const auto lock = file_.lock();
    if (!lock) return std::unexpected(Failure{Fault::unwritable, lock.error()});
    auto found = read(file_);
    if (!found && found.error().fault != Fault::damaged) return std::unexpected(found.error());
    if (!found) {
        const auto aside = file_.setAside();
        if (!aside) return std::unexpected(Failure{Fault::unwritable, aside.error()});
        Log::error(Log::Category::access, "damaged bookmark store kept as " + aside->path());
    }
    const bool isThere = found && *found;
    auto entries = isThere ? **std::move(found) : std::vector<Entry>();
    // Nobody removed records from a file that is gone as a whole.
    merge(entries, isThere ? known_ : std::vector<BookmarkRecord>(), records);
    const auto written = file_.replace(bytesOf(entries));
    if (!written) return std::unexpected(Failure{Fault::unwritable, written.error()});
    known_ = records;
    return {};
}

} // namespace ombrel
