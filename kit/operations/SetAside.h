#pragma once

#include "base/OwnedFd.h"
#include "listing/FileStatus.h"
#include "listing/POSIX.h"
#include "operations/StagedItem.h"

#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ombrel {

/// What a record says of an item that was moved out of the way of a new one.
///
/// The record is a hidden entry of its own beside the item, made before the item is touched: a symbolic link
/// with the facts as its target, which a crash leaves whole or not at all; where there are no links, a small
/// file that is flushed at once.
struct SetAsideRecord {
    std::string stagingName; ///< the name the item has while it is aside
    std::string targetName;  ///< the name it had
    std::uint32_t type = 0;  ///< an S_IF constant
    FileIdentity identity;
    std::int64_t size = 0;
    FileTime modified;

    [[nodiscard]] std::string text() const;
    [[nodiscard]] static std::optional<SetAsideRecord> parse(std::string_view text);
    /// The record kept under a staging name; nothing when that is something else.
    [[nodiscard]] static std::optional<SetAsideRecord> read(POSIX::Place place, const FileStatus& status);

    /// Whether an entry of today is the item that was set aside. Type, size and time must agree; identity
    /// where `numbersLast`.
    [[nodiscard]] bool describes(const FileStatus& now, bool numbersLast) const noexcept;
};

/// An existing item on its way out: it stands under a hidden name until the one that replaces it is safe, and
/// can be put back until then. Whatever happens, it is never lost: a record tells the next job what it was,
/// and `leftBehind` the caller. Move-only; used once.
class SetAside {
public:
    /// Why an item was not set aside. `isOther` means that something else stands there than the caller knew.
    struct Failure {
        POSIXFailure cause;
        bool isOther = false;
    };
    using Done = std::expected<void, Failure>;

    /// Of the entry `name` of `folder`, which must outlive this; `existing` is what the caller knows of it.
    /// Nothing is done yet.
    SetAside(int folder, std::string name, const FileStatus& existing, bool numbersLast);
    SetAside(SetAside&&) noexcept = default;

    /// Puts `staged`, an item of the same folder, in the place of the entry, at once where the file system
    /// can exchange names. On success `staged` is released. On failure the entry has its name, unless
    /// `isAside`.
    [[nodiscard]] Done makeWayFor(StagedItem& staged);
    /// Takes the entry away, so that its name is free. On failure the entry has its name, unless `isAside`.
    [[nodiscard]] Done takeAway();

    /// The entry stands under its hidden name.
    [[nodiscard]] bool isAside() const noexcept { return isAside_; }

    /// Gives the entry its name back, which must be free. Nothing to do unless it is aside.
    [[nodiscard]] POSIX::Result<void> putBack();
    /// The same when the item that replaced it has the name, known by its identity where there is one: that
    /// one is answered, under a hidden name. On failure it has its name; EEXIST when something else has.
    [[nodiscard]] POSIX::Result<StagedItem> putBackFor(const std::optional<FileIdentity>& present);
    /// Removes it for good. What is left on failure is a staging item like any other.
    void remove();

    /// The hidden names that are still there: of the entry while it is aside, and of records.
    [[nodiscard]] std::vector<std::string> leftBehind() const;

private:
    [[nodiscard]] POSIX::Result<void> writeRecord(std::string stagingName);
    [[nodiscard]] POSIX::Result<void> writeRecordFile(POSIX::Place place);
    void forgetRecord();
    void dropHalfDone();
    [[nodiscard]] Done settleExchange(StagedItem& staged);
    [[nodiscard]] POSIX::Place aside() const noexcept { return {folder_, record_.stagingName.c_str()}; }
    [[nodiscard]] POSIX::Place target() const noexcept { return {folder_, record_.targetName.c_str()}; }
    [[nodiscard]] POSIX::Result<bool> isKnown();
    void hold();

    int folder_;
    SetAsideRecord record_;
    bool numbersLast_;
    bool isAside_ = false;
    bool isUnknown_ = false;          // it may be something that nobody wanted replaced: never removed
    std::string recordName_;          // empty while there is no record
    std::vector<std::string> strays_; // other names of ours that could not be removed
    OwnedFd lock_;
};

} // namespace ombrel
