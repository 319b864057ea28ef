#pragma once

#include <algorithm>
#include <cstdint>

namespace ombrel {

/// What a comparison of a source with its copy came to. Ordered from best to worst.
enum class Verification : std::uint8_t {
    identical,
    metadataDiffers, ///< same names, types and contents, but permissions or extended attributes differ
    different,       ///< anything else, a tree that could not be read among it
};

[[nodiscard]] constexpr Verification worse(Verification a, Verification b) noexcept {
    return std::max(a, b);
}

} // namespace ombrel
