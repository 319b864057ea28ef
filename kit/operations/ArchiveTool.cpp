#include "operations/ArchiveTool.h"

#include "listing/POSIXFiles.h"
#include "operations/ToolProcess.h"
#include "operations/ToolWords.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <utility>

namespace ombrel::ArchiveTool {
namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds lookInterval(50);
constexpr std::chrono::milliseconds askInterval(300);

struct Package {
    std::string_view tool, package;
};
constexpr std::array packages = {
    Package{"zip", "zip"},     Package{"zipinfo", "unzip"},
    Package{"unzip", "unzip"}, Package{"bsdtar", "libarchive-tools"},
    Package{"gzip", "gzip"},   Package{"bzip2", "bzip2"},
    Package{"xz", "xz-utils"},
};

class Run {
public:
    Run(ToolProcess& process, const ArchiveSettings& settings, const ArchiveMonitor& monitor)
        : process_(process), settings_(settings), monitor_(monitor) {}

    /// What the tool exited with; nothing when the job was cancelled.
    std::optional<int> untilEnd() {
        for (;;) {
            const auto status = process_.wait(lookInterval);
            drain();
            if (status) return settle(*status);
            take();
            monitor_.run.tellSometimes();
            if (!goesOn()) {
                process_.terminate(settings_.grace);
                return std::nullopt;
            }
        }
    }

    [[nodiscard]] const ToolWords& words() const noexcept { return words_; }

private:
    int settle(int status) {
        // Everything that held the pipes has been killed by now.
        constexpr std::chrono::seconds patience(5);
        for (auto* stream : {&process_.output(), &process_.errors()})
            (void)stream->done.try_acquire_for(patience);
        drain();
        for (auto* stream : {&process_.output(), &process_.errors()})
            if (const auto rest = stream->pendingLine(); !rest.empty())
                words_.add(rest, monitor_.source.consume(rest));
        if (status == 0) monitor_.source.finish();
        take();
        if (status == 0) monitor_.run.tell();
        return status;
    }

    void drain() {
        for (auto* stream : {&process_.output(), &process_.errors()}) {
            for (const auto& line : stream->takeLines())
                words_.add(line, monitor_.source.consume(line));
            if (const auto rest = stream->pendingLine(); !rest.empty()) monitor_.source.partial(rest);
        }
        const int number = monitor_.source.signalToAsk();
        if (number == 0 || Clock::now() - lastAsked_ < askInterval) return;
        lastAsked_ = Clock::now();
        process_.signalOnlyTool(number);
    }

    void take() {
        const auto progress = monitor_.source.progress();
        monitor_.run.progress = monitor_.scaled ? monitor_.scaled(progress) : progress;
    }

    /// Holds the tool while the job is paused.
    bool goesOn() {
        const bool isPaused = monitor_.run.isPaused();
        if (isPaused) process_.signal(SIGSTOP);
        const bool goesOn = monitor_.run.goesOn();
        if (isPaused) process_.signal(SIGCONT);
        return goesOn;
    }

    ToolProcess& process_;
    const ArchiveSettings& settings_;
    const ArchiveMonitor& monitor_;
    ToolWords words_;
    Clock::time_point lastAsked_ = Clock::now();
};

bool isFull(int target) {
    constexpr std::int64_t nearlyNothing = 64 << 10;
    if (target < 0) return false;
    const auto space = POSIX::space(target);
    return space && space->available < nearlyNothing;
}

} // namespace

std::string_view packageOf(std::string_view tool) {
    const auto found = std::ranges::find(packages, tool, &Package::tool);
    return found == packages.end() ? tool : found->package;
}

std::expected<void, ArchiveFailure> run(const Command& command, const ArchiveSettings& settings,
                                        const ArchiveMonitor& monitor, int target) {
    if (!monitor.run.goesOn()) return std::unexpected(ArchiveFailure::Case::cancelled);
    auto path = ToolProcess::find(command.tool, settings.toolFolders);
    if (!path) return std::unexpected(ArchiveFailure::missing(command.tool));
    auto process = ToolProcess::start({.path = std::move(*path),
                                       .words = command.arguments,
                                       .folder = command.folder,
                                       .input = command.input,
                                       .output = command.output,
                                       .locale = command.locale});
    if (!process) return std::unexpected(FileOperationError::from(process.error()));
    Run run(**process, settings, monitor);
    const auto status = run.untilEnd();
    if (!status) return std::unexpected(ArchiveFailure::Case::cancelled);
    if (*status == 0) return {};
    const auto& words = run.words();
    if (words.tellsOfNoSpace() || (!words.fault() && isFull(target)))
        return std::unexpected(FileOperationError(FileOperationError::Case::noSpace));
    return std::unexpected(ArchiveFailure::tool(command.tool, *status, words.words(), words.fault()));
}

} // namespace ombrel::ArchiveTool
