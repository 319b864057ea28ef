#include "operations/ArchiveWriter.h"
#include "support/ArchiveWorld.h"
#include "support/FaultAt.h"
#include "support/TestMount.h"
#include "support/TreeSnapshot.h"
#include "support/Unprivileged.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <functional>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::AnyOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using Case = FileOperationError::Case;

class Compression : public ::testing::Test {
protected:
    TempTree tree;
    ArchiveWorld world;

    void SetUp() override {
        tree.folder("out");
        tree.folder("back");
    }

    /// What an extraction of the archive gives.
    TreeSnapshot contentsOf(const std::string& archive) {
        EXPECT_TRUE(shell(tree.path("back"), "bsdtar -xf '" + tree.path(archive) + "'"));
        return snapshotOf(tree.path("back"));
    }
    ArchiveWriter::Part partFor(const std::vector<FileURL>& sources) {
        const OperationHooks hooks;
        JobRun run(hooks, {});
        const auto contents = ArchiveContents::measure(sources, run);
        return ArchiveWriter(contents.value(), sources.size(), world.settings).part();
    }
};

void fillWithOddNames(const TempTree& tree, const std::string& top) {
    tree.folder(top);
    for (const auto* name : {"-", "-rf", "@names", " lead", "trail ", "line\nend", "back\\slash", "*", "[a]?",
                             "Gr\xC3\xBC\xC3\x9F", "bad\xFF\xFE", "a (2)", "dots ..."})
        tree.file(top + "/" + name, name);
    tree.folder(top + "/empty");
    tree.symlink(top + "/link", "-rf");
    tree.symlink(top + "/broken", "/nowhere/at all");
}

// ---- What an archive holds

TEST_F(Compression, KeepsATreeWithNamesOfAnyForm) {
    fillWithOddNames(tree, "top");
    const auto report = world.compress({tree.url("top")}, tree.url("out"));
    ASSERT_EQ(report.overall(), OperationReport::Overall::succeeded);
    EXPECT_EQ(report.items.at(0).outcome.destination()->path(), tree.path("out/top.zip"));
    EXPECT_THAT(tree.names("out"), ElementsAre("top.zip"));
    EXPECT_THAT(
        differences(snapshotOf(tree.path("top")), partOf(contentsOf("out/top.zip"), "top"), Compare::data),
        IsEmpty());
}

TEST_F(Compression, TakesManySourcesWithNamesOfAnyForm) {
    fillWithOddNames(tree, "top");
    std::vector<FileURL> sources;
    for (const auto& name : tree.names("top"))
        sources.push_back(tree.url("top/" + name));
    ASSERT_EQ(world.compress(sources, tree.url("out"), "all").overall(), OperationReport::Overall::succeeded);
    EXPECT_THAT(differences(snapshotOf(tree.path("top")), contentsOf("out/all.zip"), Compare::data),
                IsEmpty());
}

TEST_F(Compression, LeavesSeveralSourcesAndLargeOnesToZip) {
    using Part = ArchiveWriter::Part;
    tree.folder("-d");
    tree.file("-d/[x] y", std::string(100, 'x'));
    tree.file("@b", "b");
    EXPECT_EQ(partFor({tree.url("-d")}), Part::ditto);
    EXPECT_EQ(partFor({tree.url("-d"), tree.url("@b")}), Part::zip);
    ASSERT_EQ(world.compress({tree.url("-d"), tree.url("@b")}, tree.url("out"), "two.ZIP").overall(),
              OperationReport::Overall::succeeded);
    world.settings.dittoLimit = 101;
    EXPECT_EQ(partFor({tree.url("-d")}), Part::ditto);
    world.settings.dittoLimit = 100;
    EXPECT_EQ(partFor({tree.url("-d")}), Part::zip);
    tree.folder("back/@b-is-a-file");
    const auto found = contentsOf("out/two.ZIP");
    EXPECT_THAT(differences(snapshotOf(tree.path("-d")), partOf(found, "-d"), Compare::data), IsEmpty());
    EXPECT_EQ(tree.contents("back/@b"), "b");
    tree.file("ends with a space ");
    EXPECT_EQ(partFor({tree.url("-d"), tree.url("ends with a space ")}), Part::ditto);
}

