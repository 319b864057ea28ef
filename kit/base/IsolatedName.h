#pragma once

#include "base/FileName.h"

#include <string>
#include <string_view>

namespace ombrel {

/// A name as people read it, kept apart from the direction of the text around it by a first strong isolate
/// (Unicode Standard Annex 9).
[[nodiscard]] inline std::string isolated(std::string_view name) {
    constexpr auto firstStrongIsolate = "\u2068", popIsolate = "\u2069";
    return firstStrongIsolate + FileName::displayText(name) + popIsolate;
}

} // namespace ombrel
