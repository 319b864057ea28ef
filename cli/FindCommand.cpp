#include "cli/Commands.h"
#include "cli/ItemObject.h"
#include "cli/Location.h"
#include "cli/Output.h"
#include "listing/SearchProvider.h"

#include <QLocale>

#include <array>
#include <cstddef>
#include <utility>

namespace ombrel::cli {
namespace {

constexpr auto options = std::to_array<Option>({{"all", "", "cli.find.all"}});

std::string jsonLine(FileItemView item) {
    JSONObject object;
    object.addBytes("path", item.url().path());
    describe(object, item);
    return std::move(object).line();
}

void print(const FileItemList& matches, const Arguments& arguments, Output& output) {
    for (const auto item : matches) {
        if (arguments.has("json")) {
            output.write(jsonLine(item));
        } else {
            output.write(item.url().path());
            output.write({arguments.has("0") ? "\0" : "\n", 1});
        }
    }
}

ExitStatus find(const Arguments& arguments, const Session& session) {
    auto& output = session.output;
    const auto& operands = arguments.operands();
    const auto folder = locationOf(operands[0]);
    if (!folder) return output.wrongUsage(folder.error(), &findCommand);
    const bool all = arguments.has("all");
    auto matches = SearchProvider::results({.folder = *folder,
                                            .text = std::string(operands[1]),
                                            .includesHidden = all,
                                            .includesProtected = all});
    std::size_t count = 0;
    for (;;) {
        const auto batch = matches.next(session.stop);
        if (!batch && batch.error().wasCancelled()) return ExitStatus::interrupted;
        if (!batch) output.failed(folder->path(), batch.error().error().text());
        if (!batch || !*batch) break;
        count += (*batch)->size();
        print(**batch, arguments, output);
        if (!output.flush()) break;
    }
    if (count >= SearchProvider::resultLimit) {
        const auto limit = session.locale.toString(static_cast<qulonglong>(count));
        output.note(Texts::localized("cli.find.limit", {limit.toStdString()}));
    }
    return ExitStatus::success;
}

} // namespace

const Command findCommand = {
    .name = "find",
    .summaryKey = "cli.find.summary",
    .operands = "FOLDER TEXT",
    .fewestOperands = 2,
    .mostOperands = 2,
    .options = options,
    .run = find,
};

} // namespace ombrel::cli
