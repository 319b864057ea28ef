#include "operations/DriveQueue.h"

#include <gmock/gmock.h>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace ombrel {
namespace {

using Number = DriveQueue::Number;

/// A job that waits for its turn on a thread of its own and keeps the turn until it is told to leave.
class WaitingJob {
public:
    WaitingJob(DriveQueue& queue, std::vector<DriveQueue::Drive> drives)
        : place_(queue.join()), thread_([this, drives = std::move(drives)](const std::stop_token& stop) {
              const auto waiting = [this](const std::vector<Number>& ahead) { set(State::waits, ahead); };
              set(place_->wait(drives, waiting, stop) ? State::works : State::cancelled, {});
          }) {}

    DriveQueue::Place& place() { return *place_; }
    void cancel() { thread_.request_stop(); }

    enum class State : std::uint8_t { fresh, waits, works, cancelled };
    [[nodiscard]] bool comesTo(State state) {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, std::chrono::seconds(20), [&] { return state_ == state; });
    }
    [[nodiscard]] bool waitsFor(const std::vector<Number>& ahead) {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, std::chrono::seconds(20),
                                 [&] { return state_ == State::waits && ahead_ == ahead; });
    }
    [[nodiscard]] State state() {
        const std::scoped_lock lock(mutex_);
        return state_;
    }

private:
    void set(State state, const std::vector<Number>& ahead) {
        const std::scoped_lock lock(mutex_);
        state_ = state;
        ahead_ = ahead;
        changed_.notify_all();
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    State state_ = State::fresh;
    std::vector<Number> ahead_;
    std::shared_ptr<DriveQueue::Place> place_;
    std::jthread thread_;
};
using State = WaitingJob::State;

TEST(DriveQueue, LetsJobsThatShareADriveRunInTheirOrder) {
    DriveQueue queue;
    WaitingJob first(queue, {1, 2});
    ASSERT_TRUE(first.comesTo(State::works));
    WaitingJob second(queue, {2, 3});
    ASSERT_TRUE(second.waitsFor({1}));
    WaitingJob third(queue, {3});
    EXPECT_TRUE(third.waitsFor({2})) << "it shares no drive with the one that works, but came later";
    WaitingJob elsewhere(queue, {4}), dataless(queue, {});
    EXPECT_TRUE(elsewhere.comesTo(State::works)) << "another drive";
    EXPECT_TRUE(dataless.comesTo(State::works)) << "no drive at all";
    EXPECT_EQ(second.state(), State::waits);
    first.place().leave();
    ASSERT_TRUE(second.comesTo(State::works));
}

/// Of two jobs that want the same drive the second waits for the first.
class TakenDrive : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(first.comesTo(State::works));
        second.emplace(queue, std::vector<DriveQueue::Drive>{1});
        ASSERT_TRUE(second->waitsFor({1}));
    }
    DriveQueue queue;
    WaitingJob first{queue, {1}};
    std::optional<WaitingJob> second;
};

TEST_F(TakenDrive, KeepsTheOrderAmongThoseThatWait) {
    WaitingJob third(queue, {1});
    ASSERT_TRUE(third.waitsFor({1}));
    first.place().leave();
    ASSERT_TRUE(second->comesTo(State::works));
    EXPECT_TRUE(third.waitsFor({2}));
    second->place().leave();
    EXPECT_TRUE(third.comesTo(State::works));
}

TEST_F(TakenDrive, IsPassedByAJobThatIsToStartNow) {
    second->place().startNow();
    ASSERT_TRUE(second->comesTo(State::works));
    WaitingJob third(queue, {1});
    EXPECT_TRUE(third.waitsFor({1, 2})) << "it uses the drive all the same";
}

TEST_F(TakenDrive, IsNotHeldUpByAJobThatDoesNothing) {
    first.place().setIdle(true);
    ASSERT_TRUE(second->comesTo(State::works));
    first.place().setIdle(false);
    WaitingJob third(queue, {1});
    EXPECT_TRUE(third.waitsFor({1, 2})) << "it went on, and is not made to wait";
}

TEST_F(TakenDrive, LetsACancelledJobGoAndThoseBehindItCloseUp) {
    WaitingJob third(queue, {1});
    ASSERT_TRUE(third.waitsFor({1}));
    second->cancel();
    ASSERT_TRUE(second->comesTo(State::cancelled));
    second->place().leave();
    EXPECT_EQ(third.state(), State::waits);
    first.place().leave();
    EXPECT_TRUE(third.comesTo(State::works));
}

} // namespace
} // namespace ombrel
