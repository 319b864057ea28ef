#include "browser/ListNavigationKey.h"

#include <algorithm>
#include <utility>

namespace ombrel::ListNavigation {
namespace {

std::optional<ListNavigationKey> keyOf(KeyStroke::Code code) noexcept {
    switch (code) {
    case KeyStroke::Code::home: return ListNavigationKey::home;
    case KeyStroke::Code::end: return ListNavigationKey::end;
    case KeyStroke::Code::pageUp: return ListNavigationKey::pageUp;
    case KeyStroke::Code::pageDown: return ListNavigationKey::pageDown;
    default: return std::nullopt;
    }
}

} // namespace

std::optional<Move> from(const KeyStroke& stroke) noexcept {
    const auto key = keyOf(stroke.keyCode);
    if (!key || (stroke.modifiers & ~KeyStroke::shift) != 0) return std::nullopt;
    return Move{*key, stroke.modifiers == KeyStroke::shift};
}

std::optional<std::size_t> target(ListNavigationKey key, std::optional<std::size_t> current,
                                  std::size_t count, std::size_t page) noexcept {
    if (count == 0) return std::nullopt;
    const std::size_t last = count - 1;
    const std::size_t step = std::max<std::size_t>(page, 1);
    switch (key) {
    case ListNavigationKey::home: return 0;
    case ListNavigationKey::end: return last;
    case ListNavigationKey::pageUp: {
        const std::size_t from = std::min(current.value_or(0), last);
        return from - std::min(from, step);
    }
    case ListNavigationKey::pageDown: {
        // Without a current item the first page ends just before it.
        const std::size_t reached = current ? *current : 0;
        const std::size_t ahead = current ? step : step - 1;
        return reached >= last ? last : reached + std::min(ahead, last - reached);
    }
    }
    std::unreachable();
}

} // namespace ombrel::ListNavigation
