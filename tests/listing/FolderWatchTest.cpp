#include "listing/FolderWatch.h"

#include "base/Log.h"
#include "support/FailingCalls.h"
#include "support/MirrorMount.h"
#include "support/TempTree.h"
#include "support/TestMount.h"
#include "support/Unprivileged.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace ombrel {
namespace {

using namespace std::chrono_literals;
using ::testing::AllOf;
using testing::asNobody;
using ::testing::ElementsAre;
using testing::FailingCalls;
using ::testing::HasSubstr;
using testing::MirrorMount;
using testing::TempTree;
using testing::TestMount;
using Clock = FolderSentry::Clock;
using Begun = std::expected<void, POSIXFailure>;

/// Writes down what a watch tells.
class Record {
public:
    [[nodiscard]] FolderWatch::Teller teller() {
        return {.begun =
                    [this](std::uint64_t number, Begun begun) {
                        note([&] {
                            number_ = number;
                            begun_ = begun;
                        });
                    },
                .changed = [this] { note([&] { ++changes_, lastChange_ = Clock::now(); }); },
                .gone = [this] { note([&] { ++gone_; }); }};
    }
    /// How it began; a failure of its own kind when it has not within the limit.
    [[nodiscard]] Begun begun(std::uint64_t number = 0) {
        const bool came = waitFor([&] { return begun_ && number_ >= number; });
        const std::scoped_lock lock(mutex_);
        return came ? *begun_ : std::unexpected(POSIXFailure{ETIME});
    }
    [[nodiscard]] bool hasChanges(int count) {
        return waitFor([&] { return changes_ >= count; });
    }
    [[nodiscard]] bool hasChangeAfter(Clock::time_point time) {
        return waitFor([&] { return lastChange_ > time; });
    }
    [[nodiscard]] bool hasGone(int count = 1) {
        return waitFor([&] { return gone_ >= count; });
    }
    [[nodiscard]] bool hasBegun() {
        const std::scoped_lock lock(mutex_);
        return begun_.has_value();
    }
    [[nodiscard]] int changes() {
        const std::scoped_lock lock(mutex_);
        return changes_;
    }
    [[nodiscard]] Clock::time_point lastChange() {
        const std::scoped_lock lock(mutex_);
        return lastChange_;
    }

private:
    template <typename Step>
    void note(Step step) {
        const std::scoped_lock lock(mutex_);
        step();
        changed_.notify_all();
    }
    template <typename Done>
    bool waitFor(Done done) {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, 20s, done);
    }

    std::mutex mutex_; // guards what follows
    std::condition_variable changed_;
    std::optional<Begun> begun_;
    std::uint64_t number_ = 0;
    int changes_ = 0, gone_ = 0;
    Clock::time_point lastChange_;
};

/// Holds the calls of one kind back until they are let go.
class HeldCalls final : public SystemCall::Interceptor {
public:
    explicit HeldCalls(SystemCall::Kind kind) : kind_(kind) { SystemCall::intercept(this); }
    ~HeldCalls() override {
        letGo();
        SystemCall::intercept(nullptr);
    }
    std::optional<SystemCall::Fault> before(SystemCall::Kind kind) override {
        if (kind == kind_) {
            std::unique_lock lock(mutex_);
            isReached_ = true;
            changed_.notify_all();
            changed_.wait(lock, [this] { return isLetGo_; });
        }
        return std::nullopt;
    }
    [[nodiscard]] bool waitUntilReached() {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, 20s, [this] { return isReached_; });
    }
    void letGo() {
        const std::scoped_lock lock(mutex_);
        isLetGo_ = true;
        changed_.notify_all();
    }

private:
    const SystemCall::Kind kind_;
    std::mutex mutex_; // guards what follows
    std::condition_variable changed_;
    bool isReached_ = false, isLetGo_ = false;
};

