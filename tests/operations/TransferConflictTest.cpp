#include "operations/FileOperationService.h"
#include "support/TempTree.h"
#include "support/TestMount.h"
#include "support/TransferWorld.h"
#include "support/TreeSnapshot.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <chrono>
#include <future>
#include <memory>
#include <optional>
#include <tuple>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Error = FileOperationError;
using Kind = FileOperationKind;

// ---- Everything against everything

enum class Thing : std::uint8_t { file, folder, link, package };
enum class Volume : std::uint8_t { same, other };

constexpr const char* thingNames[] = {"File", "Folder", "Link", "Package"};
constexpr const char* choiceNames[] = {"Skip", "KeepBoth", "Replace", "Cancel"};

bool isFolder(Thing thing) {
    return thing == Thing::folder || thing == Thing::package;
}

/// One thing with contents that tell who made it.
void make(const TempTree& tree, const std::string& name, Thing thing, const std::string& maker) {
    if (thing == Thing::file) {
        tree.file(name, maker);
    } else if (thing == Thing::link) {
        tree.symlink(name, maker);
    } else {
        tree.folder(name);
        tree.file(name + "/both", maker);
        tree.file(name + "/only-" + maker, maker);
        tree.folder(name + "/sub");
        tree.file(name + "/sub/both", maker);
    }
}

using Case = std::tuple<Thing, Thing, ConflictChoice, Kind, Volume>;

class ConflictMatrix : public ::testing::TestWithParam<Case> {};

TEST_P(ConflictMatrix, EndsAsChosenAndLosesNothing) {
    const auto [incoming, existing, choice, kind, volume] = GetParam();
    const TempTree tree;
    tree.folder("target");
    std::unique_ptr<TestMount> mount;
    std::optional<TempTree> other;
    if (volume == Volume::other) {
        auto made = TestMount::tmpfs();
        if (!made) GTEST_SKIP() << made.error();
        mount = std::move(*made);
        other.emplace(mount->path());
        other->folder("target");
    }
    const TempTree& there = other ? *other : tree;
    const bool isPackage = incoming == Thing::package || existing == Thing::package;
    const std::string name = isPackage ? "Thing.app" : "Thing.txt";
    // A folder's name is not parted before its number.
    const std::string both = isFolder(incoming) ? name + " (2)"
                             : isPackage        ? "Thing (2).app"
                                                : "Thing (2).txt";
    make(tree, name, incoming, "new");
    make(there, "target/" + name, existing, "old");
    const auto source = snapshotOf(tree.url(name)), old = snapshotOf(there.url("target/" + name));
    const bool isMerge = isFolder(incoming) && isFolder(existing) && choice == ConflictChoice::replace;

    TransferWorld world;
    world.answers.conflictAnswers = {{choice, true}, {choice, true}};
    const auto report = world.run(kind, {tree.url(name)}, there.url("target"));
    ASSERT_FALSE(report.items.empty());
    const auto& outcome = report.items[0].outcome;
    const auto now = snapshotOf(there.url("target/" + name));
    const bool isTaken = choice == ConflictChoice::keepBoth || choice == ConflictChoice::replace;
    EXPECT_EQ(tree.exists(name), kind == Kind::copy || !isTaken);
    if (tree.exists(name)) {
        EXPECT_THAT(differences(source, snapshotOf(tree.url(name))), IsEmpty());
    }

    if (isMerge) {
        EXPECT_EQ(report.overall(), OperationReport::Overall::succeeded);
        EXPECT_THAT(there.names("target/" + name), ElementsAre("both", "only-new", "only-old", "sub"));
        EXPECT_EQ(there.contents("target/" + name + "/both"), "new");
        EXPECT_EQ(there.contents("target/" + name + "/sub/both"), "new");
        EXPECT_EQ(there.contents("target/" + name + "/only-new"), "new");
        EXPECT_THAT(there.names("target/" + name + "/sub"), ElementsAre("both"));
        EXPECT_EQ(there.contents("target/" + name + "/only-old"), "old");
    } else if (choice == ConflictChoice::replace) {
        EXPECT_EQ(outcome, ItemOutcome::completed(there.url("target/" + name)));
        EXPECT_THAT(differences(source, now), IsEmpty());
    } else {
        EXPECT_THAT(differences(old, now), IsEmpty());
    }
    if (choice == ConflictChoice::keepBoth) {
        EXPECT_EQ(outcome, ItemOutcome::completed(there.url("target/" + both)));
        EXPECT_THAT(differences(source, snapshotOf(there.url("target/" + both))), IsEmpty());
    }
    if (!isTaken) {
        EXPECT_EQ(outcome,
                  choice == ConflictChoice::skip ? ItemOutcome::skipped() : ItemOutcome::cancelled());
    }
    const std::size_t expectedNames = choice == ConflictChoice::keepBoth ? 2 : 1;
    EXPECT_EQ(there.names("target").size(), expectedNames);
    EXPECT_EQ(world.answers.conflicts[0].sourceIsDirectory, isFolder(incoming));
    EXPECT_EQ(world.answers.conflicts[0].existingIsDirectory, isFolder(existing));
    EXPECT_EQ(world.answers.conflicts[0].keepBothName, both);
}

