// What a watched folder costs: the main thread for a notice and for a burst, and all threads beside a reader
// that only takes the events.

#include "base/MainThread.h"
#include "services/DirectoryWatcher.h"
#include "services/QtConnections.h"
#include "support/Report.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QFileSystemWatcher>
#include <QTimer>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "watch/Floor.h"

extern char** environ;

using namespace ombrel;
using namespace ombrel::bench;

namespace {

/// A file is made, closed and removed: three events.
constexpr int burstFiles = 33'334, burstEvents = 3 * burstFiles;
constexpr int notices = 300, rounds = 5;
constexpr double noticeTarget = 1.5, noticeMicroseconds = 100, burstMicroseconds = 500, peerTarget = 0.01,
                 readerTarget = 0.5;
constexpr DirectoryWatcher::Seconds noDelay(0.001), aPanesDelay(0.25);

[[noreturn]] void fail(const char* what) {
    std::fprintf(stderr, "bench: %s\n", what);
    std::exit(1);
}

double seconds(clockid_t clock) {
    timespec now{};
    ::clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

double mainThreadTime() {
    return seconds(CLOCK_THREAD_CPUTIME_ID);
}

double allThreadsTime() {
    return seconds(CLOCK_PROCESS_CPUTIME_ID);
}

void touch(const std::string& path) {
    const int fd = ::open(path.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
    if (fd < 0) fail("making a file");
    ::close(fd);
}

/// What the child process does.
int makeBurst(const std::string& folder) {
    for (int i = 0; i < burstFiles; ++i) {
        const auto path = folder + "/brief" + std::to_string(i);
        touch(path);
        ::unlink(path.c_str());
    }
    return 0;
}

class Burst {
public:
    explicit Burst(const std::string& folder) {
        std::string program = "/proc/self/exe", path = folder;
        char* words[] = {program.data(), path.data(), nullptr};
        if (::posix_spawn(&child_, program.c_str(), nullptr, nullptr, words, environ) != 0)
            fail("no process for the burst");
    }
    ~Burst() {
        if (!hasEnded_) ::waitpid(child_, nullptr, 0);
    }
    Burst(const Burst&) = delete;
    Burst& operator=(const Burst&) = delete;

    [[nodiscard]] bool hasEnded() {
        hasEnded_ = hasEnded_ || ::waitpid(child_, nullptr, WNOHANG) == child_;
        return hasEnded_;
    }

private:
    pid_t child_ = -1;
    bool hasEnded_ = false;
};

class Folder {
public:
    Folder() {
        if (!::mkdtemp(path_.data())) fail("no folder");
    }
    ~Folder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    [[nodiscard]] const std::string& path() const noexcept { return path_; }

private:
    std::string path_ = "/dev/shm/ombrel-bench-XXXXXX";
};

void runUntil(const std::function<bool()>& done) {
    while (!done())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

/// A watcher that stands, and counts what it tells.
class Watched {
public:
    Watched(const Folder& folder, DirectoryWatcher::Seconds delay)
        : watcher_(delay, [this](DirectoryWatcher::Event) { ++count_; }) {
        bool stands = false;
        watcher_.watch(*FileURL::fromPath(folder.path()), [&](std::expected<void, POSIXFailure> begun) {
            if (!begun) fail("the folder is not watched");
            stands = true;
        });
        runUntil([&] { return stands; });
    }
    void runUntilTold(int count) const {
        runUntil([&] { return count_ >= count; });
    }
    [[nodiscard]] int count() const noexcept { return count_; }

private:
    int count_ = 0;
    DirectoryWatcher watcher_;
};

/// The main thread's time for one notice; files are made by another thread when the notice before has come.
double perNotice() {
    const Folder folder;
    const Watched watched(folder, noDelay);
    double used = 0;
    for (int i = 0; i < notices; ++i) {
        std::thread([&] { touch(folder.path() + "/file" + std::to_string(i)); }).join();
        const double before = mainThreadTime();
        watched.runUntilTold(i + 1);
        used += mainThreadTime() - before;
    }
    return used / notices;
}

/// The same for an empty task that another thread posts, after about as long a sleep.
double perTask() {
    double used = 0;
    int ran = 0;
    for (int i = 0; i < notices; ++i) {
        std::thread poster([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(11));
            MainThread::post([&] { ++ran; });
        });
        const double before = mainThreadTime();
        runUntil([&] { return ran == i + 1; });
        used += mainThreadTime() - before;
        poster.join();
    }
    return used / notices;
}

struct Cost {
    double mainThread, allThreads;
    int told;
};

Cost burstWatched() {
    const Folder folder;
    const Watched watched(folder, aPanesDelay);
    const double thread = mainThreadTime(), process = allThreadsTime();
    {
        const Burst burst(folder.path());
        watched.runUntilTold(1);
    }
    return {mainThreadTime() - thread, allThreadsTime() - process, watched.count()};
}

Cost burstFloor() {
    const Folder folder;
    std::optional<Burst> burst;
    struct Start {
        std::optional<Burst>* burst;
        const Folder* folder;
        double process = 0;
    } start{&burst, &folder};
    const long taken = floor_watch(
        folder.path().c_str(), burstEvents, 2000,
        [](void* context) {
            auto& begun = *static_cast<Start*>(context);
            begun.process = allThreadsTime();
            begun.burst->emplace(begun.folder->path());
        },
        &start);
    if (taken <= 0) fail("the floor sees nothing");
    return {0, allThreadsTime() - start.process, 0};
}

/// Qt's own watcher, as the easy way to do it.
Cost burstPeer() {
    const Folder folder;
    QFileSystemWatcher watcher({QString::fromStdString(folder.path())});
    int told = 0;
    QObject::connect(&watcher, &QFileSystemWatcher::directoryChanged, [&] { ++told; });
    QCoreApplication::processEvents();
    const double thread = mainThreadTime(), process = allThreadsTime();
    Burst burst(folder.path());
    QTimer heartbeat;
    heartbeat.start(20);
    int quietBeats = 0, before = 0;
    QObject::connect(&heartbeat, &QTimer::timeout, [&] {
        quietBeats = burst.hasEnded() && told == before ? quietBeats + 1 : 0;
        before = told;
    });
    constexpr int enoughBeats = 10;
    runUntil([&] { return quietBeats >= enoughBeats; });
    return {mainThreadTime() - thread, allThreadsTime() - process, told};
}

std::vector<double> each(const std::vector<Cost>& costs, double Cost::* part) {
    std::vector<double> values;
    for (const auto& cost : costs)
        values.push_back(cost.*part);
    return values;
}

} // namespace

int main(int count, char** words) {
    if (count == 2) return makeBurst(words[1]);
    const QCoreApplication application(count, words);
    const QtConnections connections(InterfaceLanguage{});
    Report report("watch");
    std::vector<double> ownNotices, tasks;
    std::vector<Cost> own, floors, peers;
    for (int round = 0; round < rounds; ++round) {
        tasks.push_back(perTask());
        ownNotices.push_back(perNotice());
        floors.push_back(burstFloor());
        own.push_back(burstWatched());
        peers.push_back(burstPeer());
    }
    report.note("a burst is " + std::to_string(burstEvents) + " events, made by another process in memory; " +
                std::to_string(own.back().told) + " notice for the last one, " +
                std::to_string(peers.back().told) + " by QFileSystemWatcher");
    report.ratio("main thread, one notice", "an empty posted task", median(ownNotices), median(tasks),
                 noticeTarget);
    report.value("main thread, one notice", median(ownNotices) * 1e6, "us", noticeMicroseconds);
    const double mainThread = median(each(own, &Cost::mainThread));
    report.value("main thread, burst", mainThread * 1e6, "us", burstMicroseconds);
    report.ratio("main thread, burst", "QFileSystemWatcher", mainThread,
                 median(each(peers, &Cost::mainThread)), peerTarget);
    report.ratio("all threads, burst", "bare inotify reader", median(each(own, &Cost::allThreads)),
                 median(each(floors, &Cost::allThreads)), readerTarget);
    return report.print() == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
