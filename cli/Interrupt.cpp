#include "cli/Interrupt.h"

#include "cli/Command.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <optional>

namespace ombrel::cli {
namespace {

constexpr std::array signals = {SIGINT, SIGTERM, SIGHUP};

/// Where the handler, which may do next to nothing, leaves word.
std::atomic<int> wakeUp = -1;
static_assert(std::atomic<int>::is_always_lock_free);

void add(int event) {
    const std::uint64_t one = 1;
    (void)!::write(event, &one, sizeof one);
}

void handle(int) {
    const int before = errno;
    add(wakeUp.load());
    errno = before;
}

} // namespace

// Without an event there is nothing to watch, and signals keep the meaning that the system gives them.
Interrupt::Interrupt() : event_(::eventfd(0, EFD_CLOEXEC)) {
    if (!event_) return;
    wakeUp = event_.get();
    watcher_ = std::jthread([this](const std::stop_token& ending) { watch(ending); });
    for (const int signal : signals) {
        struct sigaction before{};
        ::sigaction(signal, nullptr, &before);
        if (before.sa_handler == SIG_IGN) continue;
        struct sigaction action{};
        action.sa_handler = handle;
        action.sa_flags = SA_RESTART;
        ::sigaction(signal, &action, nullptr);
    }
}

Interrupt::~Interrupt() {
    if (!event_) return;
    for (const int signal : signals) {
        struct sigaction before{};
        ::sigaction(signal, nullptr, &before);
        if (before.sa_handler == handle) std::signal(signal, SIG_DFL);
    }
    wakeUp = -1;
    watcher_.request_stop();
    add(event_.get());
    watcher_.join();
}

void Interrupt::watch(const std::stop_token& ending) {
    using Clock = std::chrono::steady_clock;
    // One key press may arrive as several signals.
    constexpr std::chrono::milliseconds samePress(500);
    std::optional<Clock::time_point> first;
    for (;;) {
        std::uint64_t count = 0;
        if (::read(event_.get(), &count, sizeof count) < 0 && errno != EINTR) return;
        if (ending.stop_requested()) return;
        const auto now = Clock::now();
        if (first && now - *first >= samePress) ::_exit(static_cast<int>(ExitStatus::interrupted));
        if (!first) first = now;
        source_.request_stop();
    }
}

} // namespace ombrel::cli
