#include "base/PathInput.h"
#include "cli/Commands.h"
#include "cli/JSONObject.h"
#include "cli/Location.h"
#include "cli/Output.h"

#include <array>
#include <optional>

namespace ombrel::cli {
namespace {

constexpr auto options = std::to_array<Option>({
    {"relative-to", "FOLDER", "cli.parsePath.relativeTo"},
    {"home", "FOLDER", "cli.parsePath.home"},
});

/// The folder that an option names, nothing when it is not given.
std::expected<std::optional<FileURL>, Text> folderOf(const Arguments& arguments, std::string_view option) {
    const auto given = arguments.value(option);
    if (!given) return std::nullopt;
    auto url = locationOf(*given);
    if (!url) return std::unexpected(url.error());
    return *std::move(url);
}

ExitStatus parsePath(const Arguments& arguments, const Session& session) {
    auto& output = session.output;
    const auto base = folderOf(arguments, "relative-to"), home = folderOf(arguments, "home");
    for (const auto& folder : {base, home})
        if (!folder) return output.wrongUsage(folder.error(), &parsePathCommand);
    const auto text = arguments.operands().front();
    const auto result = PathInput::parse(text, *base, home->value_or(PathInput::userHomeDirectory()));
    if (arguments.has("json")) {
        JSONObject object;
        object.add("result", result ? "url" : rawValue(result.error()));
        if (result)
            object.addBytes("path", result->path());
        else
            object.add("path", std::nullopt);
        output.write(std::move(object).line());
    } else if (result) {
        output.write(result->path());
        output.write({arguments.has("0") ? "\0" : "\n", 1});
    }
    if (!result) {
        const auto key = PathInput::messageKey(result.error());
        output.failed(text, {key.empty() ? "cli.parsePath.empty" : key});
    }
    return ExitStatus::success;
}

} // namespace

const Command parsePathCommand = {
    .name = "parse-path",
    .summaryKey = "cli.parsePath.summary",
    .operands = "TEXT",
    .fewestOperands = 1,
    .mostOperands = 1,
    .options = options,
    .run = parsePath,
};

} // namespace ombrel::cli
