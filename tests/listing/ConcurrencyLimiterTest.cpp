#include "listing/ConcurrencyLimiter.h"

#include <gmock/gmock.h>

#include <atomic>
#include <thread>
#include <vector>

namespace ombrel {
namespace {

TEST(ConcurrencyLimiter, ServesWaitersInTheOrderOfTheirArrival) {
    ConcurrencyLimiter limiter(0);
    std::vector<int> served;
    std::vector<std::jthread> threads;
    {
        const auto slot = limiter.acquire();
        for (int i = 0; i < 4; ++i) {
            std::atomic<bool> isStarted = false;
            threads.emplace_back([&, i] {
                isStarted = true;
                const auto own = limiter.acquire();
                served.push_back(i);
            });
            while (!isStarted)
                std::this_thread::yield();
            while (limiter.waiting() != i + 1)
                std::this_thread::yield();
        }
        EXPECT_EQ(limiter.running(), 1);
    }
    threads.clear();
    EXPECT_THAT(served, ::testing::ElementsAre(0, 1, 2, 3));
    EXPECT_EQ(limiter.running(), 0);
}

TEST(ConcurrencyLimiter, RunsAsManyAsItsLimitAndForgetsWhoGivesUp) {
    ConcurrencyLimiter limiter(2);
    const auto first = limiter.acquire();
    auto second = std::make_unique<ConcurrencyLimiter::Slot>(limiter.acquire());
    std::stop_source source;
    source.request_stop();
    EXPECT_FALSE(limiter.acquire(source.get_token()));
    EXPECT_EQ(limiter.waiting(), 0);
    second.reset();
    EXPECT_TRUE(limiter.acquire());
}

} // namespace
} // namespace ombrel
