#include "operations/TargetNames.h"

#include "base/FileName.h"

#include <algorithm>

namespace ombrel::TargetNames {
namespace {

/// UTF-16 units of well-formed UTF-8: one for each character, two for those of four bytes.
std::size_t utf16Units(std::string_view name) noexcept {
    std::size_t units = 0;
    for (const char c : name) {
        const auto byte = static_cast<unsigned char>(c);
        if ((byte & 0xC0U) != 0x80) units += byte >= 0xF0 ? 2 : 1;
    }
    return units;
}

} // namespace

std::optional<InvalidNameReason> faultOf(std::string_view name, const FileSystemTraits& traits) {
    const bool isUTF16 = traits.nameUnit == FileSystemTraits::NameUnit::utf16;
    if ((isUTF16 ? utf16Units(name) : name.size()) > traits.longestName) return InvalidNameReason::tooLong;
    if (isUTF16 && !FileName::isValidUTF8(name)) return InvalidNameReason::windowsCharacters;
    if (traits.forbiddenCharacters.empty() && !traits.forbidsControlCharacters) return std::nullopt;
    const bool isForbidden = std::ranges::any_of(name, [&](char c) {
        return traits.forbiddenCharacters.find(c) != std::string_view::npos ||
               (traits.forbidsControlCharacters && static_cast<unsigned char>(c) < 0x20);
    });
    // A final dot is dropped by the drivers of these formats: the entry would get another name.
    if (isForbidden || name.ends_with('.')) return InvalidNameReason::windowsCharacters;
    return std::nullopt;
}

} // namespace ombrel::TargetNames
