#include "listing/EntryOrder.h"

#include "listing/FileOrdering.h"

#include <algorithm>
#include <bit>
#include <cstring>

// An entry's three numbers, most significant bit first:
//   1 bit   0 for folders that go first
//   by name:         191 bits of the name's sort key
//   by kind:         63 bits of the kind text's sort key, then 128 bits of the name's
//   by size:         1 bit "no value", 62 bits of the size, then 128 bits of the name's sort key
//   by modification: 1 bit "no value", 62 bits of the seconds, then the nanoseconds, then 64 bits of the
//   name's key
// In a descending sort every bit but "folder" and "no value" is inverted, so that smaller always goes first.
// Where the numbers say "equal" the items themselves are compared.

namespace ombrel {
namespace {

constexpr std::uint64_t topBit = std::uint64_t{1} << 63;
constexpr std::uint64_t valueMask = (std::uint64_t{1} << 62) - 1;
constexpr std::ptrdiff_t stopInterval = 4096;

struct KeyBits {
    std::uint64_t words[3];
};

/// The first 24 bytes of a key as a big-endian number, zeros after a shorter one.
KeyBits leading(std::string_view key) noexcept {
    KeyBits bits{};
    std::memcpy(bits.words, key.data(), std::min<std::size_t>(key.size(), sizeof bits.words));
    if constexpr (std::endian::native == std::endian::little)
        for (std::uint64_t& word : bits.words)
            word = __builtin_bswap64(word);
    return bits;
}

} // namespace

SortEntry EntryOrder::entry(ItemRef ref) {
    const FileItemView item(*(*blocks_)[ref >> ItemBlock::slotBits], ref & (ItemBlock::capacity - 1));
    const KeyBits name = leading(item.sortKey());
    SortEntry entry{0, name.words[0], name.words[1], ref, 0};
    std::uint64_t fixed = sort_.foldersFirst && !item.isDirectoryLike() ? topBit : 0;
    std::uint64_t inverted = ~topBit, invertedRest = ~std::uint64_t{0};
    if (sort_.key == FileSort::Key::name) {
        entry.high = name.words[0] >> 1;
        entry.middle = (name.words[0] << 63) | (name.words[1] >> 1);
        entry.low = (name.words[1] << 63) | (name.words[2] >> 1);
    } else if (sort_.key == FileSort::Key::kind) {
        entry.kind = kinds_.number(item);
        entry.high = leading(KindTexts::key(entry.kind)).words[0] >> 1;
    } else if (!FileSort::isKnown(item, sort_.key)) {
        fixed |= topBit >> 1;
        inverted = 0;
    } else {
        inverted = valueMask;
        if (!setValue(entry, item.record(), name.words[0])) {
            entry.middle = entry.low = 0;
            invertedRest = 0;
        }
    }
    if (!sort_.ascending) {
        entry.high ^= inverted;
        entry.middle ^= invertedRest;
        entry.low ^= invertedRest;
    }
    entry.high |= fixed;
    return entry;
}

/// Puts the size or date in. Answers false when it does not fit: then the entry says only that it is at an
/// end.
bool EntryOrder::setValue(SortEntry& entry, const ItemRecord& record, std::uint64_t name) const noexcept {
    if (sort_.key == FileSort::Key::size) {
        entry.high = std::min(static_cast<std::uint64_t>(record.size), valueMask);
        return entry.high < valueMask;
    }
    constexpr std::int64_t middle = std::int64_t{1} << 61;
    entry.high = static_cast<std::uint64_t>(std::clamp(record.modifiedSeconds, -middle, middle - 1) + middle);
    entry.middle = record.modifiedNanoseconds;
    entry.low = name;
    return entry.high > 0 && entry.high < valueMask;
}

template <FileSort::Key key>
struct EntryOrder::Before {
    const FileSort& sort;
    const FileItemList::Blocks& blocks;

