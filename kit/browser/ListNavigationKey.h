#pragma once

#include "browser/KeyStroke.h"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace ombrel {

/// A key that leads far through a list.
enum class ListNavigationKey : std::uint8_t { home, end, pageUp, pageDown };

namespace ListNavigation {

struct Move {
    ListNavigationKey key;
    bool extend; ///< the selection reaches to the target, instead of being only it

    friend bool operator==(const Move&, const Move&) = default;
};

/// Plain or with Shift; nothing for all else.
[[nodiscard]] std::optional<Move> from(const KeyStroke& stroke) noexcept;

/// Where the key leads in a list of `count` items, of which `page` (at least 1) make a page. Nothing when the
/// list is empty.
[[nodiscard]] std::optional<std::size_t> target(ListNavigationKey key, std::optional<std::size_t> current,
                                                std::size_t count, std::size_t page) noexcept;

} // namespace ListNavigation
} // namespace ombrel
