#pragma once

#include "base/FileURL.h"
#include "base/Hash.h"
#include "listing/FileStatus.h"
#include "operations/FileOperationKind.h"
#include "operations/ItemOutcome.h"
#include "operations/OperationFacts.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace ombrel {

/// What an item was when it got its place, by which it is known again once the job has ended.
struct PlacedItem {
    FileIdentity identity;
    std::uint32_t type = 0; ///< an S_IF constant
    std::int64_t size = 0;  ///< bytes
    FileTime modified;
};

/// One item of a job and what became of it.
struct ItemResult {
    std::optional<FileURL> source; ///< absent for an item that had none, such as a created folder
    ItemOutcome outcome;
    ErrorFacts facts = {}; ///< of the outcome's error
    /// Of an item that a transfer completed. Counts for neither equality nor the hash.
    std::optional<PlacedItem> placed = std::nullopt;

    [[nodiscard]] std::size_t hashValue() const { return hashOf(source, outcome, facts); }
    friend bool operator==(const ItemResult& a, const ItemResult& b) {
        return a.source == b.source && a.outcome == b.outcome && a.facts == b.facts;
    }
};

/// What a whole job came to: the items in the order in which they were given.
struct OperationReport {
    enum class Overall : std::uint8_t { succeeded, partiallySucceeded, failed, cancelled, nothingToDo };

    FileOperationKind kind;
    std::vector<ItemResult> items;

    [[nodiscard]] std::vector<ItemResult> succeeded() const;
    [[nodiscard]] std::vector<ItemResult> unsuccessful() const;
    /// How the job is judged. Skipped items count as neither success nor failure, but keep a report from
    /// being `succeeded`: nothing but skipped items is `failed`, skipped and cancelled ones are `cancelled`.
    [[nodiscard]] Overall overall() const;
    [[nodiscard]] std::size_t hashValue() const { return hashOf(kind, hashOfRange(items)); }

    friend bool operator==(const OperationReport&, const OperationReport&) = default;
};

template <>
struct RawValues<OperationReport::Overall> {
    static constexpr std::string_view names[] = {"succeeded", "partiallySucceeded", "failed", "cancelled",
                                                 "nothingToDo"};
};

} // namespace ombrel
