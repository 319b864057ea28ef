#include "operations/TrashFolder.h"

#include "base/FileName.h"
#include "listing/EntryReader.h"
#include "listing/POSIXEntries.h"
#include "operations/ItemNames.h"
#include "operations/PermanentDeletion.h"
#include "operations/Relocation.h"
#include "operations/TrashSizeCache.h"

#include <fcntl.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <random>
#include <utility>
#include <vector>

namespace ombrel {
namespace {

using Error = FileOperationError;
using Reason = TrashUnavailableReason;

constexpr std::uint32_t privateMode = 0700;
constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_NONBLOCK;
constexpr std::size_t largestRecord = std::size_t{1} << 16;

std::unexpected<TrashFailure> unavailable(Reason reason) {
    return std::unexpected(TrashFailure{Error::Case::trashUnavailable, reason});
}

/// What a failure to open or make a trash folder says about having one.
std::unexpected<TrashFailure> failed(POSIXFailure failure) {
    switch (failure.number) {
    case EROFS: return unavailable(Reason::readOnly);
    case EACCES:
    case EPERM: return unavailable(Reason::noPermission);
    case ENOTDIR:
    case ELOOP: return unavailable(Reason::unsafe);
    case EOPNOTSUPP:
    case ENOSYS:
    case EINVAL: return unavailable(Reason::notSupported);
    default: return std::unexpected(TrashFailure{Error::from(failure)});
    }
}

/// Opens a folder, making it first where that is asked for.
POSIX::Result<OwnedFd> openFolder(POSIX::Place place, int links, TrashFolder::Access access) {
    auto folder = POSIX::open(place, folderFlags | links);
    if (folder || folder.error().number != ENOENT || access == TrashFolder::Access::existing) return folder;
    const auto made = POSIX::makeDirectory(place, privateMode);
    if (!made && made.error().number != EEXIST) return std::unexpected(made.error());
    return POSIX::open(place, folderFlags | links);
}

/// The same with all the folders on the way.
POSIX::Result<OwnedFd> openPath(const FileURL& url, TrashFolder::Access access) {
    auto folder = POSIX::open(url, folderFlags);
    if (folder || folder.error().number != ENOENT || access == TrashFolder::Access::existing || url.isRoot())
        return folder;
    auto above = openPath(url.parent(), access);
    if (!above) return above;
    const std::string name(url.name());
    return openFolder(POSIX::Place{above->get(), name.c_str()}, 0, access);
}

/// The longest prefix of at most `limit` bytes that does not cut a character of valid UTF-8 in two.
std::string shortened(std::string_view name, std::size_t limit) {
    if (name.size() <= limit) return std::string(name);
    auto end = limit;
    while (end > limit - 4 && (static_cast<unsigned char>(name[end]) & 0xC0U) == 0x80U)
        --end;
    return std::string(name.substr(0, end));
}

/// The names to try for an item, one after another; none is longer than `limit`.
std::string nameToTry(std::string_view name, int attempt, std::size_t limit) {
    constexpr int lastNumber =
        100; // from there on names are drawn, lest thousands of equal names be tried in turn
    constexpr std::size_t room = 12;
    if (attempt == 1) return shortened(name, limit);
    const std::string base = shortened(name, limit - room);
    if (attempt <= lastNumber) return ItemNames::numbered(base, attempt, KeepExtension::yes);
    std::array<char, 8> digits{};
    const auto end =
        std::to_chars(digits.data(), digits.data() + digits.size(), std::random_device{}(), 16).ptr;
    return base + "." + std::string(digits.data(), end);
}

std::string recordName(std::string_view name) {
    return std::string(name).append(TrashInfo::extension);
}

} // namespace

TrashFolder::Opened TrashFolder::home(const FileURL& root, Access access) {
    auto folder = openPath(root, access);
    if (!folder) return failed(folder.error());
    auto opened = open(std::move(*folder), root, root.parent(), access);
    if (opened) opened->isHome_ = true;
    return opened;
}

TrashFolder::Opened TrashFolder::shared(const FileURL& top, uid_t user, Access access) {
    const FileURL common = top.appending(".Trash");
    const auto commonFolder = POSIX::open(common, O_PATH | O_DIRECTORY | O_NOFOLLOW);
    if (!commonFolder) return failed(commonFolder.error());
    const auto status = POSIX::status(commonFolder->get());
    if (!status) return failed(status.error());
    if (!(status->mode & S_ISVTX)) return unavailable(Reason::unsafe);
    const std::string name = std::to_string(user);
    auto folder = openFolder(POSIX::Place{commonFolder->get(), name.c_str()}, O_NOFOLLOW, access);
    if (!folder) return failed(folder.error());
    const auto owner = POSIX::status(folder->get());
    if (!owner) return failed(owner.error());
    if (owner->owner != user) return unavailable(Reason::unsafe);
    return open(std::move(*folder), common.appending(name, FileURL::Mark::directory), top, access);
}

TrashFolder::Opened TrashFolder::own(const FileURL& top, uid_t user, bool holdsOwners, Access access) {
    const std::string name = ".Trash-" + std::to_string(user);
    const auto topFolder = POSIX::open(top, O_PATH | O_DIRECTORY);
    if (!topFolder) return failed(topFolder.error());
    auto folder = openFolder(POSIX::Place{topFolder->get(), name.c_str()}, O_NOFOLLOW, access);
    if (!folder) return failed(folder.error());
    const auto status = POSIX::status(folder->get());
    if (!status) return failed(status.error());
    if (holdsOwners && status->owner != user) return unavailable(Reason::unsafe);
    return open(std::move(*folder), top.appending(name, FileURL::Mark::directory), top, access);
}

TrashFolder::Opened TrashFolder::open(OwnedFd root, FileURL url, FileURL top, Access access) {
    TrashFolder trash;
    const auto status = POSIX::status(root.get());
    if (!status) return failed(status.error());
    auto files = openFolder(POSIX::Place{root.get(), "files"}, O_NOFOLLOW, access);
    if (!files) return failed(files.error());
    auto info = openFolder(POSIX::Place{root.get(), "info"}, O_NOFOLLOW, access);
    if (!info) return failed(info.error());
    trash.url_ = std::move(url);
    trash.top_ = std::move(top);
    trash.identity_ = status->identity;
    trash.root_ = std::move(root);
    trash.files_ = std::move(*files);
    trash.info_ = std::move(*info);
    return trash;
}

std::optional<TrashFolder> TrashFolder::holding(const FileURL& location, const FileURL& homeRoot) {
    constexpr std::string_view ownPrefix = ".Trash-";
    const auto numberIn = [](std::string_view text) -> std::optional<uid_t> {
        uid_t number = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        if (text.empty() || error != std::errc() || end != text.data() + text.size()) return std::nullopt;
        return number;
    };
    const FileURL files = location.parent(), root = files.parent();
    if (location.name() == ".." || files.name() != "files") return std::nullopt;
    const auto found = [](Opened opened) -> std::optional<TrashFolder> {
        if (!opened) return std::nullopt;
        return std::move(*opened);
    };
    const auto opened = POSIX::statFollowing(root), home = POSIX::statFollowing(homeRoot);
    if (opened && home && opened->identity == home->identity)
        return found(TrashFolder::home(root, Access::existing));
    if (root.name().starts_with(ownPrefix)) {
        const auto user = numberIn(root.name().substr(ownPrefix.size()));
        return user ? found(own(root.parent(), *user, false, Access::existing)) : std::nullopt;
    }
    const auto user = root.parent().name() == ".Trash" ? numberIn(root.name()) : std::nullopt;
    return user ? found(shared(root.parent().parent(), *user, Access::existing)) : std::nullopt;
}

FileURL TrashFolder::locationOf(std::string_view name) const {
    return url_.appending("files").appending(name);
}

std::string TrashFolder::recordedPath(const FileURL& original) const {
    if (isHome_ || !original.isWithin(top_) || original == top_) return original.path();
    return std::string(original.pathBelow(top_));
}

POSIX::Result<std::string> TrashFolder::take(const ConfirmedSource& source, const FileURL& original,
                                             std::int64_t now) const {
    constexpr int lastAttempt = 10000;
    constexpr std::size_t usualLimit = 255 - TrashInfo::extension.size(), smallLimit = 100;
    const std::string text = TrashInfo{recordedPath(original), now}.text();
    auto limit = usualLimit;
    for (int attempt = 1; attempt <= lastAttempt; ++attempt) {
        const std::string name = nameToTry(source.name(), attempt, limit), recordedAs = recordName(name);
        const POSIX::Place record{info_.get(), recordedAs.c_str()};
        auto file = POSIX::open(record, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, 0600);
        if (!file && file.error().number == EEXIST) continue;
        if (!file && file.error().number == ENAMETOOLONG && limit != smallLimit) {
            limit = smallLimit; // some encrypting file systems have shorter names
            --attempt;
            continue;
        }
        if (!file) return std::unexpected(file.error());
        auto done = POSIX::writeAll(file->get(), text);
        if (done) done = POSIX::close(std::move(*file));
        if (done) done = relocate(source.place(), source.status(), POSIX::Place{files_.get(), name.c_str()});
        if (done) return name;
        (void)POSIX::unlink(record);
        const int number = done.error().number;
        if (number != EEXIST && number != ENOTEMPTY) return std::unexpected(done.error());
    }
    return std::unexpected(POSIXFailure{EEXIST});
}

std::optional<TrashFolder::Record> TrashFolder::record(const std::string& name) const {
    const std::string recordedAs = recordName(name);
    const auto file =
        POSIX::open(POSIX::Place{info_.get(), recordedAs.c_str()}, O_RDONLY | O_NOFOLLOW | O_NONBLOCK);
    if (!file) return std::nullopt;
    const auto status = POSIX::status(file->get());
    if (!status || !status->isRegular()) return std::nullopt;
    const auto text = POSIX::readAll(file->get(), largestRecord);
    return Record{text ? TrashInfo::parse(*text) : std::nullopt, status->modified.seconds};
}

TrashedItem TrashFolder::described(const std::string& name, const FileStatus& status,
                                   const std::optional<Record>& record) const {
    const auto mark = status.isDirectory() ? FileURL::Mark::directory : FileURL::Mark::none;
    TrashedItem item{locationOf(name).marked(mark), std::nullopt, std::nullopt, status, std::nullopt};
    if (status.isRegular()) item.size = status.size;
    if (!record || !record->info) return item;
    const auto& path = record->info->path;
    const auto original = FileURL::fromPath(path.front() == '/' ? path : top_.path() + "/" + path, mark);
    if (original) item.original = *original;
    item.deletedAt = record->info->deletedAt;
    return item;
}

std::optional<TrashedItem> TrashFolder::item(const std::string& name) const {
    const auto status = POSIX::lstat(POSIX::Place{files_.get(), name.c_str()});
    if (!status) return std::nullopt;
    return described(name, *status, record(name));
}

POSIX::Result<void> TrashFolder::list(TrashListing& listing, TrashSizes sizes,
                                      const std::stop_token& stop) const {
    std::vector<std::string> names, recordNames;
    for (const auto& [folder, found] :
         {std::pair(files_.get(), &names), std::pair(info_.get(), &recordNames)}) {
        if (auto rewound = POSIX::rewind(folder); !rewound) return rewound;
        EntryReader reader;
        reader.begin(folder);
        for (;;) {
            const auto entry = reader.next();
            if (!entry) return std::unexpected(entry.error());
            if (!*entry) break;
            found->emplace_back((*entry)->name);
        }
        std::ranges::sort(*found);
    }
    auto cache = TrashSizeCache::load(root_.get());
    for (const auto& name : names) {
        if (stop.stop_requested()) return {};
        const POSIX::Place place{files_.get(), name.c_str()};
        const auto status = POSIX::lstat(place);
        if (!status) continue;
        const auto kept = record(name);
        auto item = described(name, *status, kept);
        if (status->isDirectory() && kept) {
            item.size = cache.find(name, kept->modified);
            if (!item.size && sizes == TrashSizes::counted && (item.size = roomTakenBy(place, stop)))
                cache.set(name, kept->modified, *item.size);
        }
        listing.items.push_back(std::move(item));
    }
    if (sizes == TrashSizes::counted) {
        cache.keepOnly([&](const std::string& name) { return std::ranges::binary_search(names, name); });
        cache.save(root_.get());
    }
    for (const auto& name : recordNames)
        if (name.ends_with(TrashInfo::extension) &&
            !std::ranges::binary_search(names, name.substr(0, name.size() - TrashInfo::extension.size())))
            listing.staleRecords.push_back(url_.appending("info").appending(name));
    return {};
}

void TrashFolder::forget(const std::string& name) const {
    const std::string recordedAs = recordName(name);
    const auto left = POSIX::lstat(POSIX::Place{files_.get(), name.c_str()});
    if (!left && left.error().number == ENOENT)
        (void)POSIX::unlink(POSIX::Place{info_.get(), recordedAs.c_str()});
}

void TrashFolder::tidy(std::int64_t now, const std::stop_token& stop) const {
    // A record without an item may be that of a program which is about to move the item in.
    constexpr std::int64_t ageOfStaleRecords = 60;
    TrashListing listing;
    if (!list(listing, TrashSizes::known, stop)) return;
    for (const auto& stale : listing.staleRecords) {
        const std::string name(stale.name().substr(0, stale.name().size() - TrashInfo::extension.size()));
        const auto kept = record(name);
        if (kept && now - kept->modified >= ageOfStaleRecords) forget(name);
    }
    auto cache = TrashSizeCache::load(root_.get());
    cache.keepOnly([&](const std::string& name) {
        return std::ranges::any_of(listing.items,
                                   [&](const auto& item) { return item.location.name() == name; });
    });
    cache.save(root_.get());
    const FileURL expunged = url_.appending("expunged");
    auto stream = POSIX::openDirectory(POSIX::Place{root_.get(), "expunged"}, POSIX::Links::refuse);
    if (!stream) return;
    std::vector<FileReference> remains;
    for (auto entry = POSIX::readEntry(*stream); entry && *entry; entry = POSIX::readEntry(*stream))
        remains.push_back({expunged.appending((*entry)->name), std::nullopt});
    (void)deletePermanently(remains, {}, stop);
}

} // namespace ombrel
