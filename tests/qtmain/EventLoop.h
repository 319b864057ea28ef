#pragma once

#include <chrono>
#include <functional>

namespace ombrel::testing {

/// Runs the event loop until `done()` answers true; false when that has not happened within `limit`.
bool runUntil(const std::function<bool()>& done, std::chrono::milliseconds limit = std::chrono::seconds(20));

/// Runs the event loop until no worker runs and nothing waits for the main thread. False as above.
bool runUntilQuiet(std::chrono::milliseconds limit = std::chrono::seconds(20));

} // namespace ombrel::testing
