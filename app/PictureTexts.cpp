#include "app/PictureTexts.h"

#include <array>
#include <cstddef>

namespace ombrel::PictureTexts {
namespace {

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// Hands each word to `replace(words, result)`, and everything else, placeholders too, to `keep`.
template <typename Replace, typename Keep>
std::string rewritten(std::string_view text, const Replace& replace, const Keep& keep) {
    std::string result;
    for (std::size_t at = 0; at < text.size();) {
        std::size_t end = at;
        if (text[at] == '{') {
            end = text.find('}', at);
            end = end == std::string_view::npos ? text.size() : end + 1;
            result += text.substr(at, end - at);
        } else if (isLetter(text[at])) {
            while (end < text.size() && isLetter(text[end]))
                ++end;
            replace(text.substr(at, end - at), result);
        } else {
            end = at + 1;
            keep(text[at], result);
        }
        at = end;
    }
    return result;
}

/// Two fifths of it, rounded up.
std::size_t shareOf(std::size_t length) {
    return (2 * length + 4) / 5;
}

void appendUmlaut(char c, std::string& to) {
    switch (c) {
    case 'a': to += "ä"; break;
    case 'o': to += "ö"; break;
    case 'u': to += "ü"; break;
    case 'A': to += "Ä"; break;
    case 'O': to += "Ö"; break;
    case 'U': to += "Ü"; break;
    default: to += c;
    }
}

} // namespace

std::string germanLike(std::string_view text) {
    constexpr std::string_view ending = "ungsheitengeschaften";
    return rewritten(
        text,
        [&](std::string_view word, std::string& result) {
            for (const char c : word)
                appendUmlaut(c, result);
            for (std::size_t i = 0; i < shareOf(word.size()); ++i)
                result += ending[i % ending.size()];
        },
        [](char c, std::string& result) { result += c; });
}

std::string chineseLike(std::string_view text) {
    constexpr std::array<std::string_view, 16> characters = {"檔", "案", "管", "理", "資", "料", "夾", "顯",
                                                             "選", "項", "複", "製", "開", "啟", "設", "關"};
    std::size_t next = 0;
    return rewritten(
        text,
        [&](std::string_view word, std::string& result) {
            // One of them is about as wide as two letters.
            const std::size_t count = (word.size() + shareOf(word.size()) + 1) / 2;
            for (std::size_t i = 0; i < count; ++i)
                result += characters[next++ % characters.size()];
        },
        [](char c, std::string& result) {
            if (c != ' ') result += c;
        });
}

} // namespace ombrel::PictureTexts
