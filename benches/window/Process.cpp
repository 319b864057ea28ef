#include "window/Process.h"

#include <dirent.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <thread>

extern char** environ;

namespace ombrel::bench {
namespace {

constexpr int lineDescriptor = 3;

volatile std::sig_atomic_t isAskedToEnd = 0;

std::string contents(const std::string& path) {
    std::ifstream file(path);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

std::string processPath(pid_t process, const std::string& name) {
    return "/proc/" + std::to_string(process) + "/" + name;
}

/// The fields of a process's or thread's state after its name, beginning with the third.
std::vector<std::int64_t> numbersAfterName(const std::string& state) {
    std::vector<std::int64_t> numbers;
    const auto end = state.rfind(") ");
    if (end == std::string::npos) return numbers;
    constexpr std::size_t beforeNumbers = 4; // ") S "
    std::istringstream rest(state.substr(end + beforeNumbers));
    for (std::int64_t number = 0; rest >> number;)
        numbers.push_back(number);
    return numbers;
}

std::int64_t labelled(const std::string& text, std::string_view label) {
    const auto at = text.find(label);
    return at == std::string::npos ? 0 : std::atoll(text.c_str() + at + label.size());
}

std::vector<pid_t> numberedFolders(const std::string& path) {
    std::vector<pid_t> found;
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(path, ignored))
        if (const int number = std::atoi(entry.path().filename().c_str()); number > 0)
            found.push_back(number);
    return found;
}

void killSession(pid_t session) {
    constexpr std::size_t sessionField = 2; // after the parent and the group
    for (const pid_t each : numberedFolders("/proc")) {
        const auto numbers = numbersAfterName(contents(processPath(each, "stat")));
        if (numbers.size() > sessionField && numbers[sessionField] == session) ::kill(each, SIGKILL);
    }
}

std::vector<std::string> environmentWith(const std::vector<std::string>& variables) {
    const auto nameOf = [](std::string_view variable) { return variable.substr(0, variable.find('=')); };
    std::vector<std::string> all = variables;
    for (char** each = environ; *each; ++each) {
        const auto name = nameOf(*each);
        const bool isReplaced =
            std::ranges::any_of(variables, [&](const std::string& one) { return nameOf(one) == name; });
        const bool isOfPerson = name.starts_with("LC_") || name.starts_with("XDG_") ||
                                name.starts_with("QT_") || name == "WAYLAND_DISPLAY" || name == "SUDO_USER";
        if (!isReplaced && !isOfPerson) all.emplace_back(*each);
    }
    return all;
}

std::vector<char*> pointers(const std::vector<std::string>& words) {
    std::vector<char*> all;
    for (const auto& word : words)
        all.push_back(const_cast<char*>(word.c_str()));
    all.push_back(nullptr);
    return all;
}

} // namespace

void fail(const std::string& what) {
    throw std::runtime_error(what);
}

void heedSignals() {
    for (const int number : {SIGINT, SIGTERM, SIGHUP})
        std::signal(number, [](int) { isAskedToEnd = 1; });
}

void passOn(std::chrono::milliseconds time) {
    std::this_thread::sleep_for(time);
    if (isAskedToEnd) fail("asked to end");
}

std::string programPath(const std::string& name) {
    const char* const path = std::getenv("PATH");
    std::istringstream folders(path ? path : "/usr/bin:/bin");
    for (std::string folder; std::getline(folders, folder, ':');) {
        const std::string candidate = folder + "/" + name;
        if (::access(candidate.c_str(), X_OK) == 0) return candidate;
    }
    return {};
}

Process::Process(const std::vector<std::string>& words, const std::vector<std::string>& variables) {
    int pipe[2];
    if (::pipe2(pipe, O_CLOEXEC) != 0) fail("no pipe");
    line_ = pipe[0];
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, pipe[1], lineDescriptor);
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        ::posix_spawn_file_actions_addopen(&actions, standard, "/dev/null", O_RDWR, 0);
    posix_spawnattr_t attributes;
    ::posix_spawnattr_init(&attributes);
    ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
    const auto environment = environmentWith(variables);
    const auto arguments = pointers(words), environmentPointers = pointers(environment);
    began_ = std::chrono::steady_clock::now();
    const int problem = ::posix_spawn(&id_, arguments[0], &actions, &attributes, arguments.data(),
                                      environmentPointers.data());
    ::posix_spawnattr_destroy(&attributes);
    ::posix_spawn_file_actions_destroy(&actions);
    ::close(pipe[1]);
    if (problem == 0) return;
    ::close(line_);
    fail("cannot start " + words.front());
}

Process::~Process() {
    // Twice, for what was being started meanwhile.
    killSession(id_);
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    killSession(id_);
    if (!isReaped_) ::waitpid(id_, nullptr, 0);
    ::close(line_);
}

std::string Process::readLine() const {
    std::string line;
    for (char letter = 0; ::read(line_, &letter, 1) == 1 && letter != '\n';)
        line += letter;
    return line;
}

bool Process::hasEnded() const {
    if (!isReaped_) isReaped_ = ::waitpid(id_, nullptr, WNOHANG) == id_;
    return isReaped_;
}

ProcessFacts::Memory ProcessFacts::memory(pid_t process) {
    constexpr double kibibyte = 1024;
    const std::string text = contents(processPath(process, "smaps_rollup"));
    return {.resident = kibibyte * static_cast<double>(labelled(text, "\nRss:")),
            .proportional = kibibyte * static_cast<double>(labelled(text, "\nPss:"))};
}

std::int64_t ProcessFacts::processorTicks(pid_t process) {
    constexpr std::size_t userField = 10; // the kernel's follows
    const auto numbers = numbersAfterName(contents(processPath(process, "stat")));
    return numbers.size() > userField + 1 ? numbers[userField] + numbers[userField + 1] : 0;
}

ProcessFacts::Schedule ProcessFacts::mainThread(pid_t process) {
    const std::string folder = "task/" + std::to_string(process) + "/";
    std::int64_t ran = 0, wanted = 0;
    std::istringstream(contents(processPath(process, folder + "schedstat"))) >> ran >> wanted;
    const std::string status = contents(processPath(process, folder + "status"));
    return {.busy = ran + wanted, .waits = labelled(status, "\nvoluntary_ctxt_switches:")};
}

ProcessFacts::Activity ProcessFacts::activity(pid_t process) {
    Activity all;
    const std::string tasks = processPath(process, "task");
    for (const pid_t task : numberedFolders(tasks)) {
        const std::string folder = tasks + "/" + std::to_string(task) + "/";
        std::int64_t ran = 0;
        std::istringstream(contents(folder + "schedstat")) >> ran;
        all.processor += ran;
        const std::string status = contents(folder + "status");
        all.wakeUps += labelled(status, "\nvoluntary_ctxt_switches:") +
                       labelled(status, "\nnonvoluntary_ctxt_switches:");
    }
    return all;
}

} // namespace ombrel::bench
