#pragma once

#include "listing/FileItemList.h"
#include "listing/FileSort.h"
#include "listing/KindTexts.h"

#include <cstdint>
#include <memory>
#include <span>
#include <stop_token>
#include <vector>

namespace ombrel {

/// An item as the sort handles it: the beginning of what it is ordered by, in numbers that compare as the
/// items do, so that few comparisons touch the item itself.
struct SortEntry {
    std::uint64_t high;
    std::uint64_t middle;
    std::uint64_t low;
    ItemRef ref;
    std::uint32_t kind; ///< number of the kind text, in a sort by kind
};

/// A fixed number of entries, meant to be in order. Made without being filled, which a vector cannot.
class SortedRun {
public:
    SortedRun() noexcept = default;
    explicit SortedRun(std::size_t size)
        : entries_(std::make_unique_for_overwrite<SortEntry[]>(size)), size_(size) {}

    [[nodiscard]] std::size_t size() const noexcept { return size_; }
    [[nodiscard]] bool empty() const noexcept { return size_ == 0; }
    [[nodiscard]] SortEntry* begin() noexcept { return entries_.get(); }
    [[nodiscard]] SortEntry* end() noexcept { return entries_.get() + size_; }
    [[nodiscard]] const SortEntry* begin() const noexcept { return entries_.get(); }
    [[nodiscard]] const SortEntry* end() const noexcept { return entries_.get() + size_; }

private:
    std::unique_ptr<SortEntry[]> entries_;
    std::size_t size_ = 0;
};

/// Makes and compares sort entries under one `FileSort`. One thread at a time; `blocks`, which the references
/// of the entries count into, must outlive it and may grow.
class EntryOrder {
public:
    EntryOrder(const FileSort& sort, const FileItemList::Blocks& blocks) noexcept
        : sort_(sort), blocks_(&blocks) {}

    [[nodiscard]] SortEntry entry(ItemRef ref);
    void sort(std::span<SortEntry> entries) const;

    /// One run out of two; empty when `stop` came first.
    [[nodiscard]] SortedRun merged(const SortedRun& a, const SortedRun& b, std::stop_token stop) const;
    /// The references of any number of runs in order.
    [[nodiscard]] std::vector<ItemRef>
    mergedRefs(std::span<const std::shared_ptr<const SortedRun>> runs) const;

private:
    template <FileSort::Key key>
    struct Before;
    bool setValue(SortEntry& entry, const ItemRecord& record, std::uint64_t name) const noexcept;
    template <typename Body>
    void withComparison(Body body) const;

    FileSort sort_;
    const FileItemList::Blocks* blocks_;
    KindTexts kinds_;
};

/// Sorted runs of growing size: a new batch is merged only with runs of about its own size, so that each
/// entry is moved a logarithmic number of times however many batches come.
class SortedRuns {
public:
    void add(SortedRun run) { runs_.push_back(std::make_shared<const SortedRun>(std::move(run))); }
    /// Merges until each run is at least twice as long as the one after it. Answers false when `stop` came
    /// first.
    bool compact(const EntryOrder& order, const std::stop_token& stop);

    [[nodiscard]] const std::vector<std::shared_ptr<const SortedRun>>& runs() const noexcept { return runs_; }

private:
    std::vector<std::shared_ptr<const SortedRun>> runs_; // longest first
};

} // namespace ombrel
