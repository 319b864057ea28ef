#include "browser/DropPlan.h"

#include "base/IsolatedName.h"
#include "browser/ActionsWorld.h"
#include "browser/DropTargets.h"
#include "support/Locations.h"
#include "support/Unprivileged.h"

namespace ombrel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Case = DropPlan::Case;
using Wish = DropPlan::Wish;

FileReference item(const std::string& path, std::uint64_t device) {
    return {at(path), FileIdentity{device, 1}};
}

TEST(Dropping, FollowsTheTable) {
    const DraggedItems own({item("/a/x", 1), item("/a/y", 1)});
    const DraggedItems mixed({item("/a/x", 1), item("/b/y", 2)});
    const DraggedItems foreign({{at("/a/x"), std::nullopt}}, {.copy = true, .move = true});
    const DraggedItems moveOnly({{at("/a/x"), std::nullopt}}, {.copy = false, .move = true});
    const DropTargetFacts same{1}, other{2}, unknown;
    struct Row {
        const DraggedItems& dragged;
        const DropTargetFacts& facts;
        Case plain, control, shift;
    };
    for (const auto& [dragged, facts, plain, control, shift] : {
             Row{own, same, Case::move, Case::copy, Case::move},
             Row{own, other, Case::copy, Case::copy, Case::move},
             Row{own, unknown, Case::copy, Case::copy, Case::move},
             Row{mixed, same, Case::copy, Case::copy, Case::move},
             Row{foreign, same, Case::copy, Case::copy, Case::move},
             Row{moveOnly, same, Case::move, Case::move, Case::move},
         }) {
        EXPECT_EQ(DropPlan::of(dragged, at("/c/d"), facts, Wish::none).which, plain);
        EXPECT_EQ(DropPlan::of(dragged, at("/c/d"), facts, Wish::copy).which, control);
        EXPECT_EQ(DropPlan::of(dragged, at("/c/d"), facts, Wish::move).which, shift);
    }
    EXPECT_EQ(DropPlan::of(own, at("/a/folder"), unknown, Wish::none).which, Case::move)
        << "a folder beside them is taken to be on their volume";
    EXPECT_EQ(DropPlan::of(own, at("/c/d"), same, Wish::none).label(at("/c/d")),
              (Text{"ui.drop.moveTo", {isolated("d")}}));
}

TEST(Dropping, IsForbiddenWhereItMakesNoSense) {
    const DraggedItems own({item("/a/x", 1), item("/a/y", 1)});
    const auto plan = [&](const std::string& folder, Wish wish, const DropTargetFacts& facts) {
        return DropPlan::of(own, at(folder), facts, wish);
    };
    const DropPlan intoItself{Case::forbidden, Text{"ui.drop.intoItself"}};
    for (const auto* folder : {"/a/x", "/a/x/below", "/a/y/deep/down"})
        for (const auto wish : {Wish::none, Wish::copy, Wish::move})
            EXPECT_EQ(plan(folder, wish, {1}), intoItself) << folder;
    EXPECT_EQ(plan("/a/xy", Wish::none, {1}).which, Case::move) << "only a name that begins alike";
    EXPECT_EQ(plan("/a", Wish::none, {1}).reason, Text{"error.op.sameLocation"});
    EXPECT_EQ(plan("/a", Wish::copy, {1}).which, Case::copy) << "which makes duplicates";
    EXPECT_EQ(plan("/c", Wish::copy, {1, Text{"ui.drop.readOnly"}}),
              (DropPlan{Case::forbidden, Text{"ui.drop.readOnly"}}));
    EXPECT_EQ(DropPlan::of(DraggedItems(std::vector<FileReference>()), at("/c"), {}, Wish::none).which,
              Case::forbidden);
}

class DroppingFor : public ActionsWorld {};

TEST_F(DroppingFor, RealBringsItemsAndSelectsThem) {
    for (const auto* name : {"other/a", "other/b", "pane/c"})
        tree.file(name, name);
    show("pane");
    std::vector<FileReference> references;
    {
        const SystemCall::Allowed here;
        for (const auto* name : {"other/a", "other/b", "pane/c"})
            references.push_back(FileReference::sampling(tree.url(name)));
    }
    const DraggedItems dragged(references);
    const auto& transfers = actions.transfers();
    transfers.drop(pane, dragged, tree.url("pane"), Case::move);
    ASSERT_TRUE(waitForJobs());
    EXPECT_TRUE(shows({"a", "b", "c"}, {"a", "b"})) << "what lay there stays as it was";
    EXPECT_THAT(tree.names("other"), IsEmpty());

    select(pane, {"a", "b"});
    transfers.moveTo(pane, tree.url("other"));
    ASSERT_TRUE(waitForJobs());
    EXPECT_TRUE(shows({"c"}, {"c"}));
    transfers.copyTo(pane, tree.url("home"));
    ASSERT_TRUE(waitForJobs());
    EXPECT_THAT(tree.names("home"), ElementsAre("c"));
    EXPECT_THAT(transfers.recentDestinations(pane), ElementsAre(tree.url("home"), tree.url("other")));
    show("home");
    EXPECT_THAT(transfers.recentDestinations(pane), ElementsAre(tree.url("other")));
}

TEST_F(DroppingFor, TargetsThatAreLookedAtByTheWay) {
    tree.file("file");
    DropTargets targets;
    const auto learned = [&](const FileURL& url) {
        return runUntil([&] {
            const auto& facts = targets.about(url);
            return facts.device || facts.obstacle;
        });
    };
    EXPECT_EQ(targets.about(tree.url("pane")), DropTargetFacts());
    ASSERT_TRUE(learned(tree.url("pane")));
    EXPECT_EQ(targets.about(tree.url("pane")).obstacle, std::nullopt);
    for (const auto* name : {"file", "missing"}) {
        ASSERT_TRUE(learned(tree.url(name)));
        EXPECT_EQ(targets.about(tree.url(name)).obstacle, Text{"error.op.destinationMissing"}) << name;
    }
    ASSERT_TRUE(learned(at("/proc")));
    targets.forget();
    EXPECT_EQ(targets.about(tree.url("pane")), DropTargetFacts());
}

} // namespace
} // namespace ombrel
