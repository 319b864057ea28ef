#include "base/Text.h"
#include "cli/Commands.h"
#include "cli/JSONObject.h"
#include "cli/Location.h"
#include "cli/MainLoop.h"
#include "cli/Output.h"
#include "listing/DirectoryError.h"
#include "services/DirectoryWatcher.h"

#include <optional>
#include <string>
#include <string_view>

namespace ombrel::cli {
namespace {

using Event = DirectoryWatcher::Event;

/// As in a pane.
constexpr DirectoryWatcher::Seconds coalescingDelay(0.25);

std::string_view nameOf(Event event) {
    switch (event) {
    case Event::contentsChanged: return "contentsChanged";
    case Event::directoryInvalidated: break;
    }
    return "directoryInvalidated";
}

std::string lineOf(Event event, const FileURL& folder, const Arguments& arguments) {
    if (!arguments.has("json")) return std::string(nameOf(event)) + (arguments.has("0") ? '\0' : '\n');
    JSONObject object;
    object.add("event", nameOf(event));
    object.addBytes("path", folder.path());
    return std::move(object).line();
}

ExitStatus runWatch(const Arguments& arguments, const Session& session) {
    auto& output = session.output;
    const auto folder = locationOf(arguments.operands().front());
    if (!folder) return output.wrongUsage(folder.error(), &watchCommand);
    std::optional<Text> end; // why there is nothing more to tell
    bool isRead = true;      // standard output is
    DirectoryWatcher watcher(coalescingDelay, [&](Event event) {
        output.write(lineOf(event, *folder, arguments));
        isRead = output.flush();
        if (event == Event::directoryInvalidated) end = Text{"cli.watch.gone"};
    });
    watcher.watch(*folder, [&](std::expected<void, POSIXFailure> watched) {
        if (watched)
            output.note(Texts::localized("cli.watch.watching"));
        else
            end = DirectoryError::from(watched.error().number).text();
    });
    if (!runUntil([&] { return end || !isRead; }, session.stop)) return ExitStatus::interrupted;
    if (end) output.failed(folder->path(), *end);
    return ExitStatus::failure;
}

} // namespace

const Command watchCommand = {
    .name = "watch",
    .summaryKey = "cli.watch.summary",
    .operands = "FOLDER",
    .fewestOperands = 1,
    .mostOperands = 1,
    .options = {},
    .run = runWatch,
};

} // namespace ombrel::cli
