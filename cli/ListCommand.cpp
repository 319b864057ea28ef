#include "base/FileName.h"
#include "cli/Commands.h"
#include "cli/ItemObject.h"
#include "cli/Location.h"
#include "cli/Output.h"
#include "listing/DirectoryProvider.h"

#include <array>
#include <charconv>
#include <expected>
#include <string>
#include <utility>

namespace ombrel::cli {
namespace {

constexpr auto options = std::to_array<Option>({
    {"sort", "KEY", "cli.list.sort"},
    {"descending", "", "cli.list.descending"},
    {"mixed", "", "cli.list.mixed"},
    {"all", "", "cli.list.all"},
    {"batches", "", "cli.list.batches"},
    {"first-batch", "N", "cli.list.firstBatch"},
});

std::string jsonLine(FileItemView item) {
    JSONObject object;
    describe(object, item);
    return std::move(object).line();
}

/// What the arguments ask for, or what is wrong with one.
std::expected<DirectoryRequest, Text> requestOf(const Arguments& arguments) {
    DirectoryRequest request;
    if (const auto key = arguments.value("sort")) {
        const auto known = FileSort::keyFromRawValue(*key);
        if (!known) {
            std::string possible;
            for (const auto each : FileSort::allKeys)
                possible += (possible.empty() ? "" : ", ") + std::string(FileSort::rawValue(each));
            return std::unexpected(
                Text{"cli.error.unknownValue", {"--sort", FileName::displayText(*key), possible}});
        }
        request.sort.key = *known;
    }
    if (const auto number = arguments.value("first-batch")) {
        const auto* const end = number->data() + number->size();
        const auto [parsedTo, error] = std::from_chars(number->data(), end, request.firstBatchSize);
        if (error != std::errc() || parsedTo != end)
            return std::unexpected(
                Text{"cli.error.notANumber", {"--first-batch", FileName::displayText(*number)}});
    }
    request.sort.ascending = !arguments.has("descending");
    request.sort.foldersFirst = !arguments.has("mixed");
    auto url = locationOf(arguments.operands().front());
    if (!url) return std::unexpected(url.error());
    request.url = *std::move(url);
    return request;
}

void print(const DirectorySnapshot& snapshot, const Arguments& arguments, const Session& session) {
    auto& output = session.output;
    const bool showsAll = arguments.has("all"), isJSON = arguments.has("json");
    const char end = arguments.has("0") ? '\0' : '\n';
    for (const auto item : snapshot.items()) {
        if (session.stop.stop_requested()) return;
        if (!showsAll && (item.isHidden() || item.isProtected())) continue;
        if (isJSON) {
            output.write(jsonLine(item));
        } else {
            output.write(item.name());
            output.write({&end, 1});
        }
        if (const auto failure = item.readError())
            output.failed(item.url().path(), {"cli.list.unreadable", {failure->systemText()}});
    }
}

void tell(const DirectorySnapshot& snapshot, Output& output) {
    output.note("snapshot " + std::to_string(snapshot.count()) +
                (snapshot.isComplete ? " complete " : " partial ") +
                std::to_string(snapshot.unreadableCount));
}

ExitStatus list(const Arguments& arguments, const Session& session) {
    auto request = requestOf(arguments);
    if (!request) return session.output.wrongUsage(request.error(), &listCommand);
    const auto path = request->url.path();
    auto stream = DirectoryProvider().snapshots(*std::move(request));
    std::optional<DirectorySnapshot> latest;
    for (;;) {
        auto next = stream.next(session.stop);
        if (!next && next.error().wasCancelled()) return ExitStatus::interrupted;
        if (!next || !*next) {
            // What was read before a folder failed is worth having.
            if (latest) print(*latest, arguments, session);
            if (!next) session.output.failed(path, next.error().error().text());
            return session.stop.stop_requested() ? ExitStatus::interrupted : ExitStatus::success;
        }
        latest = *std::move(*next);
        if (arguments.has("batches")) tell(*latest, session.output);
    }
}

} // namespace

const Command listCommand = {
    .name = "list",
    .summaryKey = "cli.list.summary",
    .operands = "FOLDER",
    .fewestOperands = 1,
    .mostOperands = 1,
    .options = options,
    .run = list,
};

} // namespace ombrel::cli
