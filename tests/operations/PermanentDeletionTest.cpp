#include "operations/PermanentDeletion.h"

#include "listing/SystemCall.h"
#include "support/FailingCalls.h"
#include "support/FaultAt.h"
#include "support/ScriptedAnswers.h"
#include "support/StrikeAt.h"
#include "support/TempTree.h"
#include "support/TestMount.h"
#include "support/Unprivileged.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Error = FileOperationError;
using Overall = OperationReport::Overall;

OperationReport deleted(const FileURL& url, ScriptedAnswers& answers, std::stop_token stop = {}) {
    const auto reference = FileReference::sampling(url);
    return deletePermanently({&reference, 1}, answers.hooks(), stop);
}

OperationReport deleted(const FileURL& url) {
    ScriptedAnswers answers;
    return deleted(url, answers);
}

/// Three levels with files, links and an empty folder: 9 entries with the top.
FileURL sampleTree(const TempTree& tree, const std::string& name) {
    const auto top = tree.folder(name);
    tree.folder(name + "/a");
    tree.folder(name + "/a/b");
    tree.folder(name + "/empty");
    tree.file(name + "/one", "1");
    tree.file(name + "/a/two", "2");
    tree.file(name + "/a/b/three", "3");
    tree.symlink(name + "/a/link", "/");
    tree.symlink(name + "/broken", "nowhere");
    return top;
}

// ---- What is removed

TEST(PermanentDeletion, RemovesEveryKindOfEntryAndFollowsNoLink) {
    const TempTree tree;
    tree.folder("outside");
    tree.file("outside/kept", "k");
    const auto top = sampleTree(tree, "top");
    tree.symlink("top/to-folder", "../outside");
    tree.fifo("top/fifo");
    tree.file(std::string("top/\xFF\n\x01 ") + std::string(200, 'n'));
    sockaddr_un address{AF_UNIX, {}};
    tree.path("top/s").copy(address.sun_path, sizeof address.sun_path - 1);
    const int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    ::close(fd);

    EXPECT_EQ(deleted(top).overall(), Overall::succeeded);
    EXPECT_EQ(deleted(tree.symlink("alone", "outside")).overall(), Overall::succeeded);
    EXPECT_THAT(tree.names(), ElementsAre("outside"));
    EXPECT_EQ(tree.contents("outside/kept"), "k");
}

TEST(PermanentDeletion, ReportsEachItemAndCountsEntries) {
    const TempTree tree;
    const FileReference items[] = {FileReference::sampling(sampleTree(tree, "top")),
                                   FileReference::sampling(tree.url("gone")),
                                   FileReference::sampling(tree.file("file"))};
    ScriptedAnswers answers;
    const auto report = deletePermanently(items, answers.hooks());
    ASSERT_EQ(report.items.size(), 3U);
    EXPECT_EQ(report.items[0], (ItemResult{items[0].url, ItemOutcome::completed()}));
    EXPECT_EQ(report.items[1].outcome, ItemOutcome::failed(Error::Case::sourceMissing));
    EXPECT_EQ(report.items[2].outcome, ItemOutcome::completed());
    EXPECT_EQ(report.overall(), Overall::partiallySucceeded);

    ASSERT_FALSE(answers.reports.empty());
    EXPECT_EQ(answers.reports.front().phase, OperationProgress::Phase::preparing);
    EXPECT_EQ(answers.reports.back().phase, OperationProgress::Phase::deleting);
    EXPECT_EQ(answers.reports.back().totalItems, 11);
    EXPECT_EQ(answers.reports.back().completedItems, 11);
    EXPECT_EQ(deletePermanently({}, answers.hooks()).overall(), Overall::nothingToDo);
}

TEST(PermanentDeletion, ReachesAnyDepth) {
    const TempTree tree;
    int folder = ::open(tree.path().c_str(), O_PATH);
    const std::string name(60, 'd'); // 2,000 levels of it are far longer than any path may be
    for (int depth = 0; depth < 2000; ++depth) {
        ASSERT_EQ(::mkdirat(folder, name.c_str(), 0755), 0);
        const int below = ::openat(folder, name.c_str(), O_PATH | O_DIRECTORY);
        ::close(folder);
        folder = below;
    }
    ::close(::openat(folder, "deepest", O_CREAT | O_WRONLY, 0644));
    ::close(folder);
    EXPECT_EQ(deleted(tree.url(name)).overall(), Overall::succeeded);
    EXPECT_THAT(tree.names(), IsEmpty());
}

