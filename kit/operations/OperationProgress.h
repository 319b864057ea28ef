#pragma once

#include "base/Hash.h"
#include "base/RawValue.h"
#include "base/Text.h"

#include <cstdint>
#include <optional>
#include <string>

namespace ombrel {

/// How far a job has come.
struct OperationProgress {
    enum class Phase : std::uint8_t { preparing, copying, verifying, removingSource, trashing, deleting };

    std::int64_t completedItems = 0;
    std::int64_t totalItems = 0;
    std::int64_t completedBytes = 0;
    std::int64_t totalBytes = 0;
    std::optional<std::string> currentName; ///< the bytes of the name of what is being worked on
    Phase phase = Phase::preparing;

    /// 0 to 1: by bytes where there are any, else by items.
    [[nodiscard]] double fraction() const noexcept;
    [[nodiscard]] std::size_t hashValue() const {
        return hashOf(completedItems, totalItems, completedBytes, totalBytes, currentName, phase);
    }
    friend bool operator==(const OperationProgress&, const OperationProgress&) = default;
};

template <>
struct RawValues<OperationProgress::Phase> {
    static constexpr std::string_view names[] = {"preparing",      "copying",  "verifying",
                                                 "removingSource", "trashing", "deleting"};
};

/// The phase in words.
[[nodiscard]] Text textOf(OperationProgress::Phase phase);

} // namespace ombrel
