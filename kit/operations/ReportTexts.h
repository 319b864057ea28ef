#pragma once

#include "base/Text.h"
#include "operations/OperationReport.h"

#include <cstdint>
#include <functional>
#include <string>

namespace ombrel {

/// A number of bytes in words, by the locale: "3.4 MB".
using SizeWords = std::function<std::string(std::int64_t bytes)>;

/// An error in one sentence, made more telling by what is known of it.
[[nodiscard]] Text textOf(const FileOperationError& error, const ErrorFacts& facts,
                          const SizeWords& sizeWords);

/// What became of one item, in one sentence.
[[nodiscard]] Text textOf(const ItemResult& result, const SizeWords& sizeWords);

/// What a whole job came to, in one sentence: "9 of 12 items were copied."
[[nodiscard]] Text summaryOf(const OperationReport& report);

} // namespace ombrel