    bool operator()(const SortEntry& a, const SortEntry& b) const {
        if (a.high != b.high) return a.high < b.high;
        if constexpr (key == FileSort::Key::kind) {
            if (a.kind != b.kind) {
                const int texts = KindTexts::key(a.kind).compare(KindTexts::key(b.kind));
                if (texts != 0) return sort.ascending ? texts < 0 : texts > 0;
            }
        }
        if (a.middle != b.middle) return a.middle < b.middle;
        if (a.low != b.low) return a.low < b.low;
        return FileOrdering::isBeforeWithinKind(sort, view(a.ref), view(b.ref));
    }

    FileItemView view(ItemRef ref) const noexcept {
        return {*blocks[ref >> ItemBlock::slotBits], ref & (ItemBlock::capacity - 1)};
    }
};

template <typename Body>
void EntryOrder::withComparison(Body body) const {
    switch (sort_.key) {
    case FileSort::Key::name: return body(Before<FileSort::Key::name>{sort_, *blocks_});
    case FileSort::Key::kind: return body(Before<FileSort::Key::kind>{sort_, *blocks_});
    case FileSort::Key::size: return body(Before<FileSort::Key::size>{sort_, *blocks_});
    case FileSort::Key::modificationDate:
        return body(Before<FileSort::Key::modificationDate>{sort_, *blocks_});
    }
}

void EntryOrder::sort(std::span<SortEntry> entries) const {
    withComparison([&](auto before) { std::ranges::sort(entries, before); });
}

SortedRun EntryOrder::merged(const SortedRun& a, const SortedRun& b, std::stop_token stop) const {
    SortedRun result(a.size() + b.size());
    bool isStopped = false;
    withComparison([&](auto before) {
        auto left = a.begin(), right = b.begin();
        auto out = result.begin();
        while (left != a.end() && right != b.end()) {
            if ((out - result.begin()) % stopInterval == 0 && stop.stop_requested()) {
                isStopped = true;
                return;
            }
            *out++ = before(*right, *left) ? *right++ : *left++;
        }
        std::copy(right, b.end(), std::copy(left, a.end(), out));
    });
    return isStopped ? SortedRun() : std::move(result);
}

std::vector<ItemRef> EntryOrder::mergedRefs(std::span<const std::shared_ptr<const SortedRun>> runs) const {
    std::vector<ItemRef> refs;
    if (runs.empty()) return refs;
    // The shortest runs first; what comes out joins the next longer one.
    std::vector<std::shared_ptr<const SortedRun>> rest(runs.begin(), runs.end());
    std::ranges::sort(rest, std::greater{}, [](const auto& run) { return run->size(); });
    while (rest.size() > 2) {
        const auto a = std::move(rest.back());
        rest.pop_back();
        auto joined = std::make_shared<const SortedRun>(merged(*rest.back(), *a, {}));
        rest.back() = std::move(joined);
        std::ranges::sort(rest, std::greater{}, [](const auto& run) { return run->size(); });
    }
    const SortedRun none;
    const SortedRun& a = *rest.front();
    const SortedRun& b = rest.size() > 1 ? *rest.back() : none;
    refs.reserve(a.size() + b.size());
    withComparison([&](auto before) {
        auto left = a.begin(), right = b.begin();
        while (left != a.end() && right != b.end())
            refs.push_back((before(*right, *left) ? *right++ : *left++).ref);
        for (; left != a.end(); ++left)
            refs.push_back(left->ref);
        for (; right != b.end(); ++right)
            refs.push_back(right->ref);
    });
    return refs;
}

bool SortedRuns::compact(const EntryOrder& order, const std::stop_token& stop) {
    while (runs_.size() > 1 && runs_[runs_.size() - 2]->size() < 2 * runs_.back()->size()) {
        auto joined = order.merged(*runs_[runs_.size() - 2], *runs_.back(), stop);
        if (joined.empty()) return false;
        runs_.pop_back();
        runs_.back() = std::make_shared<const SortedRun>(std::move(joined));
    }
    return true;
}

} // namespace ombrel
