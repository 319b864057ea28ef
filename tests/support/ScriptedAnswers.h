#pragma once

#include "operations/OperationHooks.h"

#include <deque>
#include <vector>

namespace ombrel::testing {

/// Hooks that answer questions from a script, and keep what was asked and told. With the script used up,
/// conflicts and errors are answered with `skip`.
class ScriptedAnswers {
public:
    std::deque<ConflictDecision> conflictAnswers;
    std::deque<ErrorDecision> errorAnswers;
    std::vector<ConflictContext> conflicts;
    std::vector<ErrorContext> errors;
    std::vector<OperationProgress> reports;

    /// Valid as long as this object is.
    [[nodiscard]] OperationHooks hooks() {
        OperationHooks hooks;
        hooks.conflicts = [this](const ConflictContext& context, std::stop_token) {
            conflicts.push_back(context);
            return next(conflictAnswers);
        };
        hooks.errors = [this](const ErrorContext& context, std::stop_token) {
            errors.push_back(context);
            return next(errorAnswers);
        };
        hooks.progress = [this](const OperationProgress& progress) { reports.push_back(progress); };
        return hooks;
    }

private:
    template <typename Decision>
    static Decision next(std::deque<Decision>& script) {
        if (script.empty()) return {};
        const Decision decision = script.front();
        script.pop_front();
        return decision;
    }
};

} // namespace ombrel::testing