/// How often whoever makes events came to a stop himself, on a busy machine: as many bursts more there are.
class Pauses {
public:
    void step() {
        const auto now = Clock::now();
        lengths_.push_back(now - std::exchange(last_, now));
    }
    [[nodiscard]] int count(Clock::duration longerThan) const {
        constexpr auto unsure = 50ms; // the watch may see a pause a little longer than it was
        return static_cast<int>(std::ranges::count_if(
            lengths_, [&](Clock::duration length) { return length + unsure > longerThan; }));
    }

private:
    Clock::time_point last_ = Clock::now();
    std::vector<Clock::duration> lengths_;
};

class Watch : public ::testing::Test {
protected:
    Watch() { tree.folder("shown"); }
    ~Watch() override {
        watch = FolderWatch();
        EXPECT_TRUE(Worker::waitUntilNoneRuns(20s));
    }
    [[nodiscard]] Begun start(const FileURL& url) {
        watch = FolderWatch(url, pace, record.teller());
        return record.begun();
    }
    [[nodiscard]] Begun renewed() { return record.begun(watch.renew()); }

    TempTree tree;
    FolderWatch::Pace pace{
        .quiet = 20ms, .shortestRest = 20ms, .longestIdleRest = 40ms, .longestRest = 100ms};
    Record record;
    FolderWatch watch;
};

TEST_F(Watch, TellsABurstOnceWhenItIsOver) {
    pace.quiet = 500ms;
    ASSERT_TRUE(start(tree.url("shown")));
    Pauses pauses;
    for (int i = 0; i < 10; ++i) {
        tree.file("shown/file" + std::to_string(i));
        pauses.step();
    }
    const auto last = Clock::now();
    ASSERT_TRUE(record.hasChangeAfter(last));
    EXPECT_GE(record.lastChange() - last, pace.quiet);
    const int before = record.changes();
    EXPECT_LE(before, 1 + pauses.count(pace.quiet));
    ::unlink(tree.path("shown/file0").c_str());
    ASSERT_TRUE(record.hasChanges(before + 1));
}

TEST_F(Watch, TellsAtOnceThatTheFolderIsGoneAndDropsTheChangeThatWaits) {
    pace.quiet = 1h;
    ASSERT_TRUE(start(tree.url("shown")));
    tree.file("shown/file");
    ASSERT_EQ(::rename(tree.path("shown").c_str(), tree.path("moved").c_str()), 0);
    ASSERT_TRUE(record.hasGone());
    tree.folder("shown");
    tree.file("shown/file");
    ASSERT_TRUE(renewed());
    ASSERT_EQ(::unlink(tree.path("shown/file").c_str()), 0);
    ASSERT_EQ(::rmdir(tree.path("shown").c_str()), 0);
    ASSERT_TRUE(record.hasGone(2));
    EXPECT_EQ(record.changes(), 0);
}

TEST_F(Watch, TellsThatAFolderIsGoneThatAShellStillStandsIn) {
    ASSERT_TRUE(start(tree.url("shown")));
    const OwnedFd open(::open(tree.path("shown").c_str(), O_RDONLY | O_CLOEXEC));
    tree.folder("other");
    ASSERT_EQ(::rmdir(tree.path("other").c_str()), 0);
    ASSERT_EQ(::rmdir(tree.path("shown").c_str()), 0);
    EXPECT_TRUE(record.hasGone());
}

TEST_F(Watch, TellsThatItsVolumeWasUnmountedAndKeepsNoneBusy) {
    auto mount = TestMount::tmpfs();
    if (!mount) GTEST_SKIP() << mount.error();
    ASSERT_TRUE(start((*mount)->url()));
    ASSERT_TRUE((*mount)->unmount());
    EXPECT_TRUE(record.hasGone());
}

