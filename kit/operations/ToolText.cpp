#include "operations/ToolText.h"

#include <array>
#include <cstddef>

namespace ombrel::ToolText {
namespace {

bool isOctal(char digit) noexcept {
    return digit >= '0' && digit <= '7';
}

} // namespace

std::string unescaped(std::string_view text) {
    constexpr std::string_view letters = "\\abfnrtv", meant = "\\\a\b\f\n\r\t\v";
    std::string bytes;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const auto rest = text.substr(at);
        if (rest[0] != '\\' || rest.size() < 2) {
            bytes.push_back(rest[0]);
            continue;
        }
        const auto letter = letters.find(rest[1]);
        constexpr std::size_t octalLength = 4;
        if (letter != std::string_view::npos) {
            bytes.push_back(meant[letter]);
            ++at;
        } else if (rest.size() >= octalLength && rest[1] <= '3' && isOctal(rest[1]) && isOctal(rest[2]) &&
                   isOctal(rest[3])) {
            bytes.push_back(
                static_cast<char>(((rest[1] - '0') << 6) | ((rest[2] - '0') << 3) | (rest[3] - '0')));
            at += octalLength - 1;
        } else {
            bytes.push_back('\\');
        }
    }
    return bytes;
}

std::string_view lastComponent(std::string_view path) {
    while (path.size() > 1 && path.ends_with('/'))
        path.remove_suffix(1);
    const auto slash = path.rfind('/');
    return slash == std::string_view::npos || path.size() == 1 ? path : path.substr(slash + 1);
}

} // namespace ombrel::ToolText
