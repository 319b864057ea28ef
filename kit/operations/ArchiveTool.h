#pragma once

#include "operations/ArchiveFailure.h"
#include "operations/ArchiveProgressSource.h"
#include "operations/JobRun.h"

#include <chrono>
#include <cstdint>
#include <expected>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace ombrel {

/// How archives are made and extracted, where a test or a package needs it otherwise.
struct ArchiveSettings {
    /// Bytes from which one source alone is left to the tool for large archives.
    std::int64_t dittoLimit = 0xFFFF'0000;
    std::string toolFolders = "/usr/bin:/bin"; ///< where the tools are, joined by ":"
    std::chrono::milliseconds grace{3000};     ///< from the request to end until a tool is killed
};

/// Connects a run with the job it is a part of.
struct ArchiveMonitor {
    ArchiveProgressSource& source;
    JobRun& run;
    /// Turns the source's progress into that of the job; the same without it.
    std::function<OperationProgress(const OperationProgress&)> scaled = {};
};

/// The tools that archives are made and extracted with.
namespace ArchiveTool {

/// The Debian package that brings a tool.
[[nodiscard]] std::string_view packageOf(std::string_view tool);

struct Command {
    std::string tool;
    std::vector<std::string> arguments;
    int folder = -1; ///< an open folder to run in
    int input = -1;  ///< an open file that becomes its standard input
    int output = -1; ///< an open file that becomes its standard output
    const char* locale = "C.UTF-8";
};

/// Runs a tool until it ends, pauses it while the job is paused and ends it when the job is cancelled.
/// Failures: `cancelled`; `tool` for an exit status other than 0 and for a tool that is not there;
/// `operation` with `noSpace` when the tool says so or `target` (an open file; -1 for none) has no room left.
/// Blocking.
[[nodiscard]] std::expected<void, ArchiveFailure> run(const Command& command, const ArchiveSettings& settings,
                                                      const ArchiveMonitor& monitor, int target = -1);

} // namespace ArchiveTool
} // namespace ombrel
