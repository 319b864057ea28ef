#include "base/MainThread.h"

#include <gmock/gmock.h>

#include <memory>
#include <thread>
#include <utility>
#include <vector>

namespace ombrel {
namespace {

TEST(MainThread, IsTheThreadThatConnected) {
    MainThread::connect([](MainThread::Task) {});
    EXPECT_TRUE(MainThread::isCurrent());
    bool elsewhere = true;
    std::thread([&] { elsewhere = MainThread::isCurrent(); }).join();
    EXPECT_FALSE(elsewhere);
    MainThread::connect({});
}

TEST(MainThread, HandsTasksToTheLoopInOrderAndDestroysThemUnrunWithoutOne) {
    std::vector<MainThread::Task> queue;
    std::vector<int> ran;
    MainThread::connect([&](MainThread::Task task) { queue.push_back(std::move(task)); });
    for (int i = 0; i < 3; ++i)
        MainThread::post([&, i] { ran.push_back(i); });
    EXPECT_THAT(ran, ::testing::IsEmpty());
    for (auto& task : queue)
        task();
    EXPECT_THAT(ran, ::testing::ElementsAre(0, 1, 2));

    MainThread::connect({});
    auto held = std::make_shared<int>(0);
    MainThread::post([&, held] { ran.push_back(*held); });
    EXPECT_EQ(held.use_count(), 1);
    EXPECT_EQ(ran.size(), 3U);
}

} // namespace
} // namespace ombrel
