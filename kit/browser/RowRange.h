#pragma once

#include <cstddef>

namespace ombrel {

/// Rows from `begin` up to, not including, `end`.
struct RowRange {
    std::size_t begin = 0;
    std::size_t end = 0;

    /// From the one row to the other, both included, whichever comes first.
    [[nodiscard]] static constexpr RowRange between(std::size_t a, std::size_t b) noexcept {
        return a < b ? RowRange{a, b + 1} : RowRange{b, a + 1};
    }

    [[nodiscard]] constexpr bool empty() const noexcept { return begin >= end; }
    [[nodiscard]] constexpr std::size_t size() const noexcept { return empty() ? 0 : end - begin; }
    [[nodiscard]] constexpr bool contains(std::size_t row) const noexcept {
        return row >= begin && row < end;
    }

    friend bool operator==(const RowRange&, const RowRange&) = default;
};

} // namespace ombrel
