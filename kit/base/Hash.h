#pragma once

#include <concepts>
#include <cstddef>
#include <functional>
#include <ranges>

namespace ombrel {

namespace Detail {
inline void mix(std::size_t& seed, std::size_t next) noexcept {
    seed ^= next + 0x9E3779B97F4A7C15U + (seed << 6) + (seed >> 2);
}
} // namespace Detail

/// One hash of several values, in their order.
template <typename... Values>
[[nodiscard]] std::size_t hashOf(const Values&... values) {
    std::size_t seed = 0;
    (Detail::mix(seed, std::hash<Values>{}(values)), ...);
    return seed;
}

/// The same for the elements of a range.
template <std::ranges::input_range Range>
[[nodiscard]] std::size_t hashOfRange(const Range& range) {
    std::size_t seed = 0;
    for (const auto& value : range)
        Detail::mix(seed, std::hash<std::ranges::range_value_t<Range>>{}(value));
    return seed;
}

/// A value type of the kit that tells its own hash; `std::hash` asks it.
template <typename T>
concept TellsHash = requires(const T& value) {
    { value.hashValue() } -> std::same_as<std::size_t>;
};

} // namespace ombrel

template <ombrel::TellsHash T>
struct std::hash<T> {
    std::size_t operator()(const T& value) const { return value.hashValue(); }
};
