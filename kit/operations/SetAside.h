#pragma once

#include "base/OwnedFd.h"
#include "listing/FileStatus.h"
#include "listing/POSIX.h"
#include "operations/StagedItem.h"

#include <expected>
#include <optional>
#include <string>
#include <string_view>

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
/// can be put back until then. Whatever happens, it is never lost: a record tells the next job what it was.
class SetAside {
public:
    /// Why an item was not set aside. `isOther` means that something else stands there than the caller knew.
    struct Failure {
        POSIXFailure cause;
        bool isOther = false;
    };
    using Made = std::expected<SetAside, Failure>;

    /// Puts `staged` in the place of the entry `name` of its folder, at once where the file system can
    /// exchange names; `existing` is what the caller knows of that entry. On success `staged` is released.
    [[nodiscard]] static Made replace(StagedItem& staged, const std::string& name, const FileStatus& existing,
                                      bool numbersLast);
    /// Takes the entry `name` of `folder` away, so that its name is free.
    [[nodiscard]] static Made takeAway(int folder, const std::string& name, const FileStatus& existing,
                                       bool numbersLast);

    SetAside(SetAside&&) noexcept = default;

    /// Gives it its name back, which must be free.
    [[nodiscard]] POSIX::Result<void> putBack();
    /// Removes it for good. What is left on failure is a staging item like any other.
    [[nodiscard]] std::optional<POSIXFailure> remove();
    /// Where it is.
    [[nodiscard]] const std::string& stagingName() const noexcept { return record_.stagingName; }

private:
    SetAside(int folder, SetAsideRecord record) : folder_(folder), record_(std::move(record)) {}
    [[nodiscard]] POSIX::Result<void> writeRecord();
    void forgetRecord();
    [[nodiscard]] POSIX::Place aside() const noexcept { return {folder_, record_.stagingName.c_str()}; }
    [[nodiscard]] POSIX::Place target() const noexcept { return {folder_, record_.targetName.c_str()}; }
    [[nodiscard]] bool isThere(bool numbersLast);
    void hold();

    int folder_;
    SetAsideRecord record_;
    std::string recordName_;
    OwnedFd lock_;
};

} // namespace ombrel
