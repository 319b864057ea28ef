#include "base/Worker.h"

#include <gmock/gmock.h>
#include <pthread.h>

#include <atomic>
#include <chrono>
#include <latch>
#include <memory>
#include <string>
#include <thread>

namespace ombrel {
namespace {

using namespace std::chrono_literals;

/// Work that runs until it is asked to stop and then says so.
Worker::Body untilStopped(std::latch& started, std::atomic<bool>& stopped) {
    return [&started, &stopped](const std::stop_token& stop) {
        started.count_down();
        while (!stop.stop_requested())
            std::this_thread::yield();
        stopped = true;
    };
}

TEST(Worker, RunsOnAThreadOfItsOwnThatCarriesItsName) {
    std::string name(16, '\0');
    std::thread::id thread;
    const Worker worker("fifteen-letters", [&](const std::stop_token&) {
        ::pthread_getname_np(::pthread_self(), name.data(), name.size());
        thread = std::this_thread::get_id();
    });
    ASSERT_TRUE(Worker::waitUntilNoneRuns(5s));
    EXPECT_STREQ(name.c_str(), "fifteen-letters");
    EXPECT_NE(thread, std::this_thread::get_id());
}

TEST(Worker, IsAskedToStopWhenItsHandleGoesOrIsReplaced) {
    std::latch started(2);
    std::atomic<bool> firstStopped = false, secondStopped = false;
    {
        Worker worker("test", untilStopped(started, firstStopped));
        worker = Worker("test", untilStopped(started, secondStopped));
        started.wait();
    }
    ASSERT_TRUE(Worker::waitUntilNoneRuns(5s));
    EXPECT_TRUE(firstStopped);
    EXPECT_TRUE(secondStopped);
}

TEST(Worker, IsNeverWaitedForByItsHandle) {
    std::latch mayEnd(1);
    {
        const Worker deaf("test", [&](const std::stop_token&) { mayEnd.wait(); });
    }
    EXPECT_EQ(Worker::running(), 1U);
    EXPECT_FALSE(Worker::waitUntilNoneRuns(1ms));
    mayEnd.count_down();
    EXPECT_TRUE(Worker::waitUntilNoneRuns(5s));
}

TEST(Worker, GoesOnWithoutItsHandleOnceDetached) {
    std::latch mayLook(1);
    std::atomic<bool> wasStopped = true;
    {
        Worker worker("test", [&](const std::stop_token& stop) {
            mayLook.wait();
            wasStopped = stop.stop_requested();
        });
        worker.detach();
    }
    mayLook.count_down();
    ASSERT_TRUE(Worker::waitUntilNoneRuns(5s));
    EXPECT_FALSE(wasStopped);
}

TEST(Worker, HasLetGoOfEverythingWhenItCountsAsEnded) {
    const auto held = std::make_shared<int>(0);
    for (int i = 0; i < 200; ++i) {
        const Worker worker("test", [held](const std::stop_token&) {});
        ASSERT_TRUE(Worker::waitUntilNoneRuns(5s));
        ASSERT_EQ(held.use_count(), 1);
    }
}

TEST(Sentry, CountsFromTheRequestToStopUntilItHasEnded) {
    std::latch started(1), mayEnd(1);
    auto sentry = Worker::sentry("test", [&](const std::stop_token& stop) {
        started.count_down();
        while (!stop.stop_requested())
            std::this_thread::yield();
        mayEnd.wait();
    });
    started.wait();
    EXPECT_EQ(Worker::running(), 0U);
    sentry = Worker();
    EXPECT_EQ(Worker::running(), 1U);
    EXPECT_FALSE(Worker::waitUntilNoneRuns(1ms));
    mayEnd.count_down();
    EXPECT_TRUE(Worker::waitUntilNoneRuns(5s));
}

TEST(Sentry, CountsAlsoWhenItIsStoppedBeforeItsThreadHasBegun) {
    const auto held = std::make_shared<int>(0);
    for (int i = 0; i < 200; ++i) {
        (void)Worker::sentry("test", [held](const std::stop_token&) {});
        ASSERT_TRUE(Worker::waitUntilNoneRuns(5s));
        ASSERT_EQ(held.use_count(), 1);
    }
}

TEST(Sentry, ThatEndsOfItselfIsNotMissed) {
    std::latch done(1);
    const auto sentry = Worker::sentry("test", [&](const std::stop_token&) { done.count_down(); });
    done.wait();
    EXPECT_TRUE(Worker::waitUntilNoneRuns(5s));
}

} // namespace
} // namespace ombrel