TEST(PermanentDeletion, RefusesTheRootAndTheFolderAbove) {
    const TempTree tree;
    tree.folder("a");
    const auto refused = ItemOutcome::failed(Error::invalidName(InvalidNameReason::reserved));
    EXPECT_EQ(deleted(FileURL()).items[0].outcome, refused);
    EXPECT_EQ(deleted(tree.url("a/..")).items[0].outcome, refused);
    EXPECT_TRUE(tree.exists("a"));
}

// ---- What it does not touch

TEST(PermanentDeletion, RefusesAnItemThatIsNotTheOneThatWasPicked) {
    const TempTree tree;
    const auto reference = FileReference::sampling(sampleTree(tree, "top"));
    ASSERT_EQ(::rename(tree.path("top").c_str(), tree.path("moved").c_str()), 0);
    sampleTree(tree, "top");
    const auto report = deletePermanently({&reference, 1}, {});
    EXPECT_EQ(report.items[0].outcome, ItemOutcome::failed(Error::Case::sourceChanged));
    EXPECT_TRUE(tree.exists("top/a/b/three"));
}

TEST(PermanentDeletion, NeverCrossesAMountPoint) {
    const TempTree tree;
    const auto top = sampleTree(tree, "top");
    const auto inside = TestMount::tmpfs(tree.path("top/a/mounted"));
    if (!inside) GTEST_SKIP() << inside.error();
    tree.file("top/a/mounted/kept", "k");
    tree.folder("elsewhere");
    tree.file("elsewhere/kept", "k");
    const auto bound = TestMount::bind(tree.path("elsewhere"), tree.path("top/bound"));
    ASSERT_TRUE(bound);

    ScriptedAnswers answers;
    const auto report = deleted(top, answers);
    ASSERT_EQ(report.items.size(), 3U);
    for (const auto& item : report.items) {
        EXPECT_EQ(item.outcome, ItemOutcome::failed(Error::posix(EBUSY)));
        EXPECT_TRUE(item.facts.isMountPoint);
    }
    EXPECT_THAT(tree.names("top"), ElementsAre("a", "bound"));
    EXPECT_THAT(tree.names("top/a"), ElementsAre("mounted"));
    EXPECT_EQ(tree.contents("top/a/mounted/kept") + tree.contents("elsewhere/kept"), "kk");
    EXPECT_EQ(deleted(tree.url("top/bound")).items[0].outcome, ItemOutcome::failed(Error::posix(EBUSY)));
    EXPECT_EQ(tree.contents("elsewhere/kept"), "k");
}

TEST(PermanentDeletion, IsNotLedAstrayByAFolderSwappedForALink) {
    for (int nth = 1; nth <= 12; ++nth) {
        const TempTree tree;
        tree.folder("outside");
        tree.folder("outside/b");
        tree.file("outside/two", "kept");
        tree.file("outside/b/three", "kept");
        const auto top = sampleTree(tree, "top");
        const StrikeAt meddler(SystemCall::Kind::open, nth, [&] {
            ::rename(tree.path("top/a").c_str(), tree.path("stolen").c_str());
            (void)!::symlink("../outside", tree.path("top/a").c_str());
        });
        (void)deleted(top);
        EXPECT_EQ(tree.contents("outside/two") + tree.contents("outside/b/three"), "keptkept") << nth;
    }
}

// The folder that the walk would go back up to is not the one it came from any more.
TEST(PermanentDeletion, StopsWhenTheTreeIsMovedUnderneathIt) {
    const TempTree tree;
    std::string path = "top";
    tree.folder(path);
    for (int depth = 0; depth < 60; ++depth)
        tree.folder(path += "/d");
    tree.folder("elsewhere");
    tree.file("elsewhere/d", "kept");
    const StrikeAt meddler(SystemCall::Kind::removeDirectory, 20, [&] {
        ::rename(tree.path("top/d/d/d/d/d").c_str(), tree.path("elsewhere/stolen").c_str());
    });
    EXPECT_EQ(deleted(tree.url("top")).items[0].outcome.which(), ItemOutcome::Case::failed);
    EXPECT_EQ(tree.contents("elsewhere/d"), "kept");
    EXPECT_TRUE(tree.exists("top/d/d/d/d"));
}

// Whoever renames the folder to save what is left of it may make a new one in its place.
TEST(PermanentDeletion, LeavesAnotherFolderThatTookTheNameMeanwhile) {
    bool hasStruck = true;
    int nth = 0;
    for (constexpr int mostCalls = 200; hasStruck && nth < mostCalls;) {
        const TempTree tree;
        const auto reference = FileReference::sampling(sampleTree(tree, "top"));
        const StrikeAt meddler(++nth, [&] {
            if (::rename(tree.path("top").c_str(), tree.path("saved").c_str()) != 0) return;
            tree.folder("top");
            tree.file("top/kept", "k");
        });
        (void)deletePermanently({&reference, 1}, {});
        hasStruck = meddler.hasStruck();
        if (!tree.exists("saved")) continue;
        EXPECT_EQ(tree.contents("top/kept"), "k") << nth;
    }
    EXPECT_GT(nth, 20);
    EXPECT_FALSE(hasStruck);
}

