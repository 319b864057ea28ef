#pragma once

#include "base/POSIXFailure.h"

#include <expected>
#include <utility>

namespace ombrel {

/// An open descriptor that closes itself. Move-only; empty after a move.
class OwnedFd {
public:
    OwnedFd() noexcept = default;
    /// Takes `fd` over; -1 is empty.
    explicit OwnedFd(int fd) noexcept : fd_(fd) {}
    OwnedFd(OwnedFd&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    OwnedFd& operator=(OwnedFd&& other) noexcept;
    ~OwnedFd();

    [[nodiscard]] int get() const noexcept { return fd_; }
    [[nodiscard]] explicit operator bool() const noexcept { return fd_ >= 0; }
    /// Gives the descriptor away.
    [[nodiscard]] int release() noexcept { return std::exchange(fd_, -1); }

    /// Closes now and tells a late write error (network file systems, quotas), which a destructor cannot. An
    /// interrupted close counts as done: Linux has released the descriptor by then.
    std::expected<void, POSIXFailure> close() noexcept;

private:
    int fd_ = -1;
};

} // namespace ombrel
