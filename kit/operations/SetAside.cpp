#include "operations/SetAside.h"

#include "listing/POSIXEntries.h"
#include "listing/POSIXLock.h"
#include "listing/POSIXRename.h"
#include "operations/StagingName.h"
#include "operations/StagingRemoval.h"

#include <fcntl.h>

#include <cerrno>
#include <charconv>
#include <concepts>
#include <utility>

namespace ombrel {
namespace {

constexpr std::string_view recordMark = "ombrel-set-aside-1";
constexpr std::int64_t longestRecord = 1024;

void append(std::string& text, auto number) {
    text.append(" ").append(std::to_string(number));
}

/// Takes the next number off the front.
template <std::integral Number>
bool take(std::string_view& text, Number& number) {
    if (!text.starts_with(' ')) return false;
    const auto [end, error] = std::from_chars(text.data() + 1, text.data() + text.size(), number);
    if (error != std::errc()) return false;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return true;
}

bool cannotExchange(int number) noexcept {
    return number == EINVAL || number == ENOSYS || number == EOPNOTSUPP;
}

/// Passing troubles do not leave a name behind.
template <typename Call>
POSIX::Result<void> twice(Call call) {
    auto done = call();
    if (!done) done = call();
    return done;
}

} // namespace

std::string SetAsideRecord::text() const {
    std::string text(recordMark);
    append(text, type);
    append(text, identity.device);
    append(text, identity.inode);
    append(text, size);
    append(text, modified.seconds);
    append(text, modified.nanoseconds);
    return text.append(" ").append(stagingName).append("/").append(targetName);
}

std::optional<SetAsideRecord> SetAsideRecord::parse(std::string_view text) {
    if (!text.starts_with(recordMark)) return std::nullopt;
    text.remove_prefix(recordMark.size());
    SetAsideRecord record;
    if (!take(text, record.type) || !take(text, record.identity.device) ||
        !take(text, record.identity.inode) || !take(text, record.size) ||
        !take(text, record.modified.seconds) || !take(text, record.modified.nanoseconds) ||
        !text.starts_with(' '))
        return std::nullopt;
    text.remove_prefix(1);
    const auto slash = text.find('/');
    if (slash == std::string_view::npos) return std::nullopt;
    record.stagingName = text.substr(0, slash);
    record.targetName = text.substr(slash + 1);
    const auto isName = [](const std::string& name) {
        return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos;
    };
    if (!StagingName::isOne(record.stagingName) || !isName(record.targetName)) return std::nullopt;
    return record;
}

std::optional<SetAsideRecord> SetAsideRecord::read(POSIX::Place place, const FileStatus& status) {
    if (status.isSymlink()) {
        const auto target = POSIX::readLink(place);
        return target ? parse(*target) : std::nullopt;
    }
    if (!status.isRegular() || status.size > longestRecord) return std::nullopt;
    const auto file = POSIX::open(place, O_RDONLY | O_NOFOLLOW | O_NONBLOCK);
    if (!file) return std::nullopt;
    const auto text = POSIX::readAll(file->get(), static_cast<std::size_t>(longestRecord));
    return text ? parse(*text) : std::nullopt;
}

bool SetAsideRecord::describes(const FileStatus& now, bool numbersLast) const noexcept {
    if (now.type() != type || (numbersLast && now.identity != identity)) return false;
    return now.isDirectory() || (now.size == size && now.modified == modified);
}

SetAside::SetAside(int folder, std::string name, const FileStatus& existing, bool numbersLast)
    : folder_(folder),
      record_{{}, std::move(name), existing.type(), existing.identity, existing.size, existing.modified},
      numbersLast_(numbersLast) {}

std::vector<std::string> SetAside::leftBehind() const {
    auto names = strays_;
    if (isAside_) names.push_back(record_.stagingName);
    if (!recordName_.empty()) names.push_back(recordName_);
    return names;
}

// ---- The record

POSIX::Result<void> SetAside::writeRecord(std::string stagingName) {
    record_.stagingName = std::move(stagingName);
    std::string name = StagingName::make();
    const POSIX::Place place{folder_, name.c_str()};
    auto made = POSIX::makeSymlink(record_.text(), place);
    const auto hasNoLinks = [](int number) {
        return number == EPERM || number == EOPNOTSUPP || number == ENOSYS || number == ENAMETOOLONG;
    };
    if (!made && hasNoLinks(made.error().number)) made = writeRecordFile(place);
    if (made) recordName_ = std::move(name);
    return made;
}

POSIX::Result<void> SetAside::writeRecordFile(POSIX::Place place) {
    auto file = POSIX::open(place, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, S_IRUSR | S_IWUSR);
    if (!file) return std::unexpected(file.error());
    auto made = POSIX::writeAll(file->get(), record_.text());
    if (made) made = POSIX::flush(file->get());
    if (made) made = POSIX::close(std::move(*file));
    if (made) made = POSIX::flush(folder_);
    if (!made && !twice([&] { return POSIX::unlink(place); })) strays_.emplace_back(place.name);
    return made;
}

void SetAside::forgetRecord() {
    if (recordName_.empty()) return;
    auto name = std::exchange(recordName_, {});
    const auto gone = twice([&] { return POSIX::unlink(POSIX::Place{folder_, name.c_str()}); });
    if (!gone && gone.error().number != ENOENT) strays_.push_back(std::move(name));
}

// ---- On its way out

/// Whether what is aside is what was to be set aside.
POSIX::Result<bool> SetAside::isKnown() {
    const auto status = POSIX::lstat(aside());
    if (!status) return std::unexpected(status.error());
    return record_.describes(*status, numbersLast_);
}

/// Other jobs leave it alone as long as this one is at it.
void SetAside::hold() {
    auto item = POSIX::open(aside(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY);
    if (!item) return;
    (void)POSIX::tryLockShared(item->get());
    lock_ = std::move(*item);
}

SetAside::Done SetAside::makeWayFor(StagedItem& staged) {
    if (const auto written = writeRecord(staged.name()); !written)
        return std::unexpected(Failure{written.error()});
    const auto exchanged = POSIX::exchange(staged.place(), target());
    if (exchanged) return settleExchange(staged);
    forgetRecord();
    if (!cannotExchange(exchanged.error().number)) return std::unexpected(Failure{exchanged.error()});
    if (auto away = takeAway(); !away) return away;
    const auto placed = POSIX::renameExclusive(staged.place(), target());
    const bool isPlaced = placed || POSIX::areOneItem(staged.place(), target());
    if (isPlaced) {
        if (!placed) strays_.push_back(staged.name());
        staged.release();
        return {};
    }
    (void)putBack();
    return std::unexpected(Failure{placed.error(), placed.error().number == EEXIST});
}

/// The two have traded places.
SetAside::Done SetAside::settleExchange(StagedItem& staged) {
    isAside_ = true;
    const auto known = isKnown();
    if (known && *known) {
        staged.release();
        hold();
        return {};
    }
    const auto undone = twice([&] { return POSIX::exchange(staged.place(), target()); });
    if (!undone) {
        // The new item is where it was to be, and what stood there is kept, whatever it is.
        isUnknown_ = true;
        staged.release();
        return {};
    }
    isAside_ = false;
    forgetRecord();
    return std::unexpected(known ? Failure{POSIXFailure{EEXIST}, true} : Failure{known.error()});
}

SetAside::Done SetAside::takeAway() {
    if (const auto written = writeRecord(StagingName::make()); !written)
        return std::unexpected(Failure{written.error()});
    const auto moved = POSIX::renameExclusive(target(), aside());
    if (!moved) {
        dropHalfDone();
        if (!isAside_) forgetRecord();
        return std::unexpected(Failure{moved.error()});
    }
    isAside_ = true;
    const auto known = isKnown();
    if (known && *known) {
        hold();
        return {};
    }
    (void)putBack();
    return std::unexpected(known ? Failure{POSIXFailure{EEXIST}, true} : Failure{known.error()});
}

/// A rename that was made up of several calls may have ended between two of them.
void SetAside::dropHalfDone() {
    const auto half = POSIX::lstat(aside());
    if (!half) return;
    const auto whole = POSIX::lstat(target());
    if (!whole && whole.error().number == ENOENT) {
        isAside_ = true;
        (void)putBack();
        return;
    }
    const bool isSecondName = whole && whole->identity == half->identity;
    const bool isPlaceholder = half->isRegular() && half->size == 0;
    POSIX::Result<void> dropped = std::unexpected(POSIXFailure{EEXIST});
    if (half->isDirectory())
        dropped = twice([&] { return POSIX::removeDirectory(aside()); });
    else if (isSecondName || isPlaceholder)
        dropped = twice([&] { return POSIX::unlink(aside()); });
    if (!dropped) strays_.push_back(record_.stagingName);
}

// ---- Back, or gone

POSIX::Result<void> SetAside::putBack() {
    if (!isAside_) return {};
    const auto back = twice([&] { return POSIX::renameExclusive(aside(), target()); });
    if (!back && !POSIX::areOneItem(aside(), target())) return back;
    if (!back) strays_.push_back(record_.stagingName);
    isAside_ = false;
    lock_ = OwnedFd();
    forgetRecord();
    return {};
}

POSIX::Result<StagedItem> SetAside::putBackFor(const std::optional<FileIdentity>& present) {
    if (!isAside_) return StagedItem::takenFrom(target(), present);
    const auto exchanged = POSIX::exchange(aside(), target());
    if (exchanged) {
        const auto now = POSIX::lstat(aside());
        if (!now || (present && now->identity != *present)) {
            const auto undone = twice([&] { return POSIX::exchange(aside(), target()); });
            return std::unexpected(!undone ? undone.error() : now ? POSIXFailure{EEXIST} : now.error());
        }
        isAside_ = false;
        lock_ = OwnedFd();
        forgetRecord();
        return StagedItem(folder_, record_.stagingName);
    }
    auto taken = StagedItem::takenFrom(target(), present);
    if (!taken) return taken;
    if (const auto back = putBack(); !back && POSIX::renameExclusive(taken->place(), target())) {
        taken->release();
        return std::unexpected(back.error());
    }
    return taken;
}

void SetAside::remove() {
    if (isUnknown_ || !isAside_) return;
    // First, lest a crash half-way leave a record of what is not whole any more.
    forgetRecord();
    if (removeStaging(aside())) return;
    isAside_ = false;
    lock_ = OwnedFd();
}

} // namespace ombrel
