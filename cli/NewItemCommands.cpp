#include "cli/Commands.h"
#include "cli/Location.h"
#include "cli/OperationJob.h"
#include "cli/Output.h"
#include "operations/FileOperationService.h"

#include <string>
#include <utility>

namespace ombrel::cli {
namespace {

using Create = JobPlan (*)(const FileOperationService&, const FileURL&, std::string);

/// The name may have been taken and numbered, so the new item's path is printed.
ExitStatus make(Create create, const Command& command, const Arguments& arguments, const Session& session) {
    const auto folder = locationOf(arguments.operands()[0]);
    if (!folder) return session.output.wrongUsage(folder.error(), &command);
    auto plan = create(FileOperationService(), *folder, std::string(arguments.operands()[1]));
    const auto report = run(std::move(plan), {}, session);
    const auto& outcome = report.items.front().outcome;
    if (outcome.isSuccess() && !arguments.has("json")) {
        session.output.write(outcome.destination()->path());
        session.output.write({arguments.has("0") ? "\0" : "\n", 1});
    }
    return print(report, arguments, session);
}

ExitStatus newFolder(const Arguments& arguments, const Session& session) {
    return make(&JobPlan::createFolder, newFolderCommand, arguments, session);
}

ExitStatus newFile(const Arguments& arguments, const Session& session) {
    return make(&JobPlan::createEmptyFile, newFileCommand, arguments, session);
}

} // namespace

const Command newFolderCommand = {
    .name = "new-folder",
    .summaryKey = "cli.newFolder.summary",
    .operands = "FOLDER NAME",
    .fewestOperands = 2,
    .mostOperands = 2,
    .options = {},
    .run = newFolder,
};

const Command newFileCommand = {
    .name = "new-file",
    .summaryKey = "cli.newFile.summary",
    .operands = "FOLDER NAME",
    .fewestOperands = 2,
    .mostOperands = 2,
    .options = {},
    .run = newFile,
};

} // namespace ombrel::cli
