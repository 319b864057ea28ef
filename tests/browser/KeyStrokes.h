#pragma once

#include "browser/KeyStroke.h"

#include <array>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ombrel::testing {

inline constexpr std::array<std::pair<std::string_view, KeyStroke::Code>, 18> namedKeys = {{
    {"space", KeyStroke::Code::space},
    {"backspace", KeyStroke::Code::backspace},
    {"tab", KeyStroke::Code::tab},
    {"return", KeyStroke::Code::returnKey},
    {"escape", KeyStroke::Code::escape},
    {"home", KeyStroke::Code::home},
    {"left", KeyStroke::Code::leftArrow},
    {"up", KeyStroke::Code::upArrow},
    {"right", KeyStroke::Code::rightArrow},
    {"down", KeyStroke::Code::downArrow},
    {"pageUp", KeyStroke::Code::pageUp},
    {"pageDown", KeyStroke::Code::pageDown},
    {"end", KeyStroke::Code::end},
    {"enter", KeyStroke::Code::keypadEnter},
    {"f2", KeyStroke::Code::f2},
    {"f3", KeyStroke::Code::f3},
    {"f5", KeyStroke::Code::f5},
    {"delete", KeyStroke::Code::forwardDelete},
}};

inline constexpr std::array<std::pair<std::string_view, KeyStroke::Modifiers>, 4> namedModifiers = {{
    {"ctrl+", KeyStroke::control},
    {"alt+", KeyStroke::option},
    {"shift+", KeyStroke::shift},
    {"cmd+", KeyStroke::command},
}};

/// "ctrl+shift+n", "alt+return": modifiers in the order of their table, then the key's name or character.
inline KeyStroke stroke(std::string_view text) {
    KeyStroke made;
    for (const auto& [name, modifier] : namedModifiers) {
        if (!text.starts_with(name)) continue;
        made.modifiers |= modifier;
        text.remove_prefix(name.size());
    }
    for (const auto& [name, code] : namedKeys)
        if (text == name) made.keyCode = code;
    if (made.keyCode == KeyStroke::Code::none) made.characters = text;
    if (made.keyCode == KeyStroke::Code::space) made.characters = " ";
    if (text.empty()) throw std::runtime_error("a stroke without a key");
    return made;
}

/// Every key with every set of modifiers, by the texts that `stroke` understands.
inline std::vector<std::string> everyStroke() {
    std::vector<std::string> keys;
    for (const auto& [name, code] : namedKeys)
        keys.emplace_back(name);
    for (char character = '!'; character <= '~'; ++character)
        if (character < 'A' || character > 'Z') keys.emplace_back(1, character);
    keys.insert(keys.end(), {"é", "с", "12"});
    std::vector<std::string> strokes;
    for (unsigned set = 0; set < 1U << namedModifiers.size(); ++set) {
        std::string prefix;
        for (std::size_t i = 0; i < namedModifiers.size(); ++i)
            if (set & 1U << i) prefix += namedModifiers[i].first;
        for (const auto& key : keys)
            strokes.push_back(prefix + key);
    }
    return strokes;
}

} // namespace ombrel::testing
