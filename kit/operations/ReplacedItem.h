#pragma once

#include "base/FileURL.h"
#include "listing/FileStatus.h"
#include "operations/ConfirmedSource.h"
#include "operations/FileOperationError.h"
#include "operations/SetAside.h"
#include "operations/StagedItem.h"
#include "operations/TransferDestination.h"

#include <expected>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace ombrel {

/// What has the name that an item is to get: it makes way for the item, and has its name again when that does
/// not take its place. One for each item of a transfer; blocking.
class ReplacedItem {
public:
    template <typename T>
    using Result = std::expected<T, FileOperationError>;
    /// Names of ours that could not be removed, by the place that they were made for.
    using LeftBehind = std::vector<std::pair<FileURL, std::string>>;

    /// Both must outlive it; `left` gets what stays.
    ReplacedItem(const TransferDestination& destination, LeftBehind& left)
        : destination_(&destination), left_(&left) {}
    ReplacedItem(const ReplacedItem&) = delete;
    ReplacedItem& operator=(const ReplacedItem&) = delete;

    /// From now on it is the entry `name` of the destination, of which `existing` is known; reports call it
    /// `url`. Nothing is done to it yet. What was replaced until now is given up.
    void begin(const std::string& name, const FileStatus& existing, FileURL url);
    /// Whether there is one: it was begun with, and neither given up, replaced for good nor handed over.
    [[nodiscard]] bool isBegun() const noexcept { return aside_.has_value(); }

    /// Gives `source`, an item of the same volume, its name, and removes it for good. Where the numbers of
    /// the source's file system last, an item that had the source's name at the last moment gets that back:
    /// `sourceChanged`. `destinationExists` when the entry is not the one that is known; EXDEV as it is when
    /// the item has to be copied; `sourceRemovalFailed` when it has been replaced and the source has its old
    /// name as well. On every other failure it has its name, or keeps the hidden one until it is given up.
    [[nodiscard]] Result<void> renameOver(const ConfirmedSource& source, bool sourceNumbersLast);
    /// Puts `staged` in its place, and stays aside until it is handed over. False when it went by itself: the
    /// name is free then. `destinationExists` when the entry is not the one that is known.
    [[nodiscard]] Result<bool> makeWayFor(StagedItem& staged);

    /// It stays after all.
    void giveUp();
    /// It is somebody else's business from now on.
    [[nodiscard]] std::optional<SetAside> handOver() { return std::exchange(aside_, std::nullopt); }

private:
    void end();

    const TransferDestination* destination_;
    LeftBehind* left_;
    std::string name_;
    std::optional<FileURL> url_;
    std::optional<SetAside> aside_;
};

} // namespace ombrel
