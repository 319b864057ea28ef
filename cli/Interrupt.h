#pragma once

#include "base/OwnedFd.h"

#include <stop_token>
#include <thread>

namespace ombrel::cli {

/// Turns Ctrl+C (and a request to terminate, or a terminal that goes away) into a request to stop. One that
/// follows half a second later or more ends the program where it stands. Signals that the program was started
/// with as ignored stay ignored. One at a time, made on the main thread.
class Interrupt {
public:
    Interrupt();
    ~Interrupt();
    Interrupt(const Interrupt&) = delete;
    Interrupt& operator=(const Interrupt&) = delete;

    [[nodiscard]] std::stop_token token() const noexcept { return source_.get_token(); }

private:
    void watch(const std::stop_token& ending);

    std::stop_source source_;
    OwnedFd event_;
    std::jthread watcher_;
};

} // namespace ombrel::cli
