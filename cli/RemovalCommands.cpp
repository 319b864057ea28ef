#include "cli/Commands.h"
#include "cli/Location.h"
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
    const auto policy = AnswerPolicy::from(arguments);
    if (!policy) return session.output.wrongUsage(policy.error(), &command);
    const auto urls = locationsOf(arguments.operands());
    if (!urls) return session.output.wrongUsage(urls.error(), &command);
    std::vector<FileReference> items;
    for (const auto& url : *urls)
        items.push_back({url, std::nullopt});
    return print(run(remove(FileOperationService(), std::move(items)), *policy, session), arguments, session);
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