std::string labelOf(const ::testing::TestParamInfo<Case>& tested) {
    const auto [incoming, existing, choice, kind, volume] = tested.param;
    return std::string(thingNames[static_cast<int>(incoming)]) + "Onto" +
           thingNames[static_cast<int>(existing)] + choiceNames[static_cast<int>(choice)] +
           (kind == Kind::copy ? "Copy" : "Move") + (volume == Volume::same ? "Same" : "Other");
}

constexpr Thing things[] = {Thing::file, Thing::folder, Thing::link, Thing::package};

INSTANTIATE_TEST_SUITE_P(All, ConflictMatrix,
                         ::testing::Combine(::testing::ValuesIn(things), ::testing::ValuesIn(things),
                                            ::testing::Values(ConflictChoice::skip, ConflictChoice::keepBoth,
                                                              ConflictChoice::replace,
                                                              ConflictChoice::cancel),
                                            ::testing::Values(Kind::copy, Kind::move),
                                            ::testing::Values(Volume::same, Volume::other)),
                         labelOf);

// ---- Names

TEST(TransferNames, OfDuplicatesInTheirOwnFolder) {
    const TempTree tree;
    const auto file = tree.file("Report.txt", "r");
    const auto folder = tree.folder("Photos.2024");
    const auto suffix = Texts::localized("name.copySuffix");
    TransferWorld world;
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(world.copy({file, folder}, tree.url()).overall(), OperationReport::Overall::succeeded);
    EXPECT_THAT(tree.names(), ::testing::UnorderedElementsAre(
                                  "Report.txt", "Report" + suffix + ".txt", "Report" + suffix + " (2).txt",
                                  "Report" + suffix + " (3).txt", "Photos.2024", "Photos.2024" + suffix,
                                  "Photos.2024" + suffix + " (2)", "Photos.2024" + suffix + " (3)"));
    EXPECT_THAT(world.answers.conflicts, IsEmpty());
}

TEST(TransferNames, KeepBothTakesTheFirstFreeNumber) {
    const TempTree tree, from;
    tree.file("a.txt");
    tree.file("a (2).txt");
    const auto source = from.file("a.txt", "new");
    TransferWorld world;
    world.answers.conflictAnswers = {{ConflictChoice::keepBoth, false}};
    const auto report = world.copy({source}, tree.url());
    EXPECT_EQ(report.items[0].outcome, ItemOutcome::completed(tree.url("a (3).txt")));
    EXPECT_EQ(tree.contents("a (3).txt"), "new");
}

TEST(TransferNames, AnItemMayCarryANameOfItsOwn) {
    const TempTree tree;
    const auto source = tree.file("now", "x");
    FileOperationService service(std::make_shared<NoTrash>());
    const TransferItem item(FileReference::sampling(source), "before");
    const auto report = service.transfer(Kind::move, {&item, 1}, tree.url(), {});
    EXPECT_EQ(report.items[0].outcome, ItemOutcome::completed(tree.url("before")));
    EXPECT_THAT(tree.names(), ElementsAre("before"));
}

// ---- What may not be

TEST(TransferRefuses, ItsOwnPlaceAndItsOwnInside) {
    const TempTree tree;
    const auto file = tree.file("file");
    const auto folder = tree.folder("folder");
    const auto inside = tree.folder("folder/inside");
    tree.symlink("way", "folder/inside");
    TransferWorld world;
    const auto outcome = [&](Kind kind, const FileURL& source, const FileURL& destination) {
        return world.run(kind, {source}, destination).items[0].outcome;
    };
    EXPECT_EQ(outcome(Kind::move, file, tree.url()), ItemOutcome::failed(Error::Case::sameLocation));
    for (const auto kind : {Kind::copy, Kind::move})
        for (const auto& target : {folder, inside, tree.url("way")})
            EXPECT_EQ(outcome(kind, folder, target),
                      ItemOutcome::failed(Error::Case::destinationInsideSource));
    EXPECT_THAT(tree.names("folder/inside"), IsEmpty());
}

