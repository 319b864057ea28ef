#include "operations/ToolProcess.h"

#include "listing/POSIX.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <utility>

namespace ombrel {
namespace {

struct Pipe {
    OwnedFd reading, writing;

    /// Apart from the standard descriptors, which the tool gets others in place of.
    static std::expected<Pipe, POSIXFailure> make() {
        std::array<int, 2> ends{};
        if (::pipe2(ends.data(), O_CLOEXEC) != 0) return std::unexpected(POSIXFailure::current());
        Pipe pipe{OwnedFd(ends[0]), OwnedFd(ends[1])};
        OwnedFd raised(::fcntl(pipe.writing.get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
        if (!raised) return std::unexpected(POSIXFailure::current());
        pipe.writing = std::move(raised);
        return pipe;
    }
};

/// What a new process is to have, in the order in which it gets it.
class Actions {
public:
    Actions() { ::posix_spawn_file_actions_init(&actions_); }
    ~Actions() { ::posix_spawn_file_actions_destroy(&actions_); }
    Actions(const Actions&) = delete;
    Actions& operator=(const Actions&) = delete;

    void runIn(int folder) {
        if (folder >= 0)
            ::posix_spawn_file_actions_addfchdir_np(&actions_, folder);
        else
            ::posix_spawn_file_actions_addchdir_np(&actions_, "/");
    }
    void give(int fd, int as) { ::posix_spawn_file_actions_adddup2(&actions_, fd, as); }
    void giveNothing(int as) { ::posix_spawn_file_actions_addopen(&actions_, as, "/dev/null", O_RDONLY, 0); }
    void closeOthers() { ::posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1); }
    [[nodiscard]] const posix_spawn_file_actions_t* get() const noexcept { return &actions_; }

private:
    posix_spawn_file_actions_t actions_{};
};

/// A session of its own, and signals as a new program expects them.
class Attributes {
public:
    Attributes() {
        ::posix_spawnattr_init(&attributes_);
        sigset_t none, all;
        ::sigemptyset(&none);
        ::sigfillset(&all);
        ::posix_spawnattr_setsigmask(&attributes_, &none);
        ::posix_spawnattr_setsigdefault(&attributes_, &all);
        ::posix_spawnattr_setflags(&attributes_,
                                   POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    ~Attributes() { ::posix_spawnattr_destroy(&attributes_); }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;
    [[nodiscard]] const posix_spawnattr_t* get() const noexcept { return &attributes_; }

private:
    posix_spawnattr_t attributes_{};
};

std::vector<char*> pointersTo(std::vector<std::string>& words) {
    std::vector<char*> pointers;
    for (auto& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    return pointers;
}

std::vector<std::string> environmentOf(const ToolCommand& command) {
    std::vector<std::string> variables{std::string("LC_ALL=") + command.locale, "PATH=/usr/bin:/bin"};
    // Archives hold local times.
    if (const char* const zone = std::getenv("TZ")) variables.push_back(std::string("TZ=") + zone);
    return variables;
}

std::expected<pid_t, POSIXFailure> spawn(const ToolCommand& command, int output, int errors) {
    Actions actions;
    actions.runIn(command.folder);
    if (command.input >= 0)
        actions.give(command.input, STDIN_FILENO);
    else
        actions.giveNothing(STDIN_FILENO);
    actions.give(output, STDOUT_FILENO);
    actions.give(errors, STDERR_FILENO);
    actions.closeOthers();
    std::vector<std::string> words{command.path.substr(command.path.rfind('/') + 1)};
    words.insert(words.end(), command.words.begin(), command.words.end());
    auto variables = environmentOf(command);
    const Attributes attributes;
    pid_t process = -1;
    const int failure = ::posix_spawn(&process, command.path.c_str(), actions.get(), attributes.get(),
                                      pointersTo(words).data(), pointersTo(variables).data());
    if (failure != 0) return std::unexpected(POSIXFailure{failure});
    return process;
}

} // namespace

std::optional<std::string> ToolProcess::find(const std::string& name, const std::string& search) {
    for (std::size_t start = 0; start <= search.size();) {
        const auto end = std::min(search.find(':', start), search.size());
        auto path = search.substr(start, end - start) + "/" + name;
        start = end + 1;
        const auto url = FileURL::fromPath(path);
        if (!url) continue;
        const auto status = POSIX::statFollowing(*url);
        if (status && status->isRegular() && (status->mode & (S_IXUSR | S_IXGRP | S_IXOTH)) != 0) return path;
    }
    return std::nullopt;
}

std::expected<std::unique_ptr<ToolProcess>, POSIXFailure> ToolProcess::start(const ToolCommand& command) {
    auto errors = Pipe::make();
    if (!errors) return std::unexpected(errors.error());
    Pipe output;
    if (command.output < 0) {
        auto made = Pipe::make();
        if (!made) return std::unexpected(made.error());
        output = std::move(*made);
    }
    const int outputFd = command.output >= 0 ? command.output : output.writing.get();
    const auto process = spawn(command, outputFd, errors->writing.get());
    if (!process) return std::unexpected(process.error());
    OwnedFd handle(static_cast<int>(::syscall(SYS_pidfd_open, *process, 0)));
    return std::unique_ptr<ToolProcess>(
        new ToolProcess(*process, std::move(handle), std::move(output.reading), std::move(errors->reading)));
}

ToolProcess::ToolProcess(pid_t process, OwnedFd handle, OwnedFd output, OwnedFd errors)
    : process_(process), handle_(std::move(handle)),
      output_(std::make_unique<StreamReader>(std::move(output))),
      errors_(std::make_unique<StreamReader>(std::move(errors))) {}

ToolProcess::~ToolProcess() {
    if (!status_) terminate(std::chrono::milliseconds(0));
}

std::optional<int> ToolProcess::wait(std::chrono::milliseconds limit) {
    if (status_) return status_;
    if (handle_) {
        pollfd ended{handle_.get(), POLLIN, 0};
        if (::poll(&ended, 1, static_cast<int>(limit.count())) <= 0) return std::nullopt;
    }
    siginfo_t info{};
    const int options = WEXITED | WNOWAIT | (handle_ ? WNOHANG : 0);
    if (::waitid(P_PID, static_cast<id_t>(process_), &info, options) == 0) {
        if (info.si_pid == 0) return std::nullopt;
        // What it started may live on and hold the pipes. As long as the process is not taken off the table,
        // its number is nobody else's.
        signal(SIGKILL);
        (void)::waitid(P_PID, static_cast<id_t>(process_), &info, WEXITED);
    }
    constexpr int signalBase = 128;
    status_ = info.si_code == CLD_EXITED ? info.si_status : signalBase + info.si_status;
    return status_;
}

void ToolProcess::signal(int number) const noexcept {
    if (!status_) ::kill(-process_, number);
}

void ToolProcess::signalOnlyTool(int number) const noexcept {
    if (!status_) ::kill(process_, number);
}

void ToolProcess::terminate(std::chrono::milliseconds grace) {
    signal(SIGTERM);
    signal(SIGCONT); // one that was stopped hears nothing else
    if (wait(grace)) return;
    signal(SIGKILL);
    while (!wait(std::chrono::milliseconds(-1))) {
    }
}

} // namespace ombrel
