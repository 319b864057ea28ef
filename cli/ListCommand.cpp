#include "base/FileName.h"
#include "cli/Commands.h"
#include "cli/JSONObject.h"
#include "cli/Location.h"
#include "cli/Output.h"
#include "listing/DirectoryProvider.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <cstring>
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

std::string_view nameOf(FileKind::Case kind) {
    switch (kind) {
    case FileKind::Case::symlink: return "symlink";
    case FileKind::Case::file: return "file";
    case FileKind::Case::directory: return "directory";
    case FileKind::Case::package: return "package";
    case FileKind::Case::other: break;
    }
    return "other";
}

std::string_view nameOf(SymlinkTarget::Case target) {
    switch (target) {
    case SymlinkTarget::Case::inaccessible: return "inaccessible";
    case SymlinkTarget::Case::file: return "file";
    case SymlinkTarget::Case::directory: return "directory";
    case SymlinkTarget::Case::broken: return "broken";
    case SymlinkTarget::Case::loop: break;
    }
    return "loop";
}

/// An error number by its name in <errno.h>, which scripts may rely on; its number where it has none.
std::string errorName(int number) {
    const char* const name = ::strerrorname_np(number);
    return name ? name : std::to_string(number);
}

std::optional<std::string> errorOf(FileItemView item) {
    if (const auto failure = item.readError()) return errorName(failure->number);
    const auto kind = item.kind();
    if (kind.which() != FileKind::Case::symlink || kind.target().errorNumber() == 0) return std::nullopt;
    return errorName(kind.target().errorNumber());
}

/// Seconds since 1970 in UTC, a number with all nine decimals that the system keeps.
std::string seconds(FileTime time) {
    // The nanoseconds count upwards from the second before, also before 1970.
    const bool isNegative = time.seconds < 0;
    auto whole = static_cast<std::uint64_t>(isNegative ? -(time.seconds + 1) : time.seconds);
    auto nanoseconds = isNegative ? 1'000'000'000 - time.nanoseconds : time.nanoseconds;
    if (nanoseconds == 1'000'000'000) {
        nanoseconds = 0;
        ++whole;
    }
    auto decimals = std::to_string(nanoseconds);
    decimals.insert(0, 9 - decimals.size(), '0');
    return (isNegative ? "-" : "") + std::to_string(whole) + '.' + decimals;
}

template <typename T>
std::optional<T> known(const Metadata<T>& metadata) {
    return metadata.hasValue() ? std::optional(metadata.value()) : std::nullopt;
}

std::string jsonLine(FileItemView item) {
    const auto kind = item.kind();
    const auto identity = item.identity();
    const auto modified = known(item.modificationDate());
    JSONObject object;
    object.addBytes("name", item.name());
    object.add("kind", nameOf(kind.which()));
    if (kind.which() == FileKind::Case::symlink)
        object.add("target", nameOf(kind.target().which()));
    else
        object.add("target", std::nullopt);
    object.add("size", known(item.size()));
    object.addLiteral("modified", modified ? seconds(*modified) : "null");
    object.add("type", known(item.typeIdentifier()));
    object.add("hidden", item.isHidden());
    object.add("device", identity ? std::optional(identity->device) : std::nullopt);
    object.add("inode", identity ? std::optional(identity->inode) : std::nullopt);
    object.add("error", errorOf(item));
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
