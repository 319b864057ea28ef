#include "cli/Commands.h"
#include "cli/OperationJob.h"
#include "cli/Output.h"
#include "operations/FileOperationService.h"

#include <array>
#include <limits>

namespace ombrel::cli {
namespace {

constexpr std::array options = {AnswerPolicy::conflictOption, AnswerPolicy::errorOption};

ExitStatus transfer(FileOperationKind kind, const Command& command, const Arguments& arguments,
                    const Session& session) {
    auto job = JobArguments::from(arguments);
    if (!job) return session.output.wrongUsage(job.error(), &command);
    const FileURL destination = job->takeLast();
    const auto sources = job->references();
    auto plan =
        JobPlan::transfer(FileOperationService(), kind, {sources.begin(), sources.end()}, destination);
    return print(run(std::move(plan), job->policy, session), arguments, session);
}

ExitStatus copy(const Arguments& arguments, const Session& session) {
    return transfer(FileOperationKind::copy, copyCommand, arguments, session);
}

ExitStatus move(const Arguments& arguments, const Session& session) {
    return transfer(FileOperationKind::move, moveCommand, arguments, session);
}

} // namespace

const Command copyCommand = {
    .name = "copy",
    .summaryKey = "cli.copy.summary",
    .operands = "SOURCE… FOLDER",
    .fewestOperands = 2,
    .mostOperands = std::numeric_limits<std::size_t>::max(),
    .options = options,
    .run = copy,
};

const Command moveCommand = {
    .name = "move",
    .summaryKey = "cli.move.summary",
    .operands = "SOURCE… FOLDER",
    .fewestOperands = 2,
    .mostOperands = std::numeric_limits<std::size_t>::max(),
    .options = options,
    .run = move,
};

} // namespace ombrel::cli
