#pragma once

#include "base/IsolatedName.h"
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

} // namespace ombrel