// A question may stand for long.
TEST(PermanentDeletion, LooksAgainAfterAQuestionWhetherItIsStillTheItem) {
    for (const bool isFolder : {false, true}) {
        const TempTree tree;
        if (isFolder)
            sampleTree(tree, "top");
        else
            tree.file("top", "old");
        const auto reference = FileReference::sampling(tree.url("top"));
        int asked = 0;
        OperationHooks hooks;
        hooks.errors = [&](const ErrorContext&, const std::stop_token&) {
            if (++asked > 1) return ErrorDecision{};
            (void)::rename(tree.path("top").c_str(), tree.path("saved").c_str());
            if (isFolder) tree.folder("top");
            tree.file(isFolder ? "top/kept" : "top", "k");
            return ErrorDecision{ErrorChoice::retry, false};
        };
        OperationReport report{FileOperationKind::delete_, {}};
        {
            // Of the folder all but itself can be removed.
            const auto kind = isFolder ? SystemCall::Kind::removeDirectory : SystemCall::Kind::unlink;
            const FailingCalls failing(kind, EIO, isFolder ? 4 : 1, 1);
            report = deletePermanently({&reference, 1}, hooks);
        }
        EXPECT_GE(asked, 1);
        EXPECT_EQ(tree.contents(isFolder ? "top/kept" : "top"), "k");
        EXPECT_EQ(report.items[0].outcome, ItemOutcome::failed(Error::Case::sourceChanged));
    }
}

TEST(PermanentDeletion, TakesWhatAppearsInTheTreeMeanwhileToo) {
    const TempTree tree;
    const auto top = sampleTree(tree, "top");
    const StrikeAt meddler(SystemCall::Kind::removeDirectory, 1, [&] { sampleTree(tree, "top/a/b/new"); });
    EXPECT_EQ(deleted(top).overall(), Overall::succeeded);
    EXPECT_THAT(tree.names(), IsEmpty());
}

// ---- Permissions

TEST(PermanentDeletion, RelaxesReadOnlyFoldersOfItsUser) {
    const TempTree tree;
    ASSERT_EQ(::chmod(tree.path().c_str(), 0777), 0);
    EXPECT_TRUE(asNobody([&] {
        const auto top = sampleTree(tree, "top");
        ::chmod(tree.path("top/a/b").c_str(), 0);
        ::chmod(tree.path("top/a").c_str(), 0500);
        ::chmod(tree.path("top").c_str(), 0555);
        return deleted(top).overall() == Overall::succeeded;
    }));
    EXPECT_THAT(tree.names(), IsEmpty());
}

