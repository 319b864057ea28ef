#pragma once

#include "base/OwnedFd.h"
#include "base/POSIXFailure.h"
#include "operations/StreamReader.h"

#include <sys/types.h>

#include <chrono>
#include <expected>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ombrel {

/// What to start, and with what.
struct ToolCommand {
    std::string path;               ///< the program
    std::vector<std::string> words; ///< its arguments, its own name left out
    int folder = -1;                ///< an open folder to run in; the root when there is none
    int input = -1;  ///< its standard input, shared with the caller; nothing to read when there is none
    int output = -1; ///< its standard output; the stream `output` when there is none
    const char* locale = "C.UTF-8";
};

/// A tool at work: the one place where the kit's long-running programs are started.
///
/// No shell has a part in it. The tool inherits its three standard descriptors and nothing else, has an
/// environment of its own and leads a session of its own, so that it finds no terminal to ask on and that
/// signals reach whatever it has started too. When the handle goes, so does the tool.
class ToolProcess {
public:
    /// Where `name` is a program, in the folders of `search` (joined by ":").
    [[nodiscard]] static std::optional<std::string> find(const std::string& name, const std::string& search);
    [[nodiscard]] static std::expected<std::unique_ptr<ToolProcess>, POSIXFailure>
    start(const ToolCommand& command);

    ToolProcess(const ToolProcess&) = delete;
    ToolProcess& operator=(const ToolProcess&) = delete;
    ~ToolProcess();

    [[nodiscard]] StreamReader& output() noexcept { return *output_; }
    [[nodiscard]] StreamReader& errors() noexcept { return *errors_; }

    /// Waits for the end up to so long. Answers the status once the tool has ended: what it exited with, or
    /// 128 and the number of the signal that ended it.
    [[nodiscard]] std::optional<int> wait(std::chrono::milliseconds limit);
    /// Sends a signal to the tool and what it has started; nothing once it has ended.
    void signal(int number) const noexcept;
    /// The same to the tool alone.
    void signalOnlyTool(int number) const noexcept;
    /// Ends the tool: asks it to, and kills it when it has not ended within `grace`.
    void terminate(std::chrono::milliseconds grace);

private:
    ToolProcess(pid_t process, OwnedFd handle, OwnedFd output, OwnedFd errors);

    pid_t process_;
    OwnedFd handle_; // becomes readable when the process ends
    std::optional<int> status_;
    std::unique_ptr<StreamReader> output_;
    std::unique_ptr<StreamReader> errors_;
};

} // namespace ombrel
