#pragma once

#include <algorithm>
#include <chrono>
#include <functional>
#include <thread>

namespace ombrel::testing {

/// Looks again and again, ever less often, until `isThere`; gives up after a minute and a half, which a
/// machine that is busy with other things may need.
inline bool comesTrue(const std::function<bool()>& isThere) {
    using namespace std::chrono_literals;
    const auto end = std::chrono::steady_clock::now() + 90s;
    for (auto pause = 5ms; !isThere(); pause = std::min(2 * pause, 200ms)) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(pause);
    }
    return true;
}

} // namespace ombrel::testing
