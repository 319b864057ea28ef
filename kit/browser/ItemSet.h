#pragma once

#include "listing/FileItemList.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace ombrel {

/// Some of the entries of one listing: a bit an entry, found by its `ItemRef`.
///
/// References stay the same while a listing grows, is sorted and is filtered, so a set needs no care through
/// any of that; a million entries take 150 KB. A plain value.
class ItemSet {
public:
    ItemSet() = default;
    /// Every item of the list.
    [[nodiscard]] static ItemSet of(const FileItemList& items);

    [[nodiscard]] std::size_t count() const noexcept { return count_; }
    [[nodiscard]] bool empty() const noexcept { return count_ == 0; }
    [[nodiscard]] bool contains(ItemRef ref) const noexcept {
        const std::size_t word = ref / bits;
        return word < words_.size() && (words_[word] >> (ref % bits) & 1) != 0;
    }

    void insert(ItemRef ref) { insert(std::span(&ref, 1)); }
    void insert(std::span<const ItemRef> refs);
    void erase(ItemRef ref) noexcept { erase(std::span(&ref, 1)); }
    void erase(std::span<const ItemRef> refs) noexcept;
    /// Each of `refs` goes in or out, as it was out or in.
    void flip(std::span<const ItemRef> refs);
    void clear() noexcept;

    /// Leaves what is also in `other`.
    ItemSet& operator&=(const ItemSet& other) noexcept;
    /// Takes out what is in `other`.
    ItemSet& operator-=(const ItemSet& other) noexcept;
    ItemSet& operator|=(const ItemSet& other);

    /// Calls `body(ItemRef)` for each member, in the order of reference, which is that of reading, not of
    /// rows.
    template <typename Body>
    void forEach(Body body) const {
        for (std::size_t word = 0; word < words_.size(); ++word)
            for (std::uint64_t left = words_[word]; left != 0; left &= left - 1)
                body(static_cast<ItemRef>(word * bits + static_cast<unsigned>(std::countr_zero(left))));
    }

    friend bool operator==(const ItemSet& a, const ItemSet& b) noexcept;

private:
    static constexpr std::size_t bits = 64;
    std::uint64_t& wordOf(ItemRef ref);
    void recount() noexcept;

    std::vector<std::uint64_t> words_;
    std::size_t count_ = 0;
};

} // namespace ombrel
