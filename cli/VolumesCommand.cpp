#include "base/POSIXFailure.h"
#include "cli/Commands.h"
#include "cli/JSONObject.h"
#include "cli/MainLoop.h"
#include "cli/Output.h"
#include "services/VolumeMonitor.h"

#include <QObject>

#include <array>
#include <cerrno>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace ombrel::cli {
namespace {

using Event = VolumeMonitor::Event;

constexpr auto options = std::to_array<Option>({{"watch", "", "cli.volumes.watch"}});

template <typename T>
std::optional<T> known(const Metadata<T>& metadata) {
    return metadata.hasValue() ? std::optional(metadata.value()) : std::nullopt;
}

bool isSure(const Metadata<bool>& flag) {
    return flag.hasValue() && flag.value();
}

bool isSurelyNot(const Metadata<bool>& flag) {
    return flag.hasValue() && !flag.value();
}

std::string jsonLine(const VolumeInfo& volume) {
    JSONObject object;
    object.addBytes("name", volume.displayName());
    object.addBytes("path", volume.url.path());
    object.add("type", known(volume.fileSystemType));
    object.add("total", known(volume.totalCapacity));
    object.add("available", known(volume.availableCapacity));
    object.add("root", volume.isRootFileSystem);
    object.add("readOnly", known(volume.isReadOnly));
    object.add("local", known(volume.isLocal));
    object.add("removable", known(volume.isRemovable));
    object.add("ejectable", known(volume.isEjectable));
    object.add("internal", known(volume.isInternal));
    object.addErrorName("error",
                        volume.totalCapacity.isFailed() ? volume.totalCapacity.errorNumber() : std::nullopt);
    return std::move(object).line();
}

/// What is out of the ordinary about a volume, "-" when nothing is.
std::string traitsOf(const VolumeInfo& volume) {
    const std::pair<bool, const char*> traits[] = {
        {volume.isRootFileSystem, "root"},         {isSure(volume.isReadOnly), "readOnly"},
        {isSurelyNot(volume.isLocal), "remote"},   {isSure(volume.isRemovable), "removable"},
        {isSure(volume.isEjectable), "ejectable"}, {isSurelyNot(volume.isInternal), "external"}};
    std::string text;
    for (const auto& [applies, name] : traits)
        if (applies) text.append(text.empty() ? "" : ",").append(name);
    return text.empty() ? "-" : text;
}

std::string plainLine(const VolumeInfo& volume) {
    const auto bytes = [](const Metadata<std::int64_t>& capacity) {
        return capacity.hasValue() ? std::to_string(capacity.value()) : "-";
    };
    return volume.displayName() + '\t' + volume.url.path() + '\t' +
           known(volume.fileSystemType).value_or("-") + '\t' + bytes(volume.totalCapacity) + '\t' +
           bytes(volume.availableCapacity) + '\t' + traitsOf(volume);
}

std::string_view nameOf(Event::Kind kind) {
    switch (kind) {
    case Event::Kind::mounted: return "mounted";
    case Event::Kind::unmounted: return "unmounted";
    case Event::Kind::renamed: break;
    }
    return "renamed";
}

std::string jsonLine(const Event& event) {
    JSONObject object;
    object.add("event", nameOf(event.kind));
    object.addBytes("path", event.url.path());
    return std::move(object).line();
}

void print(const Arguments& arguments, Output& output, const auto& what, const std::string& plain) {
    output.write(arguments.has("json") ? jsonLine(what) : plain + (arguments.has("0") ? '\0' : '\n'));
}

void list(const VolumeMonitor& monitor, const Arguments& arguments, Output& output) {
    if (monitor.volumes().empty()) output.failed("/", {"cli.volumes.noTable"});
    for (const auto& volume : monitor.volumes()) {
        print(arguments, output, volume, plainLine(volume));
        if (!volume.totalCapacity.isFailed()) continue;
        const int reason = volume.totalCapacity.errorNumber().value_or(EIO);
        output.failed(volume.url.path(), reason == ETIMEDOUT
                                             ? Text{"cli.volumes.noAnswer"}
                                             : Text{"cli.volumes.room", {POSIXFailure{reason}.systemText()}});
    }
}

ExitStatus watch(VolumeMonitor& monitor, const Arguments& arguments, const Session& session) {
    auto& output = session.output;
    bool isRead = true; // standard output is
    QObject::connect(&monitor, &VolumeMonitor::observed, [&](const Event& event) {
        print(arguments, output, event, std::string(nameOf(event.kind)) + '\t' + event.url.path());
        isRead = output.flush();
    });
    monitor.start();
    if (!runUntil([&] { return monitor.isSettled() || !isRead; }, session.stop))
        return ExitStatus::interrupted;
    output.note(Texts::localized("cli.volumes.watching"));
    return runUntil([&] { return !isRead; }, session.stop) ? ExitStatus::failure : ExitStatus::interrupted;
}

ExitStatus runVolumes(const Arguments& arguments, const Session& session) {
    VolumeMonitor monitor;
    if (arguments.has("watch")) return watch(monitor, arguments, session);
    monitor.start();
    if (!runUntil([&] { return monitor.isSettled(); }, session.stop)) return ExitStatus::interrupted;
    list(monitor, arguments, session.output);
    return ExitStatus::success;
}

} // namespace

const Command volumesCommand = {
    .name = "volumes",
    .summaryKey = "cli.volumes.summary",
    .operands = "",
    .fewestOperands = 0,
    .mostOperands = 0,
    .options = options,
    .run = runVolumes,
};

} // namespace ombrel::cli
