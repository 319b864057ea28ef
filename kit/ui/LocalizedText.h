#pragma once

#include "base/FileName.h"
#include "base/Text.h"

#include <QString>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ombrel {

/// Texts of the string tables as widgets want them.
[[nodiscard]] inline QString localized(const Text& text) {
    return QString::fromStdString(text.localized());
}
[[nodiscard]] inline QString localized(std::string_view key, std::vector<std::string> arguments = {}) {
    return localized(Text{key, std::move(arguments)});
}
[[nodiscard]] inline QString localized(std::string_view key, std::int64_t count,
                                       std::vector<std::string> arguments = {}) {
    return localized(Text{key, std::move(arguments), count});
}

/// A name as people read it, kept apart from the direction of the text around it.
[[nodiscard]] inline std::string isolated(std::string_view name) {
    constexpr auto firstStrongIsolate = "\u2068", popIsolate = "\u2069";
    return firstStrongIsolate + FileName::displayText(name) + popIsolate;
}

} // namespace ombrel
