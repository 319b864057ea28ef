#include "browser/ItemSet.h"

#include <algorithm>

namespace ombrel {

ItemSet ItemSet::of(const FileItemList& items) {
    ItemSet set;
    set.words_.resize(items.blocks()->size() * ItemBlock::capacity / bits);
    set.insert(items.order());
    return set;
}

std::uint64_t& ItemSet::wordOf(ItemRef ref) {
    const std::size_t word = ref / bits;
    if (word >= words_.size()) words_.resize(std::max(word + 1, words_.size() * 2));
    return words_[word];
}

void ItemSet::insert(std::span<const ItemRef> refs) {
    for (const ItemRef ref : refs) {
        std::uint64_t& word = wordOf(ref);
        const std::uint64_t bit = std::uint64_t{1} << (ref % bits);
        count_ += (word & bit) == 0;
        word |= bit;
    }
}

void ItemSet::erase(std::span<const ItemRef> refs) noexcept {
    for (const ItemRef ref : refs) {
        if (ref / bits >= words_.size()) continue;
        std::uint64_t& word = words_[ref / bits];
        const std::uint64_t bit = std::uint64_t{1} << (ref % bits);
        count_ -= (word & bit) != 0;
        word &= ~bit;
    }
}

void ItemSet::flip(std::span<const ItemRef> refs) {
    for (const ItemRef ref : refs) {
        std::uint64_t& word = wordOf(ref);
        const std::uint64_t bit = std::uint64_t{1} << (ref % bits);
        word ^= bit;
        (word & bit) != 0 ? ++count_ : --count_;
    }
}

void ItemSet::clear() noexcept {
    words_.clear();
    count_ = 0;
}

ItemSet& ItemSet::operator&=(const ItemSet& other) noexcept {
    if (words_.size() > other.words_.size()) words_.resize(other.words_.size());
    for (std::size_t word = 0; word < words_.size(); ++word)
        words_[word] &= other.words_[word];
    recount();
    return *this;
}

ItemSet& ItemSet::operator-=(const ItemSet& other) noexcept {
    const std::size_t common = std::min(words_.size(), other.words_.size());
    for (std::size_t word = 0; word < common; ++word)
        words_[word] &= ~other.words_[word];
    recount();
    return *this;
}

ItemSet& ItemSet::operator|=(const ItemSet& other) {
    if (words_.size() < other.words_.size()) words_.resize(other.words_.size());
    for (std::size_t word = 0; word < other.words_.size(); ++word)
        words_[word] |= other.words_[word];
    recount();
    return *this;
}

void ItemSet::recount() noexcept {
    count_ = 0;
    for (const std::uint64_t word : words_)
        count_ += static_cast<std::size_t>(std::popcount(word));
}

bool operator==(const ItemSet& a, const ItemSet& b) noexcept {
    if (a.count_ != b.count_) return false;
    // Equally many members: a longer tail holds only zeros when the common part is the same.
    return std::equal(a.words_.begin(),
                      a.words_.begin() +
                          static_cast<std::ptrdiff_t>(std::min(a.words_.size(), b.words_.size())),
                      b.words_.begin());
}

} // namespace ombrel
