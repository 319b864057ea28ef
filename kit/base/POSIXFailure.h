#pragma once

#include <cerrno>
#include <string>
#include <system_error>

namespace ombrel {

/// The error number that a failing system call left. A value, usable as the error of `std::expected`.
struct POSIXFailure {
    int number = 0; ///< an errno value, by its name in <cerrno>

    /// The failure of the call that was just made on this thread.
    [[nodiscard]] static POSIXFailure current() noexcept { return {errno}; }

    /// The system's own words for the number, in the process's locale.
    [[nodiscard]] std::string systemText() const { return std::generic_category().message(number); }

    friend bool operator==(const POSIXFailure&, const POSIXFailure&) = default;
};

} // namespace ombrel