TEST_F(Compression, TakesSourcesFromSeveralFoldersOnce) {
    tree.folder("a");
    tree.folder("a/in");
    tree.file("a/in/x", "1");
    tree.folder("b");
    tree.file("b/x", "2");
    const auto report = world.compress(
        {tree.url("a/in"), tree.url("b/x"), tree.url("a/in/x"), tree.url("b/x")}, tree.url("out"));
    EXPECT_EQ(report.overall(), OperationReport::Overall::succeeded);
    EXPECT_EQ(report.items.size(), 4U);
    (void)contentsOf("out/in.zip");
    EXPECT_EQ(tree.contents("back/a/in/x") + tree.contents("back/b/x"), "12");
}

TEST_F(Compression, NamesTheArchiveAfterTheFirstSourceAndNeverReplaces) {
    const auto named = [](const std::string& path) {
        return ArchiveService::archiveName(std::vector{*FileURL::fromPath(path)});
    };
    EXPECT_EQ(named("/x/report.final.txt"), "report.final.zip");
    EXPECT_EQ(named("/x/v1.2/"), "v1.2.zip");
    EXPECT_EQ(named("/x/.profile"), ".profile.zip");
    const auto cut = named("/x/" + std::string(239, 'n') + "\xC3\xBC" + "n/");
    EXPECT_EQ(cut, std::string(239, 'n') + ".zip");

    tree.file("a.txt", "a");
    tree.file("out/a.zip", "older");
    EXPECT_EQ(world.compress({tree.url("a.txt")}, tree.url("out")).items.at(0).outcome.destination()->name(),
              "a (2).zip");
    EXPECT_EQ(tree.contents("out/a.zip"), "older");
    EXPECT_EQ(world.compress({tree.url("a.txt")}, tree.url("out"), "x/y").items.at(0).outcome.error(),
              FileOperationError::invalidName(InvalidNameReason::containsSlash));
    EXPECT_EQ(world.compress({}, tree.url("out")).overall(), OperationReport::Overall::nothingToDo);
}

TEST_F(Compression, LeavesOutWhatNoArchiveHoldsAndTellsIt) {
    tree.folder("top");
    tree.file("top/file", "f");
    const auto pipe = tree.fifo("top/pipe");
    const auto report = world.compress({tree.url("top")}, tree.url("out"));
    EXPECT_EQ(report.overall(), OperationReport::Overall::partiallySucceeded);
    ASSERT_EQ(report.items.size(), 2U);
    EXPECT_EQ(report.items[1].source, pipe);
    EXPECT_EQ(report.items[1].outcome.error(), FileOperationError::posix(EOPNOTSUPP));
    EXPECT_EQ(world.answers.errors.size(), 1U);
    (void)contentsOf("out/top.zip");
    EXPECT_THAT(tree.names("back/top"), ElementsAre("file"));

    world.answers.errorAnswers = {{ErrorChoice::cancel, false}};
    EXPECT_EQ(world.compress({tree.url("top")}, tree.url("out")).overall(),
              OperationReport::Overall::cancelled);
    EXPECT_EQ(world.compress({pipe}, tree.url("out")).overall(), OperationReport::Overall::failed);
    EXPECT_THAT(tree.names("out"), ElementsAre("top.zip"));
}

// ---- How far it is

