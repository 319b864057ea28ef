#pragma once

#include "base/FileURL.h"
#include "base/Text.h"

#include <expected>
#include <span>
#include <string_view>
#include <vector>

namespace ombrel::cli {

/// The location that an operand names, relative ones seen from the working folder. Fails with a sentence when
/// the operand is empty or the working folder is gone.
[[nodiscard]] std::expected<FileURL, Text> locationOf(std::string_view operand);

/// The same for several operands; the first fault ends it.
[[nodiscard]] std::expected<std::vector<FileURL>, Text>
locationsOf(std::span<const std::string_view> operands);

} // namespace ombrel::cli
