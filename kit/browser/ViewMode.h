#pragma once

#include "base/RawValue.h"

#include <cstdint>

namespace ombrel {

/// How a pane shows its items.
enum class ViewMode : std::uint8_t { details, icons };

template <>
struct RawValues<ViewMode> {
    static constexpr std::string_view names[] = {"details", "icons"};
};

} // namespace ombrel
