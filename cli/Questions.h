#pragma once

#include "cli/Command.h"
#include "operations/OperationConflict.h"
#include "operations/OperationErrorQuestion.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace ombrel::cli {

/// Puts the questions of a job to the person at the terminal: numbered choices, a star behind the number
/// makes the answer stand. Ctrl+C and the end of input answer with `cancel`. Main thread, which has nothing
/// else to do.
class Questions {
public:
    explicit Questions(const Session& session) : session_(session) {}

    /// Whether there is a terminal to ask on, for reading and for writing.
    [[nodiscard]] static bool canBeAsked();

    [[nodiscard]] ConflictDecision ask(const ConflictContext& context);
    [[nodiscard]] ErrorDecision ask(const ErrorContext& context);

private:
    struct Answer {
        std::size_t number; // counted from 0
        bool isForAll;
    };
    [[nodiscard]] std::optional<Answer> choose(std::span<const std::string> choices);
    [[nodiscard]] std::optional<std::string> readLine();
    [[nodiscard]] std::string facts(const ItemFacts& facts) const;

    const Session& session_;
    std::string unread_;
};

} // namespace ombrel::cli
