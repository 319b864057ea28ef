#include "operations/JobBody.h"

#include "base/Worker.h"
#include "listing/POSIX.h"
#include "operations/PendingAnswer.h"
#include "support/TempTree.h"
#include "support/TestMount.h"
#include "support/TransferWorld.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <condition_variable>
#include <filesystem>
#include <mutex>
#include <thread>
#include <vector>

namespace ombrel {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using testing::TempTree;
using testing::TestMount;
using Overall = OperationReport::Overall;

/// Runs plans without anybody who watches.
struct JobWorld {
    FileOperationService service{std::make_shared<testing::NoTrash>()};
    DriveQueue queue;
    std::int64_t conflicts = -1;
    bool hasBegun = false;
    std::stop_source stop;

    JobResult run(JobPlan plan) {
        const auto place = queue.join();
        const JobEvents events{[this](std::int64_t count) { conflicts = count; }, [](const auto&) {},
                               [this] { hasBegun = true; }};
        OperationHooks hooks;
        hooks.conflicts = [](const ConflictContext&, std::stop_token) {
            return ConflictDecision{ConflictChoice::keepBoth, true};
        };
        return runJob(plan, hooks, events, *place, slowDrives, stop.get_token());
    }
    std::vector<std::uint64_t> devices; // that were asked about
    SlowDrives slowDrives = [this](const FileStatus& status) {
        devices.push_back(status.identity.device);
        return std::vector<DriveQueue::Drive>{status.identity.device};
    };
};

std::vector<TransferItem> items(std::initializer_list<FileURL> urls) {
    std::vector<TransferItem> all;
    for (const auto& url : urls)
        all.emplace_back(FileReference{url, std::nullopt});
    return all;
}

TEST(Job, CountsTheNamesThatAreTakenBeforeItBegins) {
    const TempTree tree;
    tree.folder("to");
    tree.file("to/a");
    tree.file("to/c");
    JobWorld world;
    const auto report =
        world
            .run(JobPlan::transfer(world.service, FileOperationKind::copy,
                                   items({tree.file("a"), tree.file("b"), tree.file("c")}), tree.url("to")))
            .report;
    EXPECT_EQ(report.overall(), Overall::succeeded);
    EXPECT_EQ(world.conflicts, 2);
    EXPECT_THAT(tree.names("to"), ElementsAre("a", "a (2)", "b", "c", "c (2)"));
}

TEST(Job, WantsDrivesForDataAloneThatItCopies) {
    const TempTree tree;
    const auto memory = TestMount::tmpfs();
    if (!memory) GTEST_SKIP() << memory.error();
    const TempTree other((*memory)->path());
    tree.folder("to");
    const auto here = POSIX::lstat(tree.url())->identity.device;
    const auto there = POSIX::lstat(other.url())->identity.device;
    const auto devicesFor = [&](JobPlan plan) {
        JobWorld world;
        EXPECT_EQ(world.run(std::move(plan)).report.overall(), Overall::succeeded);
        return world.devices;
    };
    const FileOperationService service(std::make_shared<testing::NoTrash>());
    const auto move = [&](const FileURL& source, const FileURL& to) {
        return devicesFor(JobPlan::transfer(service, FileOperationKind::move, items({source}), to));
    };
    EXPECT_THAT(move(tree.file("a"), tree.url("to")), IsEmpty()) << "a rename";
    EXPECT_THAT(move(tree.file("b"), other.url()), ElementsAre(here, there));
    EXPECT_THAT(devicesFor(JobPlan::transfer(service, FileOperationKind::copy, items({tree.file("c")}),
                                             tree.url("to"))),
                ElementsAre(here));
    EXPECT_THAT(devicesFor(JobPlan::rename(service, {tree.file("d"), {}}, "e")), IsEmpty());
    EXPECT_THAT(devicesFor(JobPlan::createFolder(service, tree.url(), "f")), IsEmpty());
    EXPECT_THAT(devicesFor(JobPlan::deletePermanently(service, {{tree.url("e"), {}}})), IsEmpty());
}

TEST(Job, ThatIsCancelledBeforeItBeginsTouchesNothing) {
    const TempTree tree;
    JobWorld world;
    world.stop.request_stop();
    const auto report = world.run(JobPlan::rename(world.service, {tree.file("a"), {}}, "b")).report;
    EXPECT_EQ(report.overall(), Overall::cancelled);
    EXPECT_EQ(world.run(JobPlan::createFolder(world.service, tree.url(), "new")).report.items,
              (std::vector<ItemResult>{{std::nullopt, ItemOutcome::cancelled()}}));
    EXPECT_FALSE(world.hasBegun);
    EXPECT_THAT(tree.names(), ElementsAre("a"));
}

TEST(Job, NoticesAnItemThatIsExchangedOnceItHasBegun) {
    const TempTree tree;
    const auto item = tree.file("a", "first");
    JobWorld world;
    auto plan = JobPlan::transfer(world.service, FileOperationKind::copy, items({item}), tree.folder("to"));
    auto work = std::move(plan.work);
    plan.work = [&](const OperationHooks& hooks, std::stop_token stop) {
        auto striking = hooks;
        striking.progress = [&](const OperationProgress& progress) {
            // Told once before the items are looked at.
            if (progress.phase != OperationProgress::Phase::preparing) return;
            std::filesystem::remove(item.path());
            std::filesystem::create_directory(tree.path("keepsTheNumber"));
            tree.file("a", "second");
        };
        return work(striking, stop);
    };
    const auto report = world.run(std::move(plan)).report;
    ASSERT_THAT(report.items, SizeIs(1));
    EXPECT_EQ(report.items.front().outcome, ItemOutcome::failed(FileOperationError::Case::sourceChanged));
}

TEST(PendingAnswer, ComesFromWhoeverHoldsTheRightToGiveIt) {
    PendingAnswer<int> pending(-1);
    std::jthread([answerer = pending.answerer()]() mutable { answerer(7); }).join();
    EXPECT_EQ(pending.wait({}), 7);
}

TEST(PendingAnswer, IsTheFallbackWhenNobodyIsLeftOrNobodyWaits) {
    PendingAnswer<int> dropped(-1);
    std::jthread([answerer = dropped.answerer()] {}).join();
    EXPECT_EQ(dropped.wait({}), -1);
    PendingAnswer<int> stopped(-1);
    auto answerer = stopped.answerer();
    std::stop_source stop;
    std::jthread stopper([&] { stop.request_stop(); });
    EXPECT_EQ(stopped.wait(stop.get_token()), -1);
    answerer(7);
}

/// Many at once, through everything that jobs share: the queue, questions answered by another thread,
/// reports.
TEST(Jobs, AThousandAtOnceAllReport) {
    constexpr int count = 1000;
    const TempTree tree;
    tree.folder("to");
    tree.file("to/taken");
    tree.file("taken", "contents");
    const FileOperationService service(std::make_shared<testing::NoTrash>());
    DriveQueue queue;
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<PendingAnswer<ConflictDecision>::Answerer> questions;
    int ended = 0;
    std::vector<Overall> judged;

    std::vector<Worker> workers;
    for (int i = 0; i < count; ++i) {
        const auto name = std::to_string(i);
        auto plan = i % 3 == 0   ? JobPlan::transfer(service, FileOperationKind::copy,
                                                     items({tree.url("taken")}), tree.url("to"))
                    : i % 3 == 1 ? JobPlan::createFolder(service, tree.url("to"), name)
                                 : JobPlan::rename(service, {tree.file(name), {}}, "renamed" + name);
        workers.emplace_back(
            "test-job", [&, plan = std::move(plan), place = queue.join()](std::stop_token stop) mutable {
                OperationHooks hooks;
                hooks.conflicts = [&](const ConflictContext&, std::stop_token token) {
                    PendingAnswer<ConflictDecision> pending({ConflictChoice::cancel, true});
                    {
                        const std::scoped_lock lock(mutex);
                        questions.push_back(pending.answerer());
                        changed.notify_all();
                    }
                    return pending.wait(token);
                };
                const auto result = runJob(
                    plan, hooks, {[](std::int64_t) {}, [](const auto&) {}, [] {}}, *place,
                    [](const FileStatus&) { return std::vector<DriveQueue::Drive>{1}; }, stop);
                const std::scoped_lock lock(mutex);
                judged.push_back(result.report.overall());
                ++ended;
                changed.notify_all();
            });
    }
    std::unique_lock lock(mutex);
    while (ended < count) {
        ASSERT_TRUE(changed.wait_for(lock, std::chrono::minutes(4),
                                     [&] { return ended == count || !questions.empty(); }));
        for (auto& answer : std::exchange(questions, {}))
            answer({ConflictChoice::skip, true});
    }
    lock.unlock();
    EXPECT_TRUE(Worker::waitUntilNoneRuns(std::chrono::minutes(1)));
    EXPECT_EQ(std::ranges::count(judged, Overall::succeeded), 666);
    EXPECT_EQ(std::ranges::count(judged, Overall::failed), 334) << "what was skipped counts as not done";
    EXPECT_THAT(tree.names("to"), SizeIs(334)) << "333 folders and the file";
}

} // namespace
} // namespace ombrel
