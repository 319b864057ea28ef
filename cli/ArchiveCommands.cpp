#include "cli/Commands.h"
#include "cli/OperationJob.h"
#include "cli/Output.h"
#include "operations/JobPlan.h"

#include <array>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace ombrel::cli {
namespace {

constexpr std::array compressOptions = {Option{"name", "NAME", "cli.compress.name"},
                                        AnswerPolicy::errorOption};
constexpr std::array extractOptions = {AnswerPolicy::errorOption};

/// What came into being has a name that nobody typed, so its path is printed, once for all its sources.
ExitStatus tell(const OperationReport& report, const Arguments& arguments, const Session& session) {
    const FileURL* last = nullptr;
    for (const auto& item : report.items) {
        const auto& made = item.outcome.destination();
        if (arguments.has("json") || !made || (last && *last == *made)) continue;
        last = &*made;
        session.output.write(made->path());
        session.output.write({arguments.has("0") ? "\0" : "\n", 1});
    }
    return print(report, arguments, session);
}

ExitStatus compress(const Arguments& arguments, const Session& session) {
    auto job = JobArguments::from(arguments);
    if (!job) return session.output.wrongUsage(job.error(), &compressCommand);
    const FileURL folder = job->takeLast();
    auto plan =
        JobPlan::compress(job->references(), folder, std::string(arguments.value("name").value_or("")));
    return tell(run(std::move(plan), job->policy, session), arguments, session);
}

ExitStatus extract(const Arguments& arguments, const Session& session) {
    const auto job = JobArguments::from(arguments);
    if (!job) return session.output.wrongUsage(job.error(), &extractCommand);
    return tell(run(JobPlan::extract(job->references()), job->policy, session), arguments, session);
}

} // namespace

const Command compressCommand = {
    .name = "compress",
    .summaryKey = "cli.compress.summary",
    .operands = "SOURCE… FOLDER",
    .fewestOperands = 2,
    .mostOperands = std::numeric_limits<std::size_t>::max(),
    .options = compressOptions,
    .run = compress,
};

const Command extractCommand = {
    .name = "extract",
    .summaryKey = "cli.extract.summary",
    .operands = "ARCHIVE…",
    .fewestOperands = 1,
    .mostOperands = std::numeric_limits<std::size_t>::max(),
    .options = extractOptions,
    .run = extract,
};

} // namespace ombrel::cli
