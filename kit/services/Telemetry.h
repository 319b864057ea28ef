#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace ombrel {

/// Counts failures, for whoever wants to know; nothing is ever sent anywhere. Main thread.
class Telemetry {
public:
    /// Those that exist: access denied, bookmark unusable, folder not there.
    static constexpr std::size_t counters = 3;

    [[nodiscard]] bool isEnabled() const noexcept { return true; }
    /// Other numbers are passed over.
    void count(int counter) noexcept {
        if (counter >= 0 && static_cast<std::size_t>(counter) < counters)
            ++counts_[static_cast<std::size_t>(counter)];
    }
    [[nodiscard]] std::uint64_t counted(int counter) const noexcept {
        return counts_.at(static_cast<std::size_t>(counter));
    }

private:
    std::array<std::uint64_t, counters> counts_{};
};

} // namespace ombrel