TEST(TransferRefuses, ItsInsideThroughABindMount) {
    const TempTree tree;
    tree.folder("folder");
    tree.folder("folder/inside");
    tree.folder("folder/inside/deep");
    const auto bound = TestMount::bind(tree.path("folder/inside"), tree.path("elsewhere"));
    if (!bound) GTEST_SKIP() << bound.error();
    TransferWorld world;
    const auto before = snapshotOf(tree.url("folder"));
    for (const auto kind : {Kind::copy, Kind::move})
        for (const char* target : {"elsewhere", "elsewhere/deep"})
            EXPECT_EQ(world.run(kind, {tree.url("folder")}, tree.url(target)).items[0].outcome,
                      ItemOutcome::failed(Error::Case::destinationInsideSource))
                << target;
    EXPECT_THAT(differences(before, snapshotOf(tree.url("folder")), Compare::data), IsEmpty());
}

TEST(TransferRefuses, MergingAFolderOntoItself) {
    const TempTree tree;
    tree.folder("a");
    tree.folder("a/x");
    tree.file("a/x/file", "f");
    tree.folder("b");
    const auto bound = TestMount::bind(tree.path("a/x"), tree.path("b/x"));
    if (!bound) GTEST_SKIP() << bound.error();
    TransferWorld world;
    world.answers.conflictAnswers = {{ConflictChoice::replace, true}, {ConflictChoice::replace, true}};
    for (const auto kind : {Kind::copy, Kind::move})
        EXPECT_EQ(world.run(kind, {tree.url("a/x")}, tree.url("b")).items[0].outcome,
                  ItemOutcome::failed(Error::Case::sameLocation));
    EXPECT_EQ(tree.contents("a/x/file"), "f");
}

TEST(TransferRefuses, ReplacingTheFolderThatHoldsTheSource) {
    const TempTree tree;
    tree.folder("a");
    tree.file("a/a", "inner");
    tree.file("a/other", "kept");
    TransferWorld world;
    world.answers.conflictAnswers = {{ConflictChoice::replace, true}};
    for (const auto kind : {Kind::copy, Kind::move})
        EXPECT_EQ(world.run(kind, {tree.url("a/a")}, tree.url()).items[0].outcome,
                  ItemOutcome::failed(Error::Case::destinationExists));
    EXPECT_THAT(tree.names("a"), ElementsAre("a", "other"));
}

TEST(TransferRefuses, WhatIsNotTheItemThatWasPicked) {
    const TempTree tree;
    const auto target = tree.folder("target");
    TransferWorld world;
    const TransferItem gone(FileReference::sampling(tree.url("gone")));
    const TransferItem changed(FileReference::sampling(tree.file("changed", "old")));
    ASSERT_EQ(::rename(tree.path("changed").c_str(), tree.path("aside").c_str()), 0);
    tree.file("changed", "new");
    const TransferItem items[] = {gone, changed};
    const auto report = world.service.transfer(Kind::copy, items, target, {});
    EXPECT_EQ(report.items[0].outcome, ItemOutcome::failed(Error::Case::sourceMissing));
    EXPECT_EQ(report.items[1].outcome, ItemOutcome::failed(Error::Case::sourceChanged));
    for (const char* missing : {"nowhere", "changed"})
        EXPECT_EQ(world.copy({tree.url("aside")}, tree.url(missing)).items[0].outcome,
                  ItemOutcome::failed(Error::Case::destinationMissing));
    EXPECT_EQ(world.copy({}, target).overall(), OperationReport::Overall::nothingToDo);
}

// ---- Answers

TEST(TransferAnswers, AStandingReplaceAsksForAFolderAgainstAFile) {
    const TempTree tree, from;
    tree.file("a");
    tree.file("b");
    tree.folder("c");
    tree.file("c/kept");
    TransferWorld world;
    world.answers.conflictAnswers = {{ConflictChoice::replace, true}, {ConflictChoice::skip, false}};
    const auto report =
        world.copy({from.file("a", "1"), from.file("b", "2"), from.file("c", "3")}, tree.url());
    EXPECT_EQ(world.answers.conflicts.size(), 2U);
    EXPECT_EQ(report.items[1].outcome, ItemOutcome::completed(tree.url("b")));
    EXPECT_EQ(report.items[2].outcome, ItemOutcome::skipped());
    EXPECT_TRUE(tree.exists("c/kept"));
}

