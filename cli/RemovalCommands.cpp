#include "cli/Commands.h"
#include "cli/OperationJob.h"
#include "cli/Output.h"
#include "operations/FileOperationService.h"

#include <array>
#include <limits>
#include <vector>

namespace ombrel::cli {
namespace {

constexpr std::array options = {AnswerPolicy::errorOption};

using Remove = JobPlan (*)(const FileOperationService&, std::vector<FileReference>);

ExitStatus removeBy(Remove remove, const Command& command, const Arguments& arguments,
                    const Session& session) {
    const auto job = JobArguments::from(arguments);
    if (!job) return session.output.wrongUsage(job.error(), &command);
    auto plan = remove(FileOperationService(), job->references());
    return print(run(std::move(plan), job->policy, session), arguments, session);
}

ExitStatus trash(const Arguments& arguments, const Session& session) {
    return removeBy(&JobPlan::moveToTrash, trashCommand, arguments, session);
}

ExitStatus removeForGood(const Arguments& arguments, const Session& session) {
    return removeBy(&JobPlan::deletePermanently, deleteCommand, arguments, session);
}

} // namespace

const Command trashCommand = {
    .name = "trash",
    .summaryKey = "cli.trash.summary",
    .operands = "PATH…",
    .fewestOperands = 1,
    .mostOperands = std::numeric_limits<std::size_t>::max(),
    .options = options,
    .run = trash,
};

const Command deleteCommand = {
    .name = "delete",
    .summaryKey = "cli.delete.summary",
    .operands = "PATH…",
    .fewestOperands = 1,
    .mostOperands = std::numeric_limits<std::size_t>::max(),
    .options = options,
    .run = removeForGood,
};

} // namespace ombrel::cli
