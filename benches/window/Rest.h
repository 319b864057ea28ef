#pragma once

#include <chrono>
#include <cstdint>
#include <deque>

namespace ombrel::bench {

/// Since when a program has hardly used the processor, told by looks at its clock.
class Rest {
public:
    /// So long it must have rested.
    static constexpr std::chrono::milliseconds span{1000};

    /// Counts from `began` on.
    explicit Rest(std::chrono::steady_clock::time_point began) : began_(began) {}

    /// `ticks` that the program has used so far.
    void look(std::int64_t ticks) {
        const auto now = std::chrono::steady_clock::now();
        looks_.push_back({now, ticks});
        // Two ticks in a second are a cursor that blinks.
        constexpr std::int64_t idleTicks = 2;
        while (ticks - looks_.front().ticks > idleTicks)
            looks_.pop_front();
    }
    [[nodiscard]] bool isAtRest() const {
        return !looks_.empty() && looks_.back().time - looks_.front().time >= span;
    }
    /// Seconds from the beginning until it came to rest.
    [[nodiscard]] double since() const {
        return std::chrono::duration<double>(looks_.front().time - began_).count();
    }

private:
    struct Look {
        std::chrono::steady_clock::time_point time;
        std::int64_t ticks;
    };
    std::chrono::steady_clock::time_point began_;
    std::deque<Look> looks_; ///< the oldest first, none of them too busy to belong to the rest
};

} // namespace ombrel::bench
