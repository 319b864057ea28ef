#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace ombrel {

/// The stored names of an enumeration whose cases count from 0, in their order. Specialised beside the
/// enumeration with one member: `static constexpr std::string_view names[]`.
template <typename E>
struct RawValues;

template <typename E>
concept HasRawValues = requires { RawValues<E>::names; };

/// The name under which a case is stored and shown to scripts.
template <HasRawValues E>
[[nodiscard]] constexpr std::string_view rawValue(E value) noexcept {
    return RawValues<E>::names[static_cast<std::size_t>(value)];
}

/// The case of that name; nothing for any other text.
template <HasRawValues E>
[[nodiscard]] constexpr std::optional<E> fromRawValue(std::string_view raw) noexcept {
    for (std::size_t i = 0; i < std::size(RawValues<E>::names); ++i)
        if (RawValues<E>::names[i] == raw) return static_cast<E>(i);
    return std::nullopt;
}

} // namespace ombrel