TEST_F(Compression, TellsProgressOfBothTools) {
    tree.folder("top");
    tree.fileOfSize("top/big", 24'000'000);
    tree.file("top/small", "s");
    tree.file("other", "o");
    for (const std::vector<FileURL>& sources :
         {std::vector{tree.url("top")}, std::vector{tree.url("top"), tree.url("other")}}) {
        world.answers.reports.clear();
        ASSERT_EQ(world.compress(sources, tree.url("out")).overall(), OperationReport::Overall::succeeded);
        const auto& reports = world.answers.reports;
        ASSERT_FALSE(reports.empty());
        EXPECT_TRUE(std::ranges::is_sorted(reports, {}, &OperationProgress::completedBytes));
        const auto isInside = [](const OperationProgress& progress) {
            return progress.completedBytes > 0 && progress.completedBytes < 24'000'000 &&
                   progress.totalBytes >= 24'000'001 && progress.currentName == "big";
        };
        EXPECT_TRUE(std::ranges::any_of(reports, isInside));
        EXPECT_EQ(reports.back().completedBytes, reports.back().totalBytes);
        EXPECT_EQ(reports.back().completedItems, reports.back().totalItems);
    }
}

TEST_F(Compression, WaitsWhilePausedAndGoesOn) {
    tree.fileOfSize("big", 8'000'000);
    bool wasPaused = false;
    std::jthread resumer;
    world.watch = [&](const OperationProgress& progress) {
        if (progress.phase != OperationProgress::Phase::copying || wasPaused) return;
        wasPaused = true;
        world.control->setPaused(true);
        resumer = std::jthread([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(200));
            world.control->setPaused(false);
        });
    };
    EXPECT_EQ(world.compress({tree.url("big")}, tree.url("out")).overall(),
              OperationReport::Overall::succeeded);
    EXPECT_TRUE(wasPaused);
    (void)contentsOf("out/big.zip");
    EXPECT_EQ(tree.contents("back/big"), tree.contents("big"));
}

// ---- What stops it

TEST_F(Compression, LeavesNothingWhenTheDiskIsFull) {
    const auto mount = TestMount::tmpfs({}, "size=1m");
    if (!mount) GTEST_SKIP() << mount.error();
    ASSERT_TRUE(shell(tree.path(), "head -c 3000000 /dev/urandom > noise; echo > second"));
    for (const std::vector<FileURL>& sources :
         {std::vector{tree.url("noise")}, std::vector{tree.url("noise"), tree.url("second")}}) {
        const auto report = world.compress(sources, (*mount)->url());
        EXPECT_EQ(report.items.at(0).outcome.error(), Case::noSpace);
        EXPECT_TRUE(shell((*mount)->path(), "test -z \"$(ls -A)\""));
    }
}

TEST_F(Compression, FailsWholeWhenOneFileCannotBeRead) {
    ::chmod(tree.path().c_str(), 0755);
    ::chmod(tree.path("out").c_str(), 0777);
    tree.folder("top");
    tree.file("top/open", "o");
    tree.file("top/secret", "s");
    ::chmod(tree.path("top/secret").c_str(), 0600);
    tree.file("other");
    for (const std::vector<FileURL>& sources :
         {std::vector{tree.url("top")}, std::vector{tree.url("top"), tree.url("other")}}) {
        OperationReport report{};
        if (!asNobody([&] {
                report = world.compress(sources, tree.url("out"));
                return true;
            }))
            GTEST_SKIP() << "the user cannot be changed";
        EXPECT_EQ(report.overall(), OperationReport::Overall::failed);
        EXPECT_EQ(report.items.at(0).outcome.error()->name(), "archive");
        EXPECT_THAT(report.items.at(0).facts.toolWords,
                    AnyOf(HasSubstr("ermission denied"), HasSubstr("could not open")));
        EXPECT_THAT(tree.names("out"), IsEmpty());
    }
}

TEST_F(Compression, NamesTheToolThatIsMissingAndItsPackage) {
    tree.file("a", "a");
    world.settings.toolFolders = tree.path("back") + ":" + tree.path("out");
    const auto report = world.compress({tree.url("a")}, tree.url("out"));
    const auto& facts = report.items.at(0).facts.archive;
    ASSERT_TRUE(facts);
    EXPECT_EQ(facts->fault, ArchiveFault::missingTool);
    EXPECT_EQ(facts->tool, "bsdtar");
    EXPECT_THAT(textOf(*facts, {}, 127).arguments.at(0), HasSubstr("libarchive-tools"));
    EXPECT_THAT(tree.names("out"), IsEmpty());
}

