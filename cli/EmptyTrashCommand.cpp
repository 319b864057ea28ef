#include "base/FileName.h"
#include "cli/Commands.h"
#include "cli/OperationJob.h"
#include "cli/Output.h"
#include "operations/FileOperationService.h"

#include <array>
#include <utility>
#include <vector>

namespace ombrel::cli {
namespace {

constexpr std::array options = {AnswerPolicy::errorOption};

ExitStatus emptyTrash(const Arguments& arguments, const Session& session) {
    const auto policy = AnswerPolicy::from(arguments);
    if (!policy) return session.output.wrongUsage(policy.error(), &emptyTrashCommand);
    std::vector<FileURL> unrecorded, unreadable;
    JobPlan plan{.kind = FileOperationKind::delete_};
    plan.work = [&](const OperationHooks& hooks, const std::stop_token& stop) {
        auto emptied = FileOperationService().emptyTrash(hooks, stop);
        unrecorded = std::move(emptied.unrecorded);
        unreadable = std::move(emptied.unreadable);
        return std::move(emptied.report);
    };
    const auto report = run(std::move(plan), *policy, session);
    for (const auto& url : unrecorded)
        session.output.note(Texts::localized(
            "cli.error.item", {FileName::displayText(url.path()), Texts::localized("trash.unrecordedKept")}));
    for (const auto& url : unreadable)
        session.output.failed(url.path(), {"trash.unreadable"});
    return print(report, arguments, session);
}

} // namespace

const Command emptyTrashCommand = {
    .name = "empty-trash",
    .summaryKey = "cli.emptyTrash.summary",
    .operands = "",
    .fewestOperands = 0,
    .mostOperands = 0,
    .options = options,
    .run = emptyTrash,
};

} // namespace ombrel::cli
