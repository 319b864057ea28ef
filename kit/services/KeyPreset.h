#pragma once

#include "base/RawValue.h"

#include <cstdint>

namespace ombrel {

/// The keyboard scheme. The raw values are stored.
enum class KeyPreset : std::uint8_t { windows, mac };

template <>
struct RawValues<KeyPreset> {
    static constexpr std::string_view names[] = {"windows", "mac"};
};

} // namespace ombrel
