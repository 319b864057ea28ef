#include "base/SerialWorker.h"

#include <gmock/gmock.h>

#include <atomic>
#include <latch>
#include <vector>

namespace ombrel {
namespace {

using namespace std::chrono_literals;

TEST(SerialWorkerTasks, RunOneByOneInOrderAndOutliveTheHandle) {
    std::vector<int> order; // unguarded: that only one runs at a time is what is tested
    std::latch begun(1), go(1);
    {
        SerialWorker worker("serial");
        worker.run([&] {
            begun.count_down();
            go.wait();
            order.push_back(0);
        });
        begun.wait();
        for (int i = 1; i < 200; ++i)
            worker.run([&order, i] { order.push_back(i); });
    }
    EXPECT_TRUE(order.empty());
    go.count_down();
    ASSERT_TRUE(Worker::waitUntilNoneRuns(5s));
    ASSERT_EQ(order.size(), 200U);
    EXPECT_TRUE(std::ranges::is_sorted(order));
}

TEST(SerialWorkerThread, EndsWithItsTasksAndStartsAgain) {
    SerialWorker worker("serial");
    std::atomic<int> done = 0;
    for (int round = 1; round <= 3; ++round) {
        worker.run([&] { ++done; });
        ASSERT_TRUE(Worker::waitUntilNoneRuns(5s));
        EXPECT_EQ(done, round);
    }
}

} // namespace
} // namespace ombrel
