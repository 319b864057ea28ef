#pragma once

#include <optional>
#include <utility>

namespace ombrel {

/// Why some work ended before it was done: it was cancelled, or it met an error of type `E`. Cancelled is an
/// outcome and carries no error.
template <typename E>
class Stopped {
public:
    [[nodiscard]] static Stopped cancelled() { return Stopped(); }
    Stopped(E error) : error_(std::move(error)) {}

    [[nodiscard]] bool wasCancelled() const noexcept { return !error_; }
    /// Only when it was not cancelled.
    [[nodiscard]] const E& error() const { return *error_; }

    friend bool operator==(const Stopped&, const Stopped&) = default;

private:
    Stopped() = default;
    std::optional<E> error_;
};

} // namespace ombrel
