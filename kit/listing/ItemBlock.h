#pragma once

#include "base/FileURL.h"
#include "listing/FileStatus.h"
#include "listing/TypeDatabase.h"

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace ombrel {

/// The numbers of one listed entry, 64 bytes.
struct ItemRecord {
    enum Flag : std::uint8_t {
        hidden = 1,
        isProtected = 2,
        directoryLike = 4,
        markedDirectory = 8, ///< its location carries the directory mark
        hasSize = 16,
        readDenied = 32,
    };

    std::int64_t size = 0;
    std::int64_t modifiedSeconds = 0;
    std::uint64_t inode = 0;
    std::int64_t bornSeconds = 0;
    std::uint32_t modifiedNanoseconds = 0;
    std::uint32_t bornNanoseconds = 0;
    std::uint32_t nameOffset = 0;
    std::uint32_t keyOffset = 0;
    TypeIndex type = 0;
    std::uint16_t nameLength = 0;
    std::uint16_t keyLength = 0;
    std::uint16_t errorNumber =
        0;                   ///< why the entry, or a link's target, could not be examined; 0 when it could
    std::uint16_t place = 0; ///< index into the block's places
    std::uint8_t kind = 0;   ///< FileKind::Case
    std::uint8_t target = 0; ///< SymlinkTarget::Case
    std::uint8_t flags = 0;
};
static_assert(sizeof(ItemRecord) == 64);

/// Up to `capacity` entries with everything that belongs to them: the unit in which a listing is read, kept
/// and freed. Those of a listed folder all lie in it; matches of a search lie in many. Immutable once shared.
struct ItemBlock {
    /// Two to the power of `slotBits`: a block's number and a slot fit one 32-bit ItemRef.
    static constexpr unsigned slotBits = 14;
    static constexpr std::uint32_t capacity = 1U << slotBits;

    /// Where entries lie: the folder, and the device of the entry itself, which for a mount point is another.
    struct Place {
        FileURL folder;
        std::uint64_t device = 0;
    };

    std::uint64_t generation = 0;
    std::vector<ItemRecord> records;
    std::vector<Place> places;     ///< at least one
    std::unique_ptr<char[]> names; ///< the names, one after another
    std::unique_ptr<char[]> keys;  ///< the names' sort keys, one after another

    [[nodiscard]] std::string_view name(const ItemRecord& record) const noexcept {
        return {names.get() + record.nameOffset, record.nameLength};
    }
    [[nodiscard]] std::string_view key(const ItemRecord& record) const noexcept {
        return {keys.get() + record.keyOffset, record.keyLength};
    }
};

/// An entry of a list by its block's number in the list (high bits) and its slot in the block (low
/// `slotBits`).
using ItemRef = std::uint32_t;

} // namespace ombrel
