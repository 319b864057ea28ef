#pragma once

#include <functional>
#include <stop_token>

namespace ombrel::cli {

/// Runs the main thread's event loop until `done()` answers true, which is asked after each round of events.
/// False when `stop` came first. For commands that use services.
[[nodiscard]] bool runUntil(const std::function<bool()>& done, const std::stop_token& stop);

} // namespace ombrel::cli
