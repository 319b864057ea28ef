#include "cli/Output.h"

#include "base/FileName.h"
#include "base/POSIXFailure.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <utility>

namespace ombrel::cli {
namespace {

constexpr std::size_t bufferBytes = std::size_t{1} << 16;

/// What a pipe takes without a wait when it says that it takes something.
constexpr std::size_t pieceBytes = PIPE_BUF;
/// How soon a request to stop is seen while a reader keeps the program waiting.
constexpr int waitMilliseconds = 50;

/// What makes a terminal (ECMA-48) go back to the beginning of the line and erase it.
constexpr std::string_view startOfEmptyLine = "\r\x1B[K";

} // namespace

/// Answers with an errno, ECANCELED after a request to stop; 0 when all is written.
int Output::writeAll(int fd, std::string_view bytes) const {
    while (!bytes.empty()) {
        pollfd waiting{fd, POLLOUT, 0};
        if (::poll(&waiting, 1, waitMilliseconds) <= 0) {
            if (stop_.stop_requested()) return ECANCELED;
            continue;
        }
        const auto count = ::write(fd, bytes.data(), std::min(bytes.size(), pieceBytes));
        if (count >= 0)
            bytes.remove_prefix(static_cast<std::size_t>(count));
        else if (errno != EINTR && errno != EAGAIN)
            return errno;
    }
    return 0;
}

void Output::write(std::string_view bytes) {
    if (writeError_ != 0) return;
    buffer_.append(bytes);
    if (buffer_.size() >= bufferBytes) flush();
}

bool Output::flush() {
    clearStatus();
    if (writeError_ == 0) writeError_ = writeAll(STDOUT_FILENO, buffer_);
    buffer_.clear();
    return writeError_ == 0;
}

void Output::failed(std::string_view path, const Text& reason) {
    hasFailed_ = true;
    note(Texts::localized("cli.error.item", {FileName::displayText(path), reason.localized()}));
}

void Output::note(std::string_view line) {
    clearStatus();
    // One call a line, so that lines of several programs do not mix. Where nobody can be told, nothing is to
    // be done.
    (void)writeAll(STDERR_FILENO, std::string(line) + '\n');
}

bool Output::isWatched() const {
    return ::isatty(STDERR_FILENO) == 1;
}

void Output::status(std::string_view text) {
    pollfd terminal{STDERR_FILENO, POLLOUT, 0};
    if (!isWatched() || ::poll(&terminal, 1, 0) <= 0) return;
    (void)writeAll(STDERR_FILENO, std::string(startOfEmptyLine).append(text));
    hasStatus_ = true;
}

void Output::clearStatus() {
    if (!std::exchange(hasStatus_, false)) return;
    (void)writeAll(STDERR_FILENO, startOfEmptyLine);
}

void Output::prompt(std::string_view text) {
    clearStatus();
    (void)writeAll(STDERR_FILENO, text);
}

ExitStatus Output::wrongUsage(const Text& reason, const Command* command) {
    note(reason.localized());
    const std::string program = command ? "ombrelctl " + std::string(command->name) : "ombrelctl";
    note(Texts::localized("cli.error.seeHelp", {program}));
    return ExitStatus::wrongUsage;
}

ExitStatus Output::finish(ExitStatus status) {
    flush();
    if (writeError_ == ECANCELED) return ExitStatus::interrupted;
    if (writeError_ != 0) hasFailed_ = true;
    if (writeError_ != 0 && writeError_ != EPIPE)
        note(Texts::localized("cli.error.output", {POSIXFailure{writeError_}.systemText()}));
    return status == ExitStatus::success && hasFailed_ ? ExitStatus::failure : status;
}

} // namespace ombrel::cli
