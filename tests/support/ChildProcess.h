#pragma once

#include "base/OwnedFd.h"

#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace ombrel::testing {

/// How a program ended and what it wrote.
struct ChildResult {
    int status = -1; ///< what it exited with; 128 and the signal's number when a signal ended it
    std::string output;
    std::string errors;
};

/// A program under test, run for real and in plain English. One that does not end within half a minute is
/// killed, and fails the test.
class ChildProcess {
public:
    struct Setting {
        bool asNobody = false;          ///< as a user who owns nothing; needs root
        std::string workingFolder = {}; ///< empty for the test's own
        std::string outputPath = {};    ///< where standard output goes instead of `output`
        std::vector<std::string> variables =
            {}; ///< "NAME=value", in place of those of the test's own environment
        bool onTerminal =
            false; ///< standard input and error are a terminal of 100 columns; `errors` is what it shows
    };

    /// Starts `words`, the first of which is the program's path.
    ChildProcess(const std::vector<std::string>& words, const Setting& setting);
    explicit ChildProcess(const std::vector<std::string>& words) : ChildProcess(words, Setting{}) {}
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// The next line of standard error, without its end; waits for it. Empty when there is none.
    [[nodiscard]] std::string readErrorLine() { return readLine(errors_, unread_); }
    /// The same of standard output.
    [[nodiscard]] std::string readOutputLine() { return readLine(output_, unreadOutput_); }
    void signal(int number) const;
    /// Types on the terminal.
    void type(const std::string& text) const;
    /// What the terminal has shown and nobody has taken, once `text` is in it; takes it. Fails the test when
    /// it does not come.
    std::string readUntil(const std::string& text);
    /// Gives up reading standard output.
    void closeOutput() { output_ = OwnedFd(); }
    /// Takes what is still written and waits for the end.
    [[nodiscard]] ChildResult finish();
    /// Waits for the end without reading standard output, as a reader does that has stopped.
    [[nodiscard]] int finishUnread();

private:
    static std::string readLine(const OwnedFd& from, std::string& unread);
    int reap();

    pid_t process_ = -1;
    OwnedFd output_;
    OwnedFd errors_;
    std::string unread_;       ///< of standard error, beyond the lines that were taken
    std::string unreadOutput_; ///< the same of standard output
};

/// What a command of the shell writes on standard output.
[[nodiscard]] std::string shellOutput(const std::string& command);

} // namespace ombrel::testing
