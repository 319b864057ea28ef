#pragma once

#include "base/Text.h"
#include "cli/Command.h"

#include <stop_token>
#include <string>
#include <string_view>
#include <utility>

namespace ombrel::cli {

/// The two streams of the program. Results go to standard output as bytes, failures and notes to standard
/// error as one sentence a line. Main thread.
class Output {
public:
    /// After `stop` a reader that does not read is not waited for: what it has not taken is dropped.
    explicit Output(std::stop_token stop) : stop_(std::move(stop)) {}
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    /// Appends to standard output, which is buffered until `flush`.
    void write(std::string_view bytes);
    /// Writes out what is buffered, for results that come bit by bit. False when standard output takes
    /// nothing any more, so that making more of it is of no use.
    bool flush();

    /// A failure about the item at `path` (bytes as the kernel has them). The program will exit with a
    /// failure.
    void failed(std::string_view path, const Text& reason);
    /// A line for whoever follows the work; no failure.
    void note(std::string_view line);
    /// Whether somebody watches standard error, so that `status` is worth calling.
    [[nodiscard]] bool isWatched() const;
    /// Shows what goes on right now, in place of what was shown before; it goes when anything else is written
    /// there. At most as wide as the terminal. A terminal that takes nothing now is not waited for.
    void status(std::string_view text);
    /// Shows a question whose answer is typed behind it.
    void prompt(std::string_view text);
    /// What is wrong with the words that were typed, and where to look for what is right.
    ExitStatus wrongUsage(const Text& reason, const Command* command = nullptr);

    /// Writes out what is buffered and answers how the program ends: `success` becomes `failure` when a
    /// failure was told or standard output did not take everything (the reason is told, unless its reader has
    /// just gone away).
    [[nodiscard]] ExitStatus finish(ExitStatus status);

private:
    void clearStatus();

    int writeAll(int fd, std::string_view bytes) const;

    const std::stop_token stop_;
    std::string buffer_;
    bool hasFailed_ = false;
    bool hasStatus_ = false;
    int writeError_ = 0; ///< why standard output takes no more
};

} // namespace ombrel::cli
