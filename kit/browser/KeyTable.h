#pragma once

#include "browser/KeyStroke.h"

#include <optional>
#include <span>
#include <string_view>

namespace ombrel {

/// One line of a key table: a key, named or by the character it gives, the exact set of modifiers, and what
/// both together mean.
template <typename Meaning>
struct KeyBinding {
    struct Key {
        // NOLINTBEGIN(*-explicit-*): lines of a table
        constexpr Key(KeyStroke::Code named) noexcept : code(named) {}
        constexpr Key(const char* character) noexcept : characters(character) {}
        // NOLINTEND(*-explicit-*)

        KeyStroke::Code code = KeyStroke::Code::none;
        std::string_view characters = {};

        friend bool operator==(const Key&, const Key&) = default;
    };

    Key key;
    KeyStroke::Modifiers modifiers;
    Meaning meaning;

    [[nodiscard]] constexpr bool matches(const KeyStroke& stroke) const noexcept {
        if (stroke.modifiers != modifiers) return false;
        return key.characters.empty() ? stroke.keyCode == key.code : stroke.characters == key.characters;
    }
};

/// What the first matching line means.
template <typename Meaning>
[[nodiscard]] std::optional<Meaning> meaningOf(std::span<const KeyBinding<Meaning>> table,
                                               const KeyStroke& stroke) {
    for (const auto& binding : table)
        if (binding.matches(stroke)) return binding.meaning;
    return std::nullopt;
}

/// As above, with Control taken for Command where the table has no line with Control itself.
template <typename Meaning>
[[nodiscard]] std::optional<Meaning> meaningWithControlAsCommand(std::span<const KeyBinding<Meaning>> table,
                                                                 const KeyStroke& stroke) {
    if (auto meaning = meaningOf(table, stroke)) return meaning;
    const bool isControl = stroke.modifiers & KeyStroke::control,
               isCommand = stroke.modifiers & KeyStroke::command;
    if (!isControl || isCommand) return std::nullopt;
    KeyStroke asCommand = stroke;
    asCommand.modifiers ^= KeyStroke::control | KeyStroke::command;
    return meaningOf(table, asCommand);
}

} // namespace ombrel
