#include "support/Report.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/utsname.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <thread>

extern char** environ;

namespace ombrel::bench {
namespace {

double seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

double processorTime(const rusage& usage) {
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

double now() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

std::string text(const char* format, double value) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, format, value);
    return buffer;
}

std::string timeText(double value) {
    return value < 1 ? text("%.1f ms", value * 1e3) : text("%.2f s", value);
}

std::string lineWith(const char* path, const std::string& beginning) {
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);)
        if (line.starts_with(beginning))
            return line.substr(std::min(line.find_first_not_of(" \t", line.find(':') + 1), line.size()));
    return {};
}

[[noreturn]] void fail(const std::string& message) {
    std::fprintf(stderr, "bench: %s\n", message.c_str());
    std::exit(1);
}

} // namespace

Duration timed(const std::function<void()>& body) {
    rusage before{}, after{};
    ::getrusage(RUSAGE_SELF, &before);
    const double start = now();
    body();
    const double elapsed = now() - start;
    ::getrusage(RUSAGE_SELF, &after);
    return {elapsed, processorTime(after) - processorTime(before)};
}

Duration timedProcess(const std::vector<std::string>& command) {
    int pipe[2];
    if (::pipe2(pipe, O_CLOEXEC) != 0) fail("no pipe");
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, pipe[1], STDOUT_FILENO);
    std::vector<char*> arguments;
    for (const auto& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    const double start = now();
    pid_t child = 0;
    if (::posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(), environ) != 0)
        fail("cannot start " + command.front());
    ::close(pipe[1]);
    static char buffer[1 << 16];
    while (::read(pipe[0], buffer, sizeof buffer) > 0) {
    }
    ::close(pipe[0]);
    int status = 0;
    rusage usage{};
    ::wait4(child, &status, 0, &usage);
    const double elapsed = now() - start;
    ::posix_spawn_file_actions_destroy(&actions);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) fail(command.front() + " failed");
    return {elapsed, processorTime(usage)};
}

double median(std::vector<double> values) {
    std::ranges::sort(values);
    const auto middle = values.size() / 2;
    return values.size() % 2 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

double medianElapsed(const std::vector<Duration>& runs) {
    std::vector<double> values;
    for (const auto& run : runs)
        values.push_back(run.elapsed);
    return median(std::move(values));
}

double medianProcessor(const std::vector<Duration>& runs) {
    std::vector<double> values;
    for (const auto& run : runs)
        values.push_back(run.processor);
    return median(std::move(values));
}

std::vector<std::vector<Duration>> interleaved(int rounds,
                                               const std::vector<std::function<Duration()>>& contenders) {
    std::vector<std::vector<Duration>> runs(contenders.size());
    for (int round = 0; round < rounds; ++round)
        for (std::size_t i = 0; i < contenders.size(); ++i) {
            const auto turn = (i + static_cast<std::size_t>(round)) % contenders.size();
            runs[turn].push_back(contenders[turn]());
        }
    return runs;
}

void Report::ratio(const std::string& figure, const std::string& against, double ours, double theirs,
                   double target) {
    rows_.push_back({figure, against, timeText(ours), timeText(theirs), text("%.2f x", ours / theirs),
                     text("%.2f x", target), ours / theirs <= target});
}

void Report::share(const std::string& figure, const std::string& against, double ours, double theirs,
                   const std::string& unit, double target) {
    rows_.push_back({figure, against, text("%.1f ", ours) + unit, text("%.1f ", theirs) + unit,
                     text("%.2f x", ours / theirs), text("%.2f x", target), ours / theirs <= target});
}

void Report::gap(const std::string& figure, const std::string& against, const std::string& reason) {
    rows_.push_back({figure, against, "", "", reason, "", std::nullopt});
}

void Report::value(const std::string& figure, double ours, const std::string& unit, double target) {
    rows_.push_back(
        {figure, "-", "", "", text("%.1f ", ours) + unit, text("%.0f ", target) + unit, ours <= target});
}

int Report::print() const {
    utsname system{};
    ::uname(&system);
    std::printf("%s\n%u cores, %s; memory %s; %s %s\n", subject_.c_str(), std::thread::hardware_concurrency(),
                lineWith("/proc/cpuinfo", "model name").c_str(),
                lineWith("/proc/meminfo", "MemTotal").c_str(), system.sysname, system.release);
    for (const auto& line : notes_)
        std::printf("%s\n", line.c_str());
    std::printf(
        "\n| figure | against | ours | theirs | result | at most | |\n|---|---|---|---|---|---|---|\n");
    int missed = 0;
    for (const auto& row : rows_) {
        std::printf("| %s | %s | %s | %s | %s | %s | %s |\n", row.figure.c_str(), row.against.c_str(),
                    row.ours.c_str(), row.theirs.c_str(), row.result.c_str(), row.target.c_str(),
                    !row.isMet   ? ""
                    : *row.isMet ? "met"
                                 : "MISSED");
        if (row.isMet == false) ++missed;
    }
    return missed;
}

} // namespace ombrel::bench
