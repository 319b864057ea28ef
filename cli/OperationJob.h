#pragma once

#include "cli/Command.h"
#include "operations/JobPlan.h"
#include "operations/OperationReport.h"

#include <expected>
#include <optional>
#include <vector>

namespace ombrel::cli {

/// How questions are answered. Nothing stands for `ask`.
struct AnswerPolicy {
    std::optional<ConflictChoice> conflict;
    std::optional<ErrorChoice> error;

    /// The options "conflict" and "on-error" for a command's table.
    static constexpr Option conflictOption = {"conflict", "CHOICE", "cli.option.conflict"};
    static constexpr Option errorOption = {"on-error", "CHOICE", "cli.option.onError"};

    /// From those options. Without one, questions are asked on a terminal and answered with `skip` elsewhere;
    /// the error says what is wrong with a value, or that nobody can be asked.
    [[nodiscard]] static std::expected<AnswerPolicy, Text> from(const Arguments& arguments);
};

/// What a command's job works with: the policy, and the locations that the operands name.
struct JobArguments {
    AnswerPolicy policy;
    std::vector<FileURL> urls;

    /// Fails with what is wrong with an option or an operand.
    [[nodiscard]] static std::expected<JobArguments, Text> from(const Arguments& arguments);

    /// Takes the last location off, where it is a command's destination.
    [[nodiscard]] FileURL takeLast();
    /// Whatever stands at the locations when the job comes there.
    [[nodiscard]] std::vector<FileReference> references() const;
};

/// Runs a job until it ends, with its progress shown where somebody watches and its questions answered by the
/// policy. Ctrl+C cancels it. What the plan works with may be the caller's.
[[nodiscard]] OperationReport run(JobPlan plan, const AnswerPolicy& policy, const Session& session);

/// Prints a report, as JSON or as one sentence for each item that failed, and answers how the command ends.
[[nodiscard]] ExitStatus print(const OperationReport& report, const Arguments& arguments,
                               const Session& session);

/// A number of bytes in words.
[[nodiscard]] std::string sizeWords(std::int64_t bytes, const Session& session);

} // namespace ombrel::cli
