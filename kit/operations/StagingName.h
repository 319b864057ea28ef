#pragma once

#include <string>
#include <string_view>

/// The hidden names under which a copy or an archive stands in its destination folder until it is put in
/// place.
namespace ombrel::StagingName {

inline constexpr std::string_view prefix = ".hom-staging-";
inline constexpr std::string_view zipPrefix = ".hom-zip-", zipSuffix = ".zip";

/// The prefix and a fresh random UUID (RFC 9562, version 4) in upper case.
[[nodiscard]] std::string make();
/// The same for an archive that is being written.
[[nodiscard]] std::string makeZip();
/// Whether the name is of either kind.
[[nodiscard]] bool isOne(std::string_view name) noexcept;

} // namespace ombrel::StagingName
