#include "cli/Commands.h"
#include "cli/OperationJob.h"
#include "cli/Output.h"
#include "operations/FileOperationService.h"

#include <array>
#include <limits>
#include <utility>
#include <vector>

namespace ombrel::cli {
namespace {

constexpr auto options = std::to_array<Option>({
    AnswerPolicy::conflictOption,
    AnswerPolicy::errorOption,
    {"parents", "", "cli.restore.parents"},
});

ExitStatus restore(const Arguments& arguments, const Session& session) {
    const auto job = JobArguments::from(arguments);
    if (!job) return session.output.wrongUsage(job.error(), &restoreCommand);
    const auto folders = arguments.has("parents") ? MissingFolders::make : MissingFolders::refuse;
    std::vector<PutBackItem> items;
    for (auto& item : job->references())
        items.push_back({std::move(item), std::nullopt});
    auto plan = JobPlan::putBack(FileOperationService(), std::move(items), folders);
    return print(run(std::move(plan), job->policy, session), arguments, session);
}

} // namespace

const Command restoreCommand = {
    .name = "restore",
    .summaryKey = "cli.restore.summary",
    .operands = "TRASHED-PATH…",
    .fewestOperands = 1,
    .mostOperands = std::numeric_limits<std::size_t>::max(),
    .options = options,
    .run = restore,
};

} // namespace ombrel::cli
