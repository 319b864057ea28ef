#include "cli/Commands.h"
#include "cli/Location.h"
#include "cli/OperationJob.h"
#include "cli/Output.h"
#include "operations/FileOperationService.h"

#include <string>
#include <utility>

namespace ombrel::cli {
namespace {

ExitStatus rename(const Arguments& arguments, const Session& session) {
    const auto url = locationOf(arguments.operands()[0]);
    if (!url) return session.output.wrongUsage(url.error(), &renameCommand);
    auto plan =
        JobPlan::rename(FileOperationService(), {*url, std::nullopt}, std::string(arguments.operands()[1]));
    return print(run(std::move(plan), {}, session), arguments, session);
}

} // namespace

const Command renameCommand = {
    .name = "rename",
    .summaryKey = "cli.rename.summary",
    .operands = "PATH NAME",
    .fewestOperands = 2,
    .mostOperands = 2,
    .options = {},
    .run = rename,
};

} // namespace ombrel::cli
