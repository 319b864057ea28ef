#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace ombrel::bench {

/// Gives the bench up with a message; what it made and started goes.
[[noreturn]] void fail(const std::string& what);

/// From now on a signal to end is not obeyed at once but by the next `passOn`, so that nothing is left
/// behind.
void heedSignals();
/// Sleeps; fails once a signal has asked to end.
void passOn(std::chrono::milliseconds time);

/// The path of a program by its name; empty when it is not installed.
[[nodiscard]] std::string programPath(const std::string& name);

/// A program in a session of its own, which ends with it: whatever it has started and not given away is
/// killed at the end. What it prints is dropped.
class Process {
public:
    /// `words` begin with the program's path; `variables` ("NAME=value") take the place of those of the
    /// bench's own environment.
    Process(const std::vector<std::string>& words, const std::vector<std::string>& variables);
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    [[nodiscard]] pid_t id() const noexcept { return id_; }
    /// Right before it was started.
    [[nodiscard]] std::chrono::steady_clock::time_point began() const noexcept { return began_; }
    /// The first line that it writes to descriptor 3, without its end; waits for it.
    [[nodiscard]] std::string readLine() const;
    [[nodiscard]] bool hasEnded() const;

private:
    pid_t id_ = -1;
    int line_ = -1;
    mutable bool isReaped_ = false;
    std::chrono::steady_clock::time_point began_;
};

/// What the system tells of a process. Whatever has ended answers zeros.
namespace ProcessFacts {

struct Memory {
    double resident = 0;     ///< bytes
    double proportional = 0; ///< bytes; what is shared counts by its share
};
[[nodiscard]] Memory memory(pid_t process);

/// Of all its threads, those that ended among them; in ticks of the system's clock.
[[nodiscard]] std::int64_t processorTicks(pid_t process);

/// Of one thread.
struct Schedule {
    std::int64_t busy = 0;  ///< nanoseconds that it ran or wanted to
    std::int64_t waits = 0; ///< how often it went to sleep
};
[[nodiscard]] Schedule mainThread(pid_t process);
/// Of all threads that there are.
struct Activity {
    std::int64_t processor = 0; ///< nanoseconds that they ran
    std::int64_t wakeUps = 0;
};
[[nodiscard]] Activity activity(pid_t process);

} // namespace ProcessFacts
} // namespace ombrel::bench
