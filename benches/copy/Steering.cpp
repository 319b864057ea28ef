#include "copy/Steering.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <thread>

#include "copy/OurTransfer.h"
#include "copy/Trees.h"

namespace ombrel::bench {
namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

double since(Clock::time_point start, Clock::time_point end) {
    return std::chrono::duration<double, std::milli>(end - start).count();
}

/// Bytes that the threads of this process have read and written, but for the calling one.
std::uint64_t bytesMoved() {
    const auto own = std::to_string(::gettid());
    std::uint64_t sum = 0;
    std::error_code gone;
    for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task", gone)) {
        if (thread.path().filename() == own) continue;
        std::ifstream facts(thread.path() / "io");
        std::string name;
        std::uint64_t value = 0;
        while (facts >> name >> value)
            if (name == "rchar:" || name == "wchar:") sum += value;
    }
    return sum;
}

/// From now until the last bytes move, in milliseconds.
double untilStill(Clock::time_point start) {
    auto last = start;
    auto seen = bytesMoved();
    while (Clock::now() - last < 300ms) {
        const auto now = bytesMoved();
        // A thread that has ended takes its bytes with it.
        if (now > seen) last = Clock::now();
        seen = now;
        std::this_thread::sleep_for(200us);
    }
    return since(start, last);
}

double untilMoving(Clock::time_point start) {
    const auto seen = bytesMoved();
    while (bytesMoved() <= seen && Clock::now() - start < 30s)
        std::this_thread::sleep_for(200us);
    return since(start, Clock::now());
}

struct Worst {
    double pause = 0, resume = 0, cancel = 0;
};

void steerOnce(Workshop& workshop, const std::string& source, std::chrono::milliseconds moment,
               Worst& worst) {
    const auto folder = workshop.freshFolder();
    auto control = std::make_shared<OperationControl>();
    std::stop_source stop;
    workshop.quieten();
    std::atomic<bool> isOver = false;
    std::thread job([&] {
        transferControlled(source, folder, control, stop.get_token());
        isOver = true;
    });
    // What is measured beforehand moves no bytes.
    if (untilMoving(Clock::now()) > 29'000) fail("a copy does not begin");
    std::this_thread::sleep_for(moment);
    auto start = Clock::now();
    control->setPaused(true);
    worst.pause = std::max(worst.pause, untilStill(start));
    start = Clock::now();
    control->setPaused(false);
    if (!isOver) worst.resume = std::max(worst.resume, untilMoving(start));
    std::this_thread::sleep_for(moment / 2);
    start = Clock::now();
    if (isOver) fail("a copy was over before it was cancelled");
    stop.request_stop();
    worst.cancel = std::max(worst.cancel, untilStill(start));
    job.join();
}

void steer(Report& report, Workshop& workshop, const std::string& source, const std::string& figure) {
    Worst worst;
    for (const auto moment : {40ms, 90ms, 150ms, 230ms, 310ms, 400ms, 520ms})
        steerOnce(workshop, source, moment, worst);
    report.value("pause until bytes stop, worst of 7, " + figure, worst.pause, "ms", 50);
    report.value("resume until bytes move, worst of 7, " + figure, worst.resume, "ms", 50);
    report.value("cancel until bytes stop, worst of 7, " + figure, worst.cancel, "ms", 50);
}

} // namespace

void measureSteering(Report& report, Workshop& workshop) {
    const auto large = workshop.fresh();
    makeFile(large, std::size_t{4} << 30);
    steer(report, workshop, large, "one file, " + workshop.label());
    ::unlink(large.c_str());
    const auto small = workshop.fresh();
    makeUniformTree(small, 500, 100, 4096);
    steer(report, workshop, small, "50,000 files, " + workshop.label());
}

} // namespace ombrel::bench
