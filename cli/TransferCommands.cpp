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

constexpr std::array options = {AnswerPolicy::conflictOption, AnswerPolicy::errorOption};

ExitStatus transfer(FileOperationKind kind, const Command& command, const Arguments& arguments,
                    const Session& session) {
    const auto policy = AnswerPolicy::from(arguments);
    if (!policy) return session.output.wrongUsage(policy.error(), &command);
    auto urls = locationsOf(arguments.operands());
    if (!urls) return session.output.wrongUsage(urls.error(), &command);
    const FileURL destination = urls->back();
    urls->pop_back();
    std::vector<TransferItem> items;
    for (const auto& url : *urls)
        items.emplace_back(FileReference{url, std::nullopt});
    auto plan = JobPlan::transfer(FileOperationService(), kind, std::move(items), destination);
    return print(run(std::move(plan), *policy, session), arguments, session);
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
