#pragma once

#include "cli/Command.h"

#include <expected>
#include <span>
#include <string_view>

namespace ombrel::cli {

/// What was typed, taken apart.
struct CommandLine {
    const Command* command; ///< nothing when only common options were given
    Arguments arguments;
};

/// What is wrong with the words, and the command whose help tells more when it was recognised.
struct UsageFault {
    Text reason;
    const Command* command;
};

/// Takes the words after the program's name apart: common options, a command's name, then its options and
/// operands in any order, "--name value" or "--name=value", with "--" before operands that begin with a dash.
/// The error says in one sentence what is wrong. Whether operands are missing is not looked at where help is
/// asked for.
[[nodiscard]] std::expected<CommandLine, UsageFault> parse(std::span<const std::string_view> words);

/// The value of "--lang", wherever it stands and however wrong the rest is: the sentence that says so is
/// already in that language.
[[nodiscard]] std::optional<std::string_view> askedLanguage(std::span<const std::string_view> words);

} // namespace ombrel::cli
