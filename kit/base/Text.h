#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ombrel {

/// A text for people, not yet in any language: the dotted key of the string tables, its arguments in order,
/// and the number that chooses the plural form where the text has one.
///
/// `key` points to a literal. Arguments are UTF-8 and replace {1}, {2}, ... of the table's text; {n} is the
/// count, in the locale's digits. What a person reads is looked up once, where it is shown.
struct Text {
    std::string_view key;
    std::vector<std::string> arguments = {};
    std::optional<std::int64_t> count = std::nullopt;

    /// The text in the interface language. Any thread.
    [[nodiscard]] std::string localized() const;

    friend bool operator==(const Text&, const Text&) = default;
};

namespace Texts {

/// Short form of `Text{key, arguments}.localized()`.
[[nodiscard]] std::string localized(std::string_view key, std::vector<std::string> arguments = {});

/// Answers with the table's text for a key, placeholders untouched, or an empty string when the key is not
/// there. The count has chosen the plural form and replaced {n}. Called on any thread.
using LookUp = std::function<std::string(std::string_view key, std::optional<std::int64_t> count)>;

/// Connects the string tables; done once by a program before it starts threads. Without it, and for a key
/// that no table has, a text is its key followed by its arguments in parentheses.
void connect(LookUp lookUp);

} // namespace Texts
} // namespace ombrel
