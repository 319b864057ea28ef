#include "base/ResultStream.h"

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <latch>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace ombrel {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Stream = ResultStream<int, std::string>;
using Ending = Stream::Ending;

/// Everything that still comes, and how it ends.
struct Rest {
    std::vector<int> values;
    Ending ending;
};

Rest rest(Stream& stream) {
    Rest rest;
    for (;;) {
        auto next = stream.next();
        if (!next) {
            rest.ending = std::unexpected(next.error());
            return rest;
        }
        if (!*next) return rest;
        rest.values.push_back(**next);
    }
}

/// A stream whose producer has made 0, 1, ... `count - 1` and ended before it is handed out.
Stream made(int count, Ending ending = {}) {
    Stream stream("test", [count, ending](const Stream::Sink& sink, const std::stop_token&) {
        for (int i = 0; i < count; ++i)
            sink.yield(i);
        return ending;
    });
    EXPECT_TRUE(Worker::waitUntilNoneRuns(5s));
    return stream;
}

TEST(ResultStream, DeliversEveryValueInOrderAndThenEnds) {
    Stream slow("test", [](const Stream::Sink& sink, const std::stop_token&) -> Ending {
        for (int i = 0; i < 3; ++i) {
            std::this_thread::sleep_for(1ms);
            sink.yield(i);
        }
        return {};
    });
    const auto [values, ending] = rest(slow);
    EXPECT_THAT(values, ElementsAre(0, 1, 2));
    EXPECT_TRUE(ending.has_value());

    auto many = made(100'000);
    EXPECT_EQ(rest(many).values.size(), 100'000U);
    auto none = made(0);
    EXPECT_THAT(rest(none).values, IsEmpty());
}

TEST(ResultStream, EndsWithItsErrorAfterTheValuesThatCameBefore) {
    auto failing = made(2, std::unexpected(Stopped<std::string>("broken")));
    const auto [values, ending] = rest(failing);
    EXPECT_THAT(values, ElementsAre(0, 1));
    ASSERT_FALSE(ending.has_value());
    EXPECT_EQ(ending.error().error(), "broken");

    auto cancelled = made(0, std::unexpected(Stopped<std::string>::cancelled()));
    EXPECT_TRUE(rest(cancelled).ending.error().wasCancelled());
}

TEST(ResultStream, KeepsTellingItsEnd) {
    auto failing = made(0, std::unexpected(Stopped<std::string>("broken")));
    (void)failing.next();
    EXPECT_EQ(failing.next().error().error(), "broken");
    EXPECT_EQ(failing.newest().error().error(), "broken");
    auto ended = Stream::ended(std::unexpected(Stopped<std::string>("too early")));
    EXPECT_EQ(ended.next().error().error(), "too early");
}

TEST(ResultStream, GivesTheNewestValueAndDropsTheOlder) {
    auto stream = made(5);
    EXPECT_EQ(stream.newest(), 4);
    EXPECT_EQ(stream.newest(), std::nullopt);
}

TEST(ResultStream, StopsAWaitWithoutHarmToTheStream) {
    std::latch mayGoOn(1);
    Stream stream("test", [&](const Stream::Sink& sink, const std::stop_token&) -> Ending {
        mayGoOn.wait();
        sink.yield(7);
        return {};
    });
    std::stop_source stop;
    const std::jthread stopper([&] {
        std::this_thread::sleep_for(5ms);
        stop.request_stop();
    });
    const auto stopped = stream.next(stop.get_token());
    ASSERT_FALSE(stopped.has_value());
    EXPECT_TRUE(stopped.error().wasCancelled());
    mayGoOn.count_down();
    EXPECT_EQ(stream.next(), 7);
}

TEST(ResultStream, StopsItsProducerWhenAbandonedAndDropsWhatItStillMakes) {
    const auto value = std::make_shared<int>(0);
    std::atomic<bool> wasStopped = false;
    std::latch hasYielded(1);
    {
        using Shared = ResultStream<std::shared_ptr<int>, std::string>;
        Shared stream(
            "test", [&wasStopped, &hasYielded, value](const Shared::Sink& sink, const std::stop_token& stop) {
                sink.yield(value);
                hasYielded.count_down();
                while (!stop.stop_requested())
                    std::this_thread::yield();
                wasStopped = true;
                sink.yield(value);
                return Shared::Ending();
            });
        hasYielded.wait();
    }
    ASSERT_TRUE(Worker::waitUntilNoneRuns(5s));
    EXPECT_TRUE(wasStopped);
    EXPECT_EQ(value.use_count(), 1);
}

TEST(ResultStream, LivesOnWhenMoved) {
    auto first = made(2);
    EXPECT_EQ(first.next(), 0);
    auto second = std::move(first);
    EXPECT_THAT(rest(second).values, ElementsAre(1));
}

} // namespace
} // namespace ombrel