// Of items that lie in many folders several may have one name.
TEST(TransferAnswers, AStandingReplaceAsksBeforeItCoversWhatTheJobItselfBrought) {
    for (const auto kind : {Kind::copy, Kind::move}) {
        for (const bool isAcross : {false, true}) {
            const TempTree one, two, three, target;
            std::unique_ptr<TestMount> mount;
            std::optional<TempTree> other;
            if (isAcross) {
                auto made = TestMount::tmpfs();
                if (!made) GTEST_SKIP() << made.error();
                mount = std::move(*made);
                other.emplace(mount->path());
            }
            const TempTree& there = other ? *other : target;
            there.file("a", "old");
            there.file("b", "old");
            TransferWorld world;
            world.answers.conflictAnswers = {{ConflictChoice::replace, true}, {ConflictChoice::skip, false}};
            const auto report = world.run(
                kind, {one.file("a", "1"), two.file("a", "2"), three.file("b", "3"), three.file("c", "4")},
                there.url());
            EXPECT_EQ(world.answers.conflicts.size(), 2U);
            EXPECT_EQ(report.items[1].outcome, ItemOutcome::skipped());
            EXPECT_EQ(there.contents("a"), "1");
            EXPECT_EQ(two.contents("a"), "2");
            EXPECT_EQ(there.contents("b") + there.contents("c"), "34") << "what was there is still covered";
        }
    }
}

TEST(TransferAnswers, CancelEndsTheJobAndStandingSkipsAskOnce) {
    const TempTree tree, from;
    const auto a = from.file("a", "1"), b = from.file("b", "2");
    tree.file("a");
    tree.file("b");
    TransferWorld world;
    world.answers.conflictAnswers = {{ConflictChoice::cancel, false}};
    auto report = world.copy({a, b}, tree.url());
    EXPECT_EQ(report.items[0].outcome, ItemOutcome::cancelled());
    EXPECT_EQ(report.items[1].outcome, ItemOutcome::cancelled());
    world.answers.conflictAnswers = {{ConflictChoice::skip, true}};
    report = world.copy({a, b}, tree.url());
    EXPECT_EQ(world.answers.conflicts.size(), 2U);
    EXPECT_EQ(report.items[1].outcome, ItemOutcome::skipped());
}

// A job may be paused while its question stands.
TEST(TransferAnswers, CancelEndsAPausedJob) {
    for (const bool isError : {false, true}) {
        const TempTree tree, from;
        const auto a = from.file("a", "1"), b = from.file("b", "2");
        tree.file("a", "old");
        TransferWorld world;
        const auto control = world.control;
        auto hooks = world.answers.hooks();
        hooks.control = control;
        hooks.conflicts = [&](const ConflictContext&, const std::stop_token&) {
            control->setPaused(true);
            return ConflictDecision{ConflictChoice::cancel, false};
        };
        hooks.errors = [&](const ErrorContext&, const std::stop_token&) {
            control->setPaused(true);
            return ErrorDecision{ErrorChoice::cancel, false};
        };
        const std::vector<TransferItem> items = {FileReference::sampling(isError ? from.url("gone") : a),
                                                 FileReference::sampling(b)};
        auto job = std::async(std::launch::async, [&] {
            return world.service.transfer(Kind::copy, items, tree.url(), hooks, {});
        });
        EXPECT_EQ(job.wait_for(std::chrono::seconds(5)), std::future_status::ready);
        control->setPaused(false);
        EXPECT_EQ(job.get().overall(), OperationReport::Overall::cancelled);
    }
}

TEST(TransferAnswers, RetryBeginsAgainAndSkipKeepsTheReason) {
    const TempTree tree, from;
    const auto source = from.url("late");
    const auto target = tree.folder("target");
    TransferWorld world;
    world.answers.errorAnswers = {{ErrorChoice::retry, true}, {ErrorChoice::skip, false}};
    auto report = world.copy({source}, target);
    EXPECT_EQ(world.answers.errors.size(), 2U);
    EXPECT_EQ(report.items[0].outcome, ItemOutcome::failed(Error::Case::sourceMissing));
    EXPECT_EQ(world.answers.errors[0].source, source);
    EXPECT_EQ(world.answers.errors[0].destination, tree.url("target/late"));
    EXPECT_TRUE(world.answers.errors[0].canRetry);
}

TEST(TransferAnswers, FactsOfBothSidesAreTold) {
    const TempTree tree, from;
    const auto source = from.file("a", "four");
    tree.file("a", "1");
    TransferWorld world;
    (void)world.copy({source}, tree.url());
    const auto& asked = world.answers.conflicts.at(0);
    EXPECT_EQ(asked.sourceFacts.size, 4);
    EXPECT_EQ(asked.existingFacts.size, 1);
    EXPECT_TRUE(asked.sourceFacts.modified && asked.existingFacts.modified);
    EXPECT_EQ(asked.existing, tree.url("a"));
}

TEST(Conflicts, AreTheNamesThatAreTaken) {
    const TempTree tree;
    tree.folder("there");
    tree.symlink("there/a", "broken");
    FileOperationService service(std::make_shared<NoTrash>());
    const FileReference items[] = {{tree.url("a"), {}}, {tree.url("b"), {}}};
    EXPECT_THAT(service.conflicts(items, tree.url("there")), ElementsAre(tree.url("there/a")));
}

} // namespace
} // namespace ombrel
