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

SetAsideRecord recordOf(std::string stagingName, const std::string& name, const FileStatus& existing) {
    return {std::move(stagingName), name,          existing.type(),
            existing.identity,      existing.size, existing.modified};
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

POSIX::Result<void> SetAside::writeRecord() {
    recordName_ = StagingName::make();
    const POSIX::Place place{folder_, recordName_.c_str()};
    auto made = POSIX::makeSymlink(record_.text(), place);
    const auto hasNoLinks = [](int number) {
        return number == EPERM || number == EOPNOTSUPP || number == ENOSYS || number == ENAMETOOLONG;
    };
    if (made || !hasNoLinks(made.error().number)) return made;
    auto file = POSIX::open(place, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, S_IRUSR | S_IWUSR);
    if (!file) return std::unexpected(file.error());
    made = POSIX::writeAll(file->get(), record_.text());
    if (made) made = POSIX::flush(file->get());
    if (made) made = POSIX::close(std::move(*file));
    if (made) made = POSIX::flush(folder_);
    if (!made) (void)POSIX::unlink(place);
    return made;
}

void SetAside::forgetRecord() {
    (void)POSIX::unlink(POSIX::Place{folder_, recordName_.c_str()});
}

bool SetAside::isThere(bool numbersLast) {
    const auto status = POSIX::lstat(aside());
    return status && record_.describes(*status, numbersLast);
}

/// Other jobs leave it alone as long as this one is at it.
void SetAside::hold() {
    auto item = POSIX::open(aside(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY);
    if (!item) return;
    (void)POSIX::tryLockShared(item->get());
    lock_ = std::move(*item);
}

SetAside::Made SetAside::replace(StagedItem& staged, const std::string& name, const FileStatus& existing,
                                 bool numbersLast) {
    const int folder = staged.place().folder;
    SetAside item(folder, recordOf(staged.name(), name, existing));
    if (const auto written = item.writeRecord(); !written) return std::unexpected(Failure{written.error()});
    const auto exchanged = POSIX::exchange(staged.place(), item.target());
    if (exchanged) {
        if (!item.isThere(numbersLast)) {
            const auto undone = POSIX::exchange(staged.place(), item.target());
            item.forgetRecord();
            return std::unexpected(
                Failure{undone ? POSIXFailure{EEXIST} : undone.error(), undone.has_value()});
        }
        staged.release();
        item.hold();
        return item;
    }
    item.forgetRecord();
    if (!cannotExchange(exchanged.error().number)) return std::unexpected(Failure{exchanged.error()});
    auto away = takeAway(folder, name, existing, numbersLast);
    if (!away) return away;
    const auto placed = POSIX::renameExclusive(staged.place(), away->target());
    if (placed) {
        staged.release();
        return away;
    }
    if (const auto back = away->putBack(); !back) return std::unexpected(Failure{back.error()});
    return std::unexpected(Failure{placed.error(), placed.error().number == EEXIST});
}

SetAside::Made SetAside::takeAway(int folder, const std::string& name, const FileStatus& existing,
                                  bool numbersLast) {
    SetAside item(folder, recordOf(StagingName::make(), name, existing));
    if (const auto written = item.writeRecord(); !written) return std::unexpected(Failure{written.error()});
    const auto moved = POSIX::renameExclusive(item.target(), item.aside());
    if (!moved) {
        item.forgetRecord();
        return std::unexpected(Failure{moved.error()});
    }
    if (!item.isThere(numbersLast)) {
        const auto back = item.putBack();
        return std::unexpected(Failure{back ? POSIXFailure{EEXIST} : back.error(), back.has_value()});
    }
    item.hold();
    return item;
}

POSIX::Result<void> SetAside::putBack() {
    auto back = POSIX::renameExclusive(aside(), target());
    if (back) forgetRecord();
    return back;
}

std::optional<POSIXFailure> SetAside::remove() {
    // First, lest a crash half-way leave a record of what is not whole any more.
    forgetRecord();
    return removeStaging(aside());
}

} // namespace ombrel
