#pragma once

#include <cstdint>
#include <string>

namespace ombrel {

/// One press of a key with its modifiers, in the form that the key tables compare. Caps Lock, the keypad's
/// mark and the like are not part of it, so equal strokes are equal values.
struct KeyStroke {
    /// The keys that the tables name, by their X key symbols, which every keyboard layout and both display
    /// protocols share.
    enum class Code : std::uint16_t {
        none = 0, ///< a key that no table names
        space = 0x0020,
        backspace = 0xFF08,
        tab = 0xFF09,
        returnKey = 0xFF0D,
        escape = 0xFF1B,
        home = 0xFF50,
        leftArrow = 0xFF51,
        upArrow = 0xFF52,
        rightArrow = 0xFF53,
        downArrow = 0xFF54,
        pageUp = 0xFF55,
        pageDown = 0xFF56,
        end = 0xFF57,
        keypadEnter = 0xFF8D,
        f2 = 0xFFBF,
        f3 = 0xFFC0,
        f5 = 0xFFC2,
        forwardDelete = 0xFFFF,
    };

    /// A set, of the flags below.
    using Modifiers = std::uint8_t;
    static constexpr Modifiers shift = 1U << 0U, control = 1U << 1U, option = 1U << 2U, command = 1U << 3U;

    Code keyCode = Code::none;
    /// What the key gives without modifiers in the present layout, lower-cased, UTF-8; empty for keys that
    /// give no characters.
    std::string characters = {};
    Modifiers modifiers = 0;

    friend bool operator==(const KeyStroke&, const KeyStroke&) = default;
};

} // namespace ombrel
