#include "listing/CapacityQuery.h"

#include "base/Log.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <map>
#include <mutex>

namespace ombrel {
namespace {

using Clock = std::chrono::steady_clock;

/// How soon a request to stop is seen.
constexpr std::chrono::milliseconds stopInterval(100);
constexpr int greatestErrorNumber = 133;

/// The error number that the end of a message of the C library's stands for ("...: Stale file handle").
int errorNumberOf(std::string_view message) {
    while (message.ends_with('\n'))
        message.remove_suffix(1);
    for (int number = 1; number <= greatestErrorNumber; ++number) {
        const char* const description = ::strerrordesc_np(number);
        if (description && message.ends_with(description)) return number;
    }
    return EIO;
}

POSIX::Result<POSIX::Capacity> parsed(const std::string& text) {
    long long unit = 0, total = 0, available = 0;
    if (std::sscanf(text.c_str(), "%lld %lld %lld", &unit, &total, &available) == 3)
        return POSIX::Capacity{unit * total, unit * available};
    return std::unexpected(POSIXFailure{errorNumberOf(text)});
}

/// Starts stat(1) with its output and errors in `output`. Everything else that this process has open is
/// closed in it, for it may outlive this process.
pid_t startStat(const std::string& path, int output) {
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    ::posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, output, STDERR_FILENO);
    ::posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
    std::string words[] = {"stat", "-f", "-c", "%S %b %a", "--", path};
    char* arguments[] = {words[0].data(), words[1].data(), words[2].data(), words[3].data(),
                         words[4].data(), words[5].data(), nullptr};
    std::string language = "LC_ALL=C", search = "PATH=/usr/bin:/bin";
    char* environment[] = {language.data(), search.data(), nullptr};
    pid_t child = -1;
    if (::posix_spawnp(&child, "stat", &actions, nullptr, arguments, environment) != 0) child = -1;
    ::posix_spawn_file_actions_destroy(&actions);
    return child;
}

/// Whether the child has ended; its remains are gone then.
bool hasEnded(pid_t child) {
    const pid_t result = ::waitpid(child, nullptr, WNOHANG);
    return result == child || (result < 0 && errno == ECHILD);
}

} // namespace

/// The children that were given up while they still asked.
struct CapacityQuery::Abandoned {
    std::mutex mutex; // guards children
    std::map<Key, pid_t> children;

    static Abandoned& instance() {
        static auto& all = *new Abandoned;
        return all;
    }

    bool isStillAsking(Key key) {
        const std::scoped_lock lock(mutex);
        std::erase_if(children, [](const auto& entry) { return hasEnded(entry.second); });
        return children.contains(key);
    }

    void add(Key key, pid_t child) {
        ::kill(child, SIGKILL);
        const std::scoped_lock lock(mutex);
        if (!hasEnded(child)) children[key] = child;
    }
};

CapacityQuery::CapacityQuery(const MountTable& table, std::span<const Mount* const> mounts) {
    questions_.reserve(mounts.size());
    for (const Mount* mount : mounts) {
        Question& question = questions_.emplace_back();
        question.key = {mount->id, mount->device};
        if (!table.mayHang(*mount))
            question.answer = POSIX::capacity(mount->point);
        else if (Abandoned::instance().isStillAsking(question.key))
            question.answer = std::unexpected(POSIXFailure{ETIMEDOUT});
        else
            ask(question, mount->point);
    }
}

CapacityQuery::~CapacityQuery() {
    for (const Question& question : questions_)
        if (question.child > 0) Abandoned::instance().add(question.key, question.child);
}

void CapacityQuery::ask(Question& question, const FileURL& point) {
    if (const auto fault = SystemCall::gate(SystemCall::Kind::fileSystem); fault && fault->errorNumber) {
        question.answer = std::unexpected(POSIXFailure{fault->errorNumber});
        return;
    }
    std::array<int, 2> pipe{};
    if (::pipe2(pipe.data(), O_CLOEXEC) != 0) {
        question.answer = std::unexpected(POSIXFailure::current());
        return;
    }
    question.output = OwnedFd(pipe[0]);
    const OwnedFd input(pipe[1]);
    question.child = startStat(point.path(), input.get());
    if (question.child < 0) question.answer = std::unexpected(POSIXFailure{EAGAIN});
}

void CapacityQuery::hear(Question& question) {
    std::array<char, 512> buffer;
    const auto count = ::read(question.output.get(), buffer.data(), buffer.size());
    if (count < 0 && errno == EINTR) return;
    if (count > 0) {
        question.text.append(buffer.data(), static_cast<std::size_t>(count));
        return;
    }
    question.answer = parsed(question.text);
    // It has closed its output and is about to end.
    while (::waitpid(question.child, nullptr, 0) < 0 && errno == EINTR) {
    }
    question.child = -1;
}

bool CapacityQuery::wait(std::chrono::milliseconds limit, std::stop_token stop) {
    const auto end = Clock::now() + limit;
    for (;;) {
        std::vector<pollfd> outputs;
        std::vector<Question*> open;
        for (Question& question : questions_) {
            if (question.answer) continue;
            outputs.push_back({question.output.get(), POLLIN, 0});
            open.push_back(&question);
        }
        if (open.empty()) return true;
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
        if (left.count() <= 0 || stop.stop_requested()) return false;
        const auto pause = static_cast<int>(std::min(left, stopInterval).count());
        if (::poll(outputs.data(), outputs.size(), pause) <= 0) continue;
        for (std::size_t i = 0; i < open.size(); ++i)
            if (outputs[i].revents != 0) hear(*open[i]);
    }
}

} // namespace ombrel
