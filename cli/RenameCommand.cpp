#include "cli/Commands.h"
#include "cli/Location.h"
#include "cli/OperationJob.h"
#include "cli/Output.h"
#include "operations/FileOperationService.h"

namespace ombrel::cli {
namespace {

ExitStatus rename(const Arguments& arguments, const Session& session) {
    const auto url = locationOf(arguments.operands()[0]);
    if (!url) return session.output.wrongUsage(url.error(), &renameCommand);
    const auto job = [&](const OperationHooks&, const std::stop_token&) {
        return FileOperationService().rename(FileReference::sampling(*url), arguments.operands()[1]);
    };
    return print(run(job, {}, session), arguments, session);
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
