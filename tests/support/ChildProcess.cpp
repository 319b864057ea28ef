#include "support/ChildProcess.h"

#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <pwd.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>

namespace ombrel::testing {
namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::seconds patience(30);

[[noreturn]] void fail(const char* what) {
    throw std::runtime_error(std::string(what) + ": " + std::generic_category().message(errno));
}

std::pair<OwnedFd, OwnedFd> makePipe() {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) fail("pipe2");
    return {OwnedFd(ends[0]), OwnedFd(ends[1])};
}

std::vector<char*> pointersTo(const std::vector<std::string>& words) {
    std::vector<char*> pointers;
    for (const auto& word : words)
        pointers.push_back(const_cast<char*>(word.c_str()));
    pointers.push_back(nullptr);
    return pointers;
}

std::vector<std::string> plainEnvironment(const std::vector<std::string>& variables) {
    std::vector<std::string> all = variables;
    all.emplace_back("LC_ALL=C.UTF-8");
    for (char** entry = environ; *entry; ++entry) {
        const std::string_view text = *entry;
        const auto isSame = [&](const std::string& given) {
            return text.starts_with(std::string_view(given).substr(0, given.find('=') + 1));
        };
        if (!text.starts_with("LC_") && !text.starts_with("LANG") && std::ranges::none_of(variables, isSame))
            all.emplace_back(text);
    }
    return all;
}

/// The two ends of a terminal: that of whoever sits at it, and that of the program.
std::pair<OwnedFd, OwnedFd> makeTerminal() {
    int person = -1, program = -1;
    const winsize size{.ws_row = 25, .ws_col = 100, .ws_xpixel = 0, .ws_ypixel = 0};
    if (::openpty(&person, &program, nullptr, nullptr, &size) != 0) fail("openpty");
    ::fcntl(person, F_SETFD, FD_CLOEXEC);
    ::fcntl(program, F_SETFD, FD_CLOEXEC);
    return {OwnedFd(person), OwnedFd(program)};
}

/// Answers with how much was read: 0 at the end, negative when nothing came in time.
ssize_t readSome(int fd, std::string& into, Clock::time_point deadline) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
    pollfd waiting{fd, POLLIN, 0};
    if (left <= 0 || ::poll(&waiting, 1, static_cast<int>(left)) <= 0) return -1;
    std::array<char, 65536> bytes;
    const auto count = ::read(fd, bytes.data(), bytes.size());
    if (count > 0) into.append(bytes.data(), static_cast<std::size_t>(count));
    return count;
}

} // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& words, const Setting& setting) {
    // The program is opened here, because nobody may be unable to reach it.
    const OwnedFd program(::open(words.front().c_str(), O_RDONLY | O_CLOEXEC));
    if (!program) fail(words.front().c_str());
    auto [outputEnd, outputSource] = makePipe();
    auto [errorsEnd, errorsSource] = setting.onTerminal ? makeTerminal() : makePipe();
    if (!setting.outputPath.empty())
        outputSource = OwnedFd(::open(setting.outputPath.c_str(), O_WRONLY | O_CLOEXEC));
    const auto arguments = pointersTo(words);
    const auto entries = plainEnvironment(setting.variables);
    const auto environment = pointersTo(entries);
    const passwd* const nobody = setting.asNobody ? ::getpwnam("nobody") : nullptr;
    if (setting.asNobody && !nobody) fail("nobody");

    // Shells let what runs in the background ignore it, which is inherited: afterwards would be too late for
    // an interrupt that comes at once.
    ::signal(SIGINT, SIG_DFL);
    process_ = ::fork();
    if (process_ < 0) fail("fork");
    if (process_ == 0) {
        // From here on only calls that are safe between fork and exec.
        ::dup2(outputSource.get(), STDOUT_FILENO);
        ::dup2(errorsSource.get(), STDERR_FILENO);
        if (setting.onTerminal) {
            ::dup2(errorsSource.get(), STDIN_FILENO);
            ::setsid();
            ::ioctl(STDIN_FILENO, TIOCSCTTY, 0); // so that Ctrl+C reaches the program
        }
        if (!setting.workingFolder.empty() && ::chdir(setting.workingFolder.c_str()) != 0) ::_exit(126);
        if (nobody &&
            (::setgroups(0, nullptr) != 0 || ::setgid(nobody->pw_gid) != 0 || ::setuid(nobody->pw_uid) != 0))
            ::_exit(126);
        ::fexecve(program.get(), arguments.data(), environment.data());
        ::_exit(127);
    }
    output_ = std::move(outputEnd);
    errors_ = std::move(errorsEnd);
}

ChildProcess::~ChildProcess() {
    if (process_ < 0) return;
    ::kill(process_, SIGKILL);
    ::waitpid(process_, nullptr, 0);
}

std::string ChildProcess::readLine(const OwnedFd& from, std::string& unread) {
    const auto deadline = Clock::now() + patience;
    auto end = unread.find('\n');
    while (end == std::string::npos && readSome(from.get(), unread, deadline) > 0)
        end = unread.find('\n');
    if (end == std::string::npos) return {};
    const auto line = unread.substr(0, end);
    unread.erase(0, end + 1);
    return line;
}

void ChildProcess::signal(int number) const {
    ::kill(process_, number);
}

void ChildProcess::type(const std::string& text) const {
    if (::write(errors_.get(), text.data(), text.size()) != static_cast<ssize_t>(text.size()))
        fail("terminal");
}

std::string ChildProcess::readUntil(const std::string& text) {
    const auto deadline = Clock::now() + patience;
    while (unread_.find(text) == std::string::npos)
        if (readSome(errors_.get(), unread_, deadline) <= 0) {
            ADD_FAILURE() << "“" << text << "” does not come, but: " << unread_;
            break;
        }
    return std::exchange(unread_, {});
}

ChildResult ChildProcess::finish() {
    const auto deadline = Clock::now() + patience;
    ChildResult result;
    result.errors = std::move(unread_);
    result.output = std::move(unreadOutput_);
    // On a thread of its own, so that neither stream fills up while the other is read.
    std::jthread errorsReader([&] {
        while (readSome(errors_.get(), result.errors, deadline) > 0) {
        }
    });
    while (output_ && readSome(output_.get(), result.output, deadline) > 0) {
    }
    errorsReader.join();
    result.status = reap();
    return result;
}

int ChildProcess::finishUnread() {
    return reap();
}

int ChildProcess::reap() {
    const auto deadline = Clock::now() + patience;
    int status = 0;
    pid_t ended = 0;
    while ((ended = ::waitpid(process_, &status, WNOHANG)) == 0 && Clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    if (ended == 0) {
        ADD_FAILURE() << "the program did not end";
        ::kill(process_, SIGKILL);
        ::waitpid(process_, &status, 0);
    }
    process_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

std::string shellOutput(const std::string& command) {
    std::string text;
    FILE* const pipe = ::popen(command.c_str(), "r");
    if (!pipe) return "popen failed";
    for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe))
        text.push_back(static_cast<char>(c));
    ::pclose(pipe);
    return text;
}

} // namespace ombrel::testing
