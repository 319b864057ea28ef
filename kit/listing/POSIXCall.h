#pragma once

#include "listing/POSIX.h"

#include <cerrno>
#include <cstddef>
#include <type_traits>

/// How the POSIX layer makes a call: past the gate, and again whenever a signal interrupts it. For the
/// layer's own sources.
namespace ombrel::POSIX {

/// `body` answers as system calls do: -1 with errno on failure.
template <typename Body>
[[nodiscard]] Result<std::invoke_result_t<Body>> answered(SystemCall::Kind kind, Body body) {
    for (;;) {
        const auto fault = SystemCall::gate(kind);
        if (fault && fault->errorNumber != 0) {
            if (fault->errorNumber == EINTR) continue;
            return std::unexpected(POSIXFailure{fault->errorNumber});
        }
        const auto answer = body();
        if (answer != -1) return answer;
        if (errno != EINTR) return std::unexpected(POSIXFailure::current());
    }
}

/// The same for a call whose answer says nothing but that it was done.
template <typename Body>
[[nodiscard]] Result<void> done(SystemCall::Kind kind, Body body) {
    const auto answer = answered(kind, body);
    if (!answer) return std::unexpected(answer.error());
    return {};
}

/// The same for a call that moves up to `size` bytes and answers how many it did. `body` takes the size.
template <typename Body>
[[nodiscard]] Result<std::size_t> moved(SystemCall::Kind kind, std::size_t size, Body body) {
    for (;;) {
        const auto fault = SystemCall::gate(kind);
        if (fault && fault->errorNumber != 0) {
            if (fault->errorNumber == EINTR) continue;
            return std::unexpected(POSIXFailure{fault->errorNumber});
        }
        const auto count = body(fault && fault->isShort ? (size + 1) / 2 : size);
        if (count >= 0) return static_cast<std::size_t>(count);
        if (errno != EINTR) return std::unexpected(POSIXFailure::current());
    }
}

} // namespace ombrel::POSIX
