#include "services/DirectoryWatcher.h"

#include "base/MainThread.h"
#include "support/FailingCalls.h"
#include "support/MirrorMount.h"
#include "support/TempTree.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <memory>
#include <optional>
#include <vector>

#include "qtmain/KitWorld.h"

namespace ombrel {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::KitWorld;
using testing::MirrorMount;
using testing::runUntil;
using testing::runUntilQuiet;
using testing::TempTree;
using Event = DirectoryWatcher::Event;
using Answered = std::expected<void, POSIXFailure>;

class Watching : public ::testing::Test {
protected:
    Watching() { tree.folder("shown"); }
    void makeWatcher(DirectoryWatcher::Seconds delay) {
        watcher = std::make_unique<DirectoryWatcher>(delay, [this](Event event) {
            EXPECT_TRUE(MainThread::isCurrent());
            events.push_back(event);
            if (onEvent) onEvent();
        });
    }
    /// Watches and waits for the answer; a failure of its own kind when none comes.
    Answered watch(const FileURL& url) {
        std::optional<Answered> answer;
        watcher->watch(url, [&](Answered given) { answer = given; });
        EXPECT_FALSE(answer) << "never from within the call";
        if (!runUntil([&] { return answer.has_value(); })) return std::unexpected(POSIXFailure{ETIME});
        return *answer;
    }
    [[nodiscard]] bool hasEvents(std::size_t count) const {
        return runUntil([&] { return events.size() >= count; });
    }

    KitWorld world;
    TempTree tree;
    std::unique_ptr<DirectoryWatcher> watcher;
    std::vector<Event> events;
    std::function<void()> onEvent;
};

constexpr DirectoryWatcher::Seconds brief(0.02), aPanes(0.25), anHour(3600);

TEST_F(Watching, FoldsTenFilesIntoOneNotice) {
    makeWatcher(aPanes);
    ASSERT_TRUE(watch(tree.url("shown")));
    const auto begun = std::chrono::steady_clock::now();
    for (int i = 0; i < 10; ++i)
        tree.file("shown/file" + std::to_string(i));
    const auto took = std::chrono::steady_clock::now() - begun;
    ASSERT_TRUE(hasEvents(1));
    EXPECT_GE(std::chrono::steady_clock::now() - begun, aPanes);
    ASSERT_EQ(::rename(tree.path("shown").c_str(), tree.path("moved").c_str()), 0);
    ASSERT_TRUE(runUntil([&] { return events.back() == Event::directoryInvalidated; }));
    EXPECT_TRUE(took >= aPanes || events.size() == 2) << "a busy machine may have made two bursts of them";
}

TEST_F(Watching, AnswersWhyAFolderCannotBeWatchedAndGoesOn) {
    makeWatcher(brief);
    tree.file("file");
    EXPECT_EQ(watch(tree.url("none")), Answered(std::unexpected(POSIXFailure{ENOENT})));
    EXPECT_EQ(watch(tree.url("none")), Answered(std::unexpected(POSIXFailure{ENOENT})));
    EXPECT_EQ(watch(tree.url("file")), Answered(std::unexpected(POSIXFailure{ENOTDIR})));
    ASSERT_TRUE(watch(tree.url("shown")));
    tree.file("shown/file");
    EXPECT_TRUE(hasEvents(1));
}

TEST_F(Watching, EndsWithStopAndSoDoesTheNoticeThatWaits) {
    makeWatcher(aPanes);
    watcher->stop();
    ASSERT_TRUE(watch(tree.url("shown")));
    tree.file("shown/file");
    watcher->stop();
    ASSERT_TRUE(runUntilQuiet());
    tree.file("shown/other");
    bool isAnswered = false;
    watcher->watch(tree.url("shown"), [&](const Answered&) { isAnswered = true; });
    watcher->stop();
    ASSERT_TRUE(runUntilQuiet());
    EXPECT_FALSE(isAnswered);
    EXPECT_THAT(events, IsEmpty());
}

TEST_F(Watching, TurnsToAnotherFolderAndForgetsTheFirst) {
    makeWatcher(aPanes);
    const FileURL other = tree.folder("other");
    ASSERT_TRUE(watch(tree.url("shown")));
    tree.file("shown/file");
    bool isAnswered = false;
    watcher->watch(tree.url("none"), [&](const Answered&) { isAnswered = true; });
    ASSERT_TRUE(watch(other));
    EXPECT_FALSE(isAnswered) << "it was overtaken";
    ASSERT_EQ(::rename(tree.path("shown").c_str(), tree.path("moved").c_str()), 0);
    ASSERT_EQ(::rmdir(other.path().c_str()), 0);
    ASSERT_TRUE(hasEvents(1));
    EXPECT_THAT(events, ElementsAre(Event::directoryInvalidated));
}

TEST_F(Watching, TellsAtOnceThatTheFolderIsGoneAndDropsTheNoticeThatWaits) {
    makeWatcher(anHour);
    ASSERT_TRUE(watch(tree.url("shown")));
    for (std::size_t round = 1; round <= 2; ++round) {
        tree.file("shown/file");
        ASSERT_EQ(::unlink(tree.path("shown/file").c_str()), 0);
        ASSERT_EQ(::rmdir(tree.path("shown").c_str()), 0);
        ASSERT_TRUE(hasEvents(round));
        EXPECT_EQ(events.back(), Event::directoryInvalidated);
        tree.folder("shown");
        ASSERT_TRUE(watch(tree.url("shown"))) << "removed and made again";
    }
}

TEST_F(Watching, TheSameFolderAgainKeepsTheNoticeThatWaits) {
    makeWatcher(0.5s);
    ASSERT_TRUE(watch(tree.url("shown")));
    tree.file("shown/file");
    for (int i = 0; i < 3; ++i)
        ASSERT_TRUE(watch(tree.url("shown").marked(FileURL::Mark::directory)));
    EXPECT_TRUE(hasEvents(1));
}

TEST_F(Watching, MayBeChangedAndEndedByItsOwnHandler) {
    makeWatcher(brief);
    ASSERT_TRUE(watch(tree.url("shown")));
    onEvent = [&] {
        watcher->watch(tree.folder("other"), [&](const Answered&) { tree.file("other/file"); });
    };
    tree.file("shown/file");
    ASSERT_TRUE(hasEvents(1));
    onEvent = [&] { watcher.reset(); };
    ASSERT_TRUE(hasEvents(2));
    EXPECT_FALSE(watcher);
}

TEST_F(Watching, IsNeverHeldUpByAFolderThatHangs) {
    const auto mirror = MirrorMount::of(tree.path("shown"));
    if (!mirror) GTEST_SKIP() << mirror.error();
    (*mirror)->hang();
    makeWatcher(brief);
    bool isAnswered = false;
    const auto note = [&](const Answered&) { isAnswered = true; };
    watcher->watch((*mirror)->url(), note);
    watcher->watch((*mirror)->url(), note);
    watcher->stop();
    watcher->watch((*mirror)->url(), note);
    ASSERT_TRUE(watch(tree.url()));
    watcher->watch((*mirror)->url(), note);
    watcher.reset();
    EXPECT_GE(Worker::running(), 1U) << "nobody has waited";
    (*mirror)->answer();
    ASSERT_TRUE(runUntilQuiet());
    EXPECT_FALSE(isAnswered);
}

} // namespace
} // namespace ombrel