TEST_F(Watch, AnswersWhyAFolderCannotBeWatched) {
    tree.file("file");
    EXPECT_EQ(start(tree.url("none")), Begun(std::unexpected(POSIXFailure{ENOENT})));
    EXPECT_EQ(renewed(), Begun(std::unexpected(POSIXFailure{ENOENT})));
    tree.folder("none");
    EXPECT_TRUE(renewed());
    tree.file("none/file");
    EXPECT_TRUE(record.hasChanges(1));
    Record second;
    watch = FolderWatch(tree.url("file"), pace, second.teller());
    EXPECT_EQ(second.begun(), Begun(std::unexpected(POSIXFailure{ENOTDIR})));
    ASSERT_EQ(::chmod(tree.path("shown").c_str(), 0700), 0);
    ASSERT_EQ(::chmod(tree.path().c_str(), 0755), 0);
    Record third;
    if (!asNobody([&] {
            watch = FolderWatch(tree.url("shown"), pace, third.teller());
            return true;
        }))
        GTEST_SKIP() << "nobody cannot be made of us";
    EXPECT_EQ(third.begun(), Begun(std::unexpected(POSIXFailure{EACCES})));
}

TEST_F(Watch, KeepsAChangeThatWaitsWhenItIsRenewed) {
    pace.quiet = 500ms;
    ASSERT_TRUE(start(tree.url("shown")));
    tree.file("shown/file");
    for (int i = 0; i < 3; ++i)
        ASSERT_TRUE(renewed());
    EXPECT_TRUE(record.hasChanges(1));
}

TEST_F(Watch, FollowsThePathWhenItIsRenewed) {
    tree.folder("second");
    tree.symlink("link", "shown");
    ASSERT_TRUE(start(tree.url("link")));
    ASSERT_EQ(::unlink(tree.path("link").c_str()), 0);
    tree.symlink("link", "second");
    ASSERT_TRUE(renewed());
    tree.file("second/file");
    ASSERT_TRUE(record.hasChanges(1));
}

TEST_F(Watch, TellsAChangeThatMayHaveComeBeforeItWasArmed) {
    HeldCalls held(SystemCall::Kind::watch);
    watch = FolderWatch(tree.url("shown"), pace, record.teller());
    ASSERT_TRUE(held.waitUntilReached());
    watch.arming().wait(1ms);
    EXPECT_FALSE(record.hasBegun());
    held.letGo();
    EXPECT_TRUE(record.hasChanges(1));
    watch.arming().wait(20s);
    FolderWatch::Arming().wait(20s);
}

// ---- A hundred thousand events in a burst: made, closed, removed

class Burst : public Watch {
protected:
    void makeBurst() {
        for (int i = 0; i < 33'334; ++i) {
            const auto path = memory.path("shown/brief" + std::to_string(i));
            ::close(::open(path.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600));
            ::unlink(path.c_str());
            pauses.step();
        }
    }
    void SetUp() override { memory.folder("shown"); }

    TempTree memory{"/dev/shm"};
    Pauses pauses;
};

TEST_F(Burst, IsToldOnce) {
    pace.quiet = 500ms;
    ASSERT_TRUE(start(memory.url("shown")));
    makeBurst();
    const auto last = Clock::now();
    ASSERT_TRUE(record.hasChangeAfter(last));
    EXPECT_GE(record.lastChange() - last, pace.quiet);
    EXPECT_LE(record.changes(), 1 + pauses.count(pace.quiet));
}

TEST_F(Burst, ThatCannotBeTakenInTimeHidesNotThatTheFolderIsGone) {
    ASSERT_TRUE(start(memory.url("shown")));
    HeldCalls held(SystemCall::Kind::read);
    makeBurst();
    // That is dropped with the events for which there was no room.
    ASSERT_EQ(::rmdir(memory.path("shown").c_str()), 0);
    held.letGo();
    EXPECT_TRUE(record.hasGone());
}

// ---- Folders that have to be looked at

/// Collects what is written to the log meanwhile.
class LogLines {
public:
    LogLines() {
        Log::connect([this](Log::Category category, Log::Level level, const std::string& line) {
            const std::scoped_lock lock(mutex_);
            lines_.push_back(std::string(Log::name(category)) +
                             (level == Log::Level::error ? " error: " : " info: ") + line);
        });
    }
    ~LogLines() { Log::connect({}); }
    [[nodiscard]] std::vector<std::string> lines() {
        const std::scoped_lock lock(mutex_);
        return lines_;
    }

private:
    std::mutex mutex_; // guards lines_
    std::vector<std::string> lines_;
};

