#pragma once

#include "base/FileURL.h"
#include "listing/FileReference.h"
#include "operations/FileOperationError.h"
#include "operations/TrashUnavailableReason.h"
#include "operations/TrashedItem.h"

#include <cstdint>
#include <expected>
#include <optional>
#include <span>
#include <stop_token>

namespace ombrel {

struct TrashFailure {
    FileOperationError error;
    std::optional<TrashUnavailableReason> reason = std::nullopt; ///< of `trashUnavailable`

    friend bool operator==(const TrashFailure&, const TrashFailure&) = default;
};

/// Whether the sizes of folders in the trash are wanted only where they are known, or counted where they are
/// not.
enum class TrashSizes : std::uint8_t { known, counted };

/// The platform's trash. Blocking; any thread but the main one, several at once.
class TrashBackend {
public:
    virtual ~TrashBackend() = default;

    /// Moves one item there and answers where it is now. Its permissions, times and attributes stay as they
    /// are.
    [[nodiscard]] virtual std::expected<FileURL, TrashFailure> moveToTrash(const FileReference& item) = 0;

    /// Everything in the trash of all connected volumes.
    [[nodiscard]] virtual TrashListing list(TrashSizes sizes, const std::stop_token& stop) = 0;

    /// What is known of the item at a location such as `moveToTrash` answers; nothing when that is no place
    /// in a trash or nothing is there.
    [[nodiscard]] virtual std::optional<TrashedItem> itemAt(const FileURL& location) = 0;

    /// Drops the records of items that have left these locations in the trash. One that is still there keeps
    /// its own; a location that is not in a trash is passed over.
    virtual void forget(std::span<const FileURL> locations) = 0;

    /// Drops what a trash keeps besides items and is of no use to anyone: stale records, the remains of an
    /// emptying that was interrupted.
    virtual void tidy(const std::stop_token& stop) = 0;
};

} // namespace ombrel