TEST(PermanentDeletion, GivesModesBackWhereAFolderHasToStay) {
    const TempTree tree;
    ASSERT_EQ(::chmod(tree.path().c_str(), 0777), 0);
    tree.folder("mine");
    tree.file("mine/kept");
    ::chmod(tree.path("mine").c_str(), 0755);
    EXPECT_TRUE(asNobody([&] {
        tree.folder("top");
        tree.folder("top/theirs");
        return ::chmod(tree.path("top").c_str(), 0777) == 0;
    }));
    // Root's folder inside the user's: neither it nor what is in it can be removed by the user.
    ASSERT_EQ(::rename(tree.path("mine").c_str(), tree.path("top/theirs/mine").c_str()), 0);
    EXPECT_TRUE(asNobody([&] {
        ::chmod(tree.path("top/theirs").c_str(), 0511);
        ScriptedAnswers answers;
        const auto report = deleted(tree.url("top"), answers);
        return report.items.size() == 2 && answers.errors.size() == 1 &&
               report.items[1] == ItemResult{tree.url("top/theirs/mine/kept"),
                                             ItemOutcome::failed(Error::Case::permissionDenied)};
    }));
    struct stat facts;
    ASSERT_EQ(::stat(tree.path("top/theirs").c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 07777, 0511U);
    EXPECT_TRUE(tree.exists("top/theirs/mine/kept"));
}

TEST(PermanentDeletion, NeverRelaxesTheFolderThatHoldsTheItem) {
    const TempTree tree;
    ASSERT_EQ(::chmod(tree.path().c_str(), 0777), 0);
    EXPECT_TRUE(asNobody([&] {
        tree.folder("holder");
        const auto file = tree.file("holder/file");
        ::chmod(tree.path("holder").c_str(), 0555);
        return deleted(file).items[0].outcome == ItemOutcome::failed(Error::Case::permissionDenied);
    }));
    EXPECT_TRUE(tree.exists("holder/file"));
}

// ---- Questions

TEST(PermanentDeletion, AsksForEachEntryThatFailsAndGoesOn) {
    const TempTree tree;
    const auto top = sampleTree(tree, "top");
    ScriptedAnswers answers;
    answers.errorAnswers = {{ErrorChoice::retry, true}}; // retry never stands: the next failure asks again
    OperationReport report{FileOperationKind::delete_, {}};
    {
        class EveryUnlink final : public SystemCall::Interceptor {
        public:
            EveryUnlink() { SystemCall::intercept(this); }
            ~EveryUnlink() override { SystemCall::intercept(nullptr); }
            std::optional<SystemCall::Fault> before(SystemCall::Kind kind) override {
                if (kind != SystemCall::Kind::unlink || ++seen_ > 2) return std::nullopt;
                return SystemCall::Fault{.errorNumber = EIO};
            }
            int seen_ = 0;
        } const failing;
        report = deleted(top, answers);
    }
    ASSERT_EQ(answers.errors.size(), 2U);
    EXPECT_EQ(answers.errors[0].source, answers.errors[1].source);
    EXPECT_EQ(answers.errors[0].error, Error::posix(EIO));
    EXPECT_TRUE(answers.errors[0].canRetry);
    ASSERT_EQ(report.items.size(), 2U);
    EXPECT_EQ(report.items[0].source, top);
    EXPECT_EQ(report.items[1].source, answers.errors[0].source);
    // All that is left is the entry that was skipped, and the folders it is in.
    EXPECT_EQ(deleted(*answers.errors[0].source).overall(), Overall::succeeded);
    EXPECT_THAT(tree.names("top").size() + (tree.exists("top/a") ? tree.names("top/a").size() : 0),
                ::testing::Le(2));
}

TEST(PermanentDeletion, StopsWhereItIsCancelled) {
    const TempTree tree;
    const FileReference items[] = {FileReference::sampling(sampleTree(tree, "one")),
                                   FileReference::sampling(sampleTree(tree, "two"))};
    std::stop_source stop;
    const StrikeAt meddler(SystemCall::Kind::unlink, 2, [&] { stop.request_stop(); });
    const auto report = deletePermanently(items, {}, stop.get_token());
    EXPECT_EQ(report.overall(), Overall::cancelled);
    EXPECT_TRUE(tree.exists("one"));
    EXPECT_TRUE(tree.exists("two/a/b/three"));

    ScriptedAnswers answers;
    answers.errorAnswers = {{ErrorChoice::cancel, false}};
    const FileReference missing[] = {FileReference::sampling(tree.url("gone")), items[1]};
    EXPECT_EQ(deletePermanently(missing, answers.hooks()).overall(), Overall::cancelled);
    EXPECT_TRUE(tree.exists("two/a/b/three"));
}

// ---- Every call fails once

class PermanentDeletionFaults : public ::testing::TestWithParam<int> {};

TEST_P(PermanentDeletionFaults, LeaveAReportThatEqualsTheDisk) {
    int calls = 0;
    {
        const TempTree tree;
        const auto top = sampleTree(tree, "top");
        const FaultAt counting(0, {});
        EXPECT_EQ(deleted(top).overall(), Overall::succeeded);
        calls = counting.seen();
    }
    ASSERT_GT(calls, 20);
    for (int nth = 1; nth <= calls; ++nth) {
        for (const bool retries : {false, true}) {
            const TempTree tree;
            const auto top = sampleTree(tree, "top");
            tree.file("beside", "kept");
            const auto reference = FileReference::sampling(top);
            ScriptedAnswers answers;
            if (retries) answers.errorAnswers = {{ErrorChoice::retry, false}};
            std::optional<OperationReport> report;
            {
                const FaultAt fault(nth, {.errorNumber = GetParam()});
                report = deletePermanently({&reference, 1}, answers.hooks());
            }
            const bool isGone = !tree.exists("top");
            EXPECT_EQ(report->items[0].outcome.isSuccess(), isGone) << "call " << nth;
            EXPECT_TRUE(isGone || !retries) << "call " << nth;
            for (std::size_t i = 1; i < report->items.size(); ++i)
                EXPECT_TRUE(tree.exists(report->items[i].source->path().substr(tree.path().size() + 1)));
            EXPECT_EQ(tree.contents("beside"), "kept");
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Errors, PermanentDeletionFaults,
                         ::testing::Values(EIO, ENOSPC, EACCES, EPERM, EINTR, ESTALE, EMFILE, EROFS));

} // namespace
} // namespace ombrel
