#include "cli/Commands.h"
#include "cli/JSONObject.h"
#include "cli/Output.h"
#include "operations/SystemTrash.h"

#include <array>
#include <thread>

namespace ombrel::cli {
namespace {

constexpr auto options = std::to_array<Option>({{"sizes", "", "cli.trashList.sizes"}});

std::string jsonLine(const TrashedItem& item) {
    JSONObject object;
    object.addBytes("location", item.location.path());
    if (item.original)
        object.addBytes("original", item.original->path());
    else
        object.add("original", std::nullopt);
    object.add("deleted", item.deletedAt);
    object.add("size", item.size);
    return std::move(object).line();
}

ExitStatus listTrash(const Arguments& arguments, const Session& session) {
    auto& output = session.output;
    const auto sizes = arguments.has("sizes") ? TrashSizes::counted : TrashSizes::known;
    TrashListing listing;
    std::jthread([&] { listing = SystemTrash().list(sizes, session.stop); }).join();
    for (const auto& item : listing.items) {
        if (arguments.has("json")) {
            output.write(jsonLine(item));
        } else {
            output.write(item.location.path());
            if (item.original) output.write("\t" + item.original->path());
            output.write({arguments.has("0") ? "\0" : "\n", 1});
        }
        if (!item.original)
            output.note(Texts::localized("cli.error.item",
                                         {item.location.path(), Texts::localized("trash.unrecorded")}));
    }
    for (const auto& url : listing.unreadable)
        output.failed(url.path(), {"trash.unreadable"});
    return session.stop.stop_requested() ? ExitStatus::interrupted : ExitStatus::success;
}

} // namespace

const Command trashListCommand = {
    .name = "trash-list",
    .summaryKey = "cli.trashList.summary",
    .operands = "",
    .fewestOperands = 0,
    .mostOperands = 0,
    .options = options,
    .run = listTrash,
};

} // namespace ombrel::cli
