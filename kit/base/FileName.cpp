#include "base/FileName.h"

#include <cstdint>
#include <optional>

namespace ombrel::FileName {
namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD";

struct Decoded {
    char32_t character;
    std::size_t length;
};

/// The character that starts at `bytes`, or nothing when no well-formed sequence does (Unicode, table 3-7).
std::optional<Decoded> decode(std::string_view bytes) noexcept {
    const auto at = [&](std::size_t index) { return static_cast<unsigned char>(bytes[index]); };
    const unsigned char lead = at(0);
    if (lead < 0x80) return Decoded{lead, 1};
    std::size_t length = 0;
    unsigned char low = 0x80, high = 0xBF;
    char32_t character = 0;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
        character = lead & 0x1FU;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        character = lead & 0x0FU;
        if (lead == 0xE0) low = 0xA0;
        if (lead == 0xED) high = 0x9F;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        character = lead & 0x07U;
        if (lead == 0xF0) low = 0x90;
        if (lead == 0xF4) high = 0x8F;
    } else {
        return std::nullopt;
    }
    if (bytes.size() < length) return std::nullopt;
    for (std::size_t i = 1; i < length; ++i) {
        const unsigned char next = at(i);
        if (next < low || next > high) return std::nullopt;
        low = 0x80;
        high = 0xBF;
        character = (character << 6) | (next & 0x3FU);
    }
    return Decoded{character, length};
}

bool isDisguise(char32_t c) noexcept {
    return c < 0x20 || (c >= 0x7F && c < 0xA0) || c == 0x061C || c == 0x200E || c == 0x200F || c == 0x2028 ||
           c == 0x2029 || (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
}

} // namespace

std::string_view extension(std::string_view name) noexcept {
    const auto dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0 || dot + 1 == name.size()) return {};
    if (name.find_first_not_of('.') > dot) return {};
    const auto ending = name.substr(dot + 1);
    return ending.find(' ') == std::string_view::npos ? ending : std::string_view{};
}

std::string_view stem(std::string_view name) noexcept {
    const auto ending = extension(name);
    return ending.empty() ? name : name.substr(0, name.size() - ending.size() - 1);
}

std::string loweredASCII(std::string_view text) {
    std::string lowered(text);
    for (char& c : lowered)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return lowered;
}

bool isValidUTF8(std::string_view bytes) noexcept {
    while (!bytes.empty()) {
        const auto next = decode(bytes);
        if (!next) return false;
        bytes.remove_prefix(next->length);
    }
    return true;
}

std::string displayText(std::string_view name) {
    std::string text;
    text.reserve(name.size());
    while (!name.empty()) {
        const auto next = decode(name);
        const std::size_t length = next ? next->length : 1;
        if (next && !isDisguise(next->character))
            text.append(name.substr(0, length));
        else
            text.append(replacement);
        name.remove_prefix(length);
    }
    return text;
}

} // namespace ombrel::FileName
