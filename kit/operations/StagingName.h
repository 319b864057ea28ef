#pragma once

#include <string>
#include <string_view>

/// The hidden names under which a copy stands in its destination folder until it is put in place.
namespace ombrel::StagingName {

inline constexpr std::string_view prefix = ".hom-staging-";

/// The prefix and a fresh random UUID (RFC 9562, version 4) in upper case.
[[nodiscard]] std::string make();
[[nodiscard]] bool isOne(std::string_view name) noexcept;

} // namespace ombrel::StagingName
