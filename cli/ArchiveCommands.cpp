#include "cli/Commands.h"
#include "cli/Location.h"
#include "cli/OperationJob.h"
#include "cli/Output.h"
#include "operations/JobPlan.h"

#include <array>
#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace ombrel::cli {
namespace {

constexpr std::array compressOptions = {Option{"name", "NAME", "cli.compress.name"},
                                        AnswerPolicy::errorOption};
constexpr std::array extractOptions = {AnswerPolicy::errorOption};

std::vector<FileReference> referencesTo(const std::vector<FileURL>& urls) {
    std::vector<FileReference> items;
    for (const auto& url : urls)
        items.push_back({url, std::nullopt});
    return items;
}

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
    const auto policy = AnswerPolicy::from(arguments);
    if (!policy) return session.output.wrongUsage(policy.error(), &compressCommand);
    auto urls = locationsOf(arguments.operands());
    if (!urls) return session.output.wrongUsage(urls.error(), &compressCommand);
    const FileURL folder = urls->back();
    urls->pop_back();
    auto plan =
        JobPlan::compress(referencesTo(*urls), folder, std::string(arguments.value("name").value_or("")));
    return tell(run(std::move(plan), *policy, session), arguments, session);
}

ExitStatus extract(const Arguments& arguments, const Session& session) {
    const auto policy = AnswerPolicy::from(arguments);
    if (!policy) return session.output.wrongUsage(policy.error(), &extractCommand);
    const auto urls = locationsOf(arguments.operands());
    if (!urls) return session.output.wrongUsage(urls.error(), &extractCommand);
    return tell(run(JobPlan::extract(referencesTo(*urls)), *policy, session), arguments, session);
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