class LookedAt : public Watch, public ::testing::WithParamInterface<int> {};

TEST_P(LookedAt, WhenNoWatchIsLeftAndTheLogSaysSo) {
    LogLines log;
    {
        const FailingCalls none(SystemCall::Kind::watch, GetParam());
        ASSERT_TRUE(start(tree.url("shown")));
    }
    EXPECT_THAT(log.lines(), ElementsAre(AllOf(HasSubstr("directory error: "), HasSubstr("no watch left"),
                                               HasSubstr(tree.url("shown").uri()))));
    tree.file("shown/file");
    ASSERT_TRUE(record.hasChanges(1));
    tree.file("shown/file", "longer");
    ASSERT_TRUE(record.hasChanges(2));
    tree.folder("new");
    ASSERT_EQ(::rename(tree.path("shown").c_str(), tree.path("moved").c_str()), 0);
    ASSERT_EQ(::rename(tree.path("new").c_str(), tree.path("shown").c_str()), 0);
    ASSERT_TRUE(record.hasGone()) << "another folder stands there";
    pace.quiet = 1h;
    ASSERT_TRUE(renewed()) << "there are watches again";
    tree.file("shown/file");
    EXPECT_TRUE(record.hasChanges(3));
}

INSTANTIATE_TEST_SUITE_P(Limits, LookedAt, ::testing::Values(ENOSPC, EMFILE));

class Mirrored : public Watch {
protected:
    void SetUp() override {
        tree.folder("shown/deeper");
        mirror = MirrorMount::of(tree.path("shown"));
        if (!mirror) GTEST_SKIP() << mirror.error();
    }
    MirrorMount::Made mirror;
};

TEST_F(Mirrored, FoldersAreLookedAtBecauseNobodyTellsOfTheirChanges) {
    LogLines log;
    ASSERT_TRUE(start((*mirror)->url().appending("deeper")));
    EXPECT_THAT(log.lines(), ElementsAre(AllOf(HasSubstr("directory info: "), HasSubstr("does not tell"))));
    for (int round = 1; round <= 3; ++round) {
        tree.file("shown/deeper/file" + std::to_string(round));
        ASSERT_TRUE(record.hasChanges(round));
    }
    for (const auto& name : tree.names("shown/deeper"))
        ::unlink(tree.path("shown/deeper/" + name).c_str());
    ASSERT_EQ(::rmdir(tree.path("shown/deeper").c_str()), 0);
    EXPECT_TRUE(record.hasGone());
    tree.folder("shown/deeper");
    ASSERT_TRUE(renewed());
    const int before = record.changes();
    tree.file("shown/deeper/again");
    EXPECT_TRUE(record.hasChanges(before + 1));
}

TEST_F(Mirrored, FoldersThatHangHoldNobodyUp) {
    (*mirror)->hang();
    watch = FolderWatch((*mirror)->url(), pace, record.teller());
    watch.arming().wait(1ms);
    (void)watch.renew();
    watch = FolderWatch();
    EXPECT_FALSE(record.hasBegun());
    EXPECT_EQ(Worker::running(), 1U) << "it hangs, and nobody has waited for it";
    (*mirror)->answer();
    EXPECT_TRUE(Worker::waitUntilNoneRuns(20s));
    EXPECT_FALSE(record.hasBegun()) << "what comes too late is not told";
}

TEST_F(Mirrored, FoldersThatBeginToHangAreForgottenToo) {
    ASSERT_TRUE(start((*mirror)->url()));
    (*mirror)->hang();
    watch = FolderWatch();
    (*mirror)->answer();
    EXPECT_TRUE(Worker::waitUntilNoneRuns(20s));
}

} // namespace
} // namespace ombrel
