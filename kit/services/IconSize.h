#pragma once

#include "base/RawValue.h"

#include <cstddef>
#include <cstdint>

namespace ombrel {

/// How large the icons view draws its items.
enum class IconSize : std::uint8_t { small, medium, large, extraLarge };

template <>
struct RawValues<IconSize> {
    static constexpr std::string_view names[] = {"small", "medium", "large", "extraLarge"};
};
inline constexpr std::size_t iconSizeCount = std::size(RawValues<IconSize>::names);

} // namespace ombrel
