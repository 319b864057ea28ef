#pragma once

#include "base/FileURL.h"

#include <cstddef>
#include <optional>
#include <string>

namespace ombrel {

/// The first bytes of a regular file, at most `limit` of them; links are followed. Nothing when it cannot be
/// opened or is of another kind: nobody waits for what a pipe may bring. Blocking; any thread.
[[nodiscard]] std::optional<std::string> beginningOf(const FileURL& url, std::size_t limit);

} // namespace ombrel
