#include "base/PercentEncoding.h"

namespace ombrel::PercentEncoding {
namespace {

constexpr bool isAlphanumeric(char c) noexcept {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

constexpr int hexadecimal(char c) noexcept {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

} // namespace

std::string encoded(std::string_view bytes, std::string_view alsoBare) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    text.reserve(bytes.size());
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        if (isAlphanumeric(c) || alsoBare.find(c) != std::string_view::npos)
            text.push_back(c);
        else
            text.append(1, '%').append(1, digits[byte >> 4]).append(1, digits[byte & 15]);
    }
    return text;
}

std::optional<std::string> decoded(std::string_view text) {
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            bytes.push_back(text[i]);
            continue;
        }
        const int high = i + 2 < text.size() ? hexadecimal(text[i + 1]) : -1;
        const int low = high < 0 ? -1 : hexadecimal(text[i + 2]);
        if (low < 0 || (high == 0 && low == 0)) return std::nullopt;
        bytes.push_back(static_cast<char>(high * 16 + low));
        i += 2;
    }
    return bytes;
}

} // namespace ombrel::PercentEncoding
