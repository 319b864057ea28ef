#include "operations/ItemNames.h"

#include "base/FileName.h"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

namespace ombrel::ItemNames {
namespace {

bool isBlank(std::string_view name) noexcept {
    const auto length = static_cast<std::int32_t>(name.size());
    for (std::int32_t at = 0; at < length;) {
        UChar32 character = 0;
        U8_NEXT(name.data(), at, length, character);
        if (character < 0 || !u_isUWhiteSpace(character)) return false;
    }
    return true;
}

} // namespace

std::optional<InvalidNameReason> validate(std::string_view name, WindowsRules rules) {
    constexpr std::size_t longest = 255;
    if (isBlank(name)) return InvalidNameReason::empty;
    if (name == "." || name == "..") return InvalidNameReason::reserved;
    if (rules == WindowsRules::on && name.find_first_of("\\/:*?\"<>|") != std::string_view::npos)
        return InvalidNameReason::windowsCharacters;
    if (name.find('/') != std::string_view::npos) return InvalidNameReason::containsSlash;
    if (name.find('\0') != std::string_view::npos) return InvalidNameReason::containsNull;
    if (name.size() > longest) return InvalidNameReason::tooLong;
    return std::nullopt;
}

Split splitExtension(std::string_view name, KeepExtension keep) {
    if (keep == KeepExtension::no) return {name, std::nullopt};
    const auto extension = FileName::extension(name);
    const auto base = FileName::stem(name);
    if (extension.empty() || base == ".") return {name, std::nullopt};
    return {base, extension};
}

std::string numbered(std::string_view name, int number, KeepExtension keep) {
    const auto [base, extension] = splitExtension(name, keep);
    std::string result(base);
    result += " (" + std::to_string(number) + ")";
    if (extension) result.append(".").append(*extension);
    return result;
}

} // namespace ombrel::ItemNames
