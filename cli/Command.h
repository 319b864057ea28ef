#pragma once

#include "base/Text.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <stop_token>
#include <string_view>
#include <vector>

class QLocale;

namespace ombrel::cli {

class Output;

/// What the program tells the shell.
enum class ExitStatus : std::uint8_t { success = 0, failure = 1, wrongUsage = 2, interrupted = 130 };

struct Option {
    std::string_view name;      ///< without the dashes; a single character makes a short option
    std::string_view valueName; ///< as the help shows it; empty for an option without a value
    std::string_view helpKey;
};

/// What a person typed after the command's name, options apart from operands. The bytes are the kernel's and
/// live as long as the process.
class Arguments {
public:
    struct Given {
        std::string_view option;
        std::string_view value;
    };
    Arguments(std::vector<Given> options, std::vector<std::string_view> operands)
        : options_(std::move(options)), operands_(std::move(operands)) {}

    [[nodiscard]] bool has(std::string_view option) const noexcept { return value(option).has_value(); }
    /// The last one counts; empty for an option without a value.
    [[nodiscard]] std::optional<std::string_view> value(std::string_view option) const noexcept;
    [[nodiscard]] const std::vector<std::string_view>& operands() const noexcept { return operands_; }

private:
    std::vector<Given> options_;
    std::vector<std::string_view> operands_;
};

/// What a command runs with. Everything in it outlives the run.
struct Session {
    Output& output;
    std::stop_token stop;  ///< Ctrl+C
    const QLocale& locale; ///< for sizes and dates
};

/// One command of the program. Its arguments have been checked against `options` and the number of operands;
/// what the values mean is the command's to check, and answered through Output::wrongUsage.
struct Command {
    std::string_view name;
    std::string_view summaryKey;
    std::string_view operands; ///< as the help shows them
    std::size_t fewestOperands;
    std::size_t mostOperands;
    std::span<const Option> options;
    ExitStatus (*run)(const Arguments& arguments, const Session& session);
};

/// All commands, in the order of the help.
[[nodiscard]] std::span<const Command* const> commands();
/// The options that every command takes.
[[nodiscard]] std::span<const Option> commonOptions();

} // namespace ombrel::cli