TEST_F(Compression, KillsAToolThatIgnoresTheRequestToEnd) {
    tree.folder("tools");
    // It starts another program, which holds its pipes.
    fakeTool(tree, "tools/bsdtar",
             "trap '' TERM\necho started >&2\n(trap '' TERM; while :; do sleep 1; done) &\nwhile :; do sleep "
             "1; done");
    tree.file("a", "a");
    world.settings.toolFolders = tree.path("tools");
    world.settings.grace = std::chrono::milliseconds(100);
    world.watch = [&](const OperationProgress& progress) {
        if (progress.phase == OperationProgress::Phase::copying) world.stop.request_stop();
    };
    EXPECT_EQ(world.compress({tree.url("a")}, tree.url("out")).overall(),
              OperationReport::Overall::cancelled);
    EXPECT_THAT(tree.names("out"), IsEmpty());
    EXPECT_TRUE(shell(tree.path(), "! pgrep -f '^/bin/sh " + tree.path("tools/bsdtar") + "'"));
}

TEST_F(Compression, LeavesNothingWhenCancelledInTheMiddle) {
    ASSERT_TRUE(shell(tree.path(), "head -c 60000000 /dev/urandom > noise; echo > second"));
    for (const std::vector<FileURL>& sources :
         {std::vector{tree.url("noise")}, std::vector{tree.url("noise"), tree.url("second")}}) {
        world.stop = {};
        world.watch = [&](const OperationProgress& progress) {
            if (progress.phase == OperationProgress::Phase::copying) world.stop.request_stop();
        };
        EXPECT_EQ(world.compress(sources, tree.url("out")).overall(), OperationReport::Overall::cancelled);
        EXPECT_THAT(tree.names("out"), IsEmpty());
    }
}

TEST_F(Compression, IsWholeOrNotThereWhateverCallFails) {
    tree.folder("top");
    tree.file("top/f", "first");
    for (int nth = 1;; ++nth) {
        OperationReport report{};
        std::optional<SystemCall::Kind> hit;
        {
            FaultAt fault(nth, {.errorNumber = EIO});
            report = world.compress({tree.url("top")}, tree.url("out"));
            hit = fault.hit();
        }
        const bool isThere = tree.exists("out/top.zip");
        EXPECT_EQ(report.items.at(0).outcome.isSuccess(), isThere) << nth;
        if (isThere) {
            (void)contentsOf("out/top.zip");
            EXPECT_EQ(tree.contents("back/top/f"), "first") << nth;
        }
        ASSERT_TRUE(shell(tree.path(), "rm -rf out/* out/.hom-* back/*"));
        EXPECT_THAT(tree.names("out"), IsEmpty());
        if (!hit) break;
    }
}

TEST_F(Compression, AsksAndTriesAgain) {
    tree.file("a", "a");
    world.answers.errorAnswers = {{ErrorChoice::retry, false}};
    const auto references = ArchiveWorld::referencesTo({tree.url("a")});
    auto hooks = world.hooks();
    hooks.errors = [&, ask = hooks.errors](const ErrorContext& context, std::stop_token stop) {
        tree.folder("late");
        return ask(context, std::move(stop));
    };
    EXPECT_EQ(ArchiveService::compress(references, tree.url("late"), {}, hooks).overall(),
              OperationReport::Overall::succeeded);
    EXPECT_EQ(world.answers.errors.at(0).error, Case::destinationMissing);
}

TEST_F(Compression, RefusesASourceThatBecameAnother) {
    tree.file("a", "a");
    const auto references = ArchiveWorld::referencesTo({tree.url("a")});
    ASSERT_TRUE(shell(tree.path(), "echo other > b && mv b a"));
    EXPECT_EQ(
        ArchiveService::compress(references, tree.url("out"), {}, world.hooks()).items.at(0).outcome.error(),
        Case::sourceChanged);
    EXPECT_THAT(tree.names("out"), IsEmpty());
}

} // namespace
} // namespace ombrel
