#include "browser/ClipboardActions.h"

#include "browser/ActionsWorld.h"

namespace ombrel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using enum FileCommand;

class Clipboard : public ActionsWorld {
protected:
    Clipboard() {
        for (const auto* name : {"pane/a.txt", "pane/b.txt", "pane/c.txt"})
            tree.file(name, name);
        show("pane");
    }
};

TEST_F(Clipboard, PastesACopyElsewhereAndSelectsIt) {
    EXPECT_FALSE(can(paste)) << "nothing was copied";
    ASSERT_TRUE(perform(copy, {"a.txt", "b.txt"}));
    show("other");
    ASSERT_TRUE(perform(paste, {}));
    EXPECT_TRUE(shows({"a.txt", "b.txt"}, {"a.txt", "b.txt"}));
    EXPECT_EQ(tree.contents("other/a.txt"), "pane/a.txt");
    EXPECT_TRUE(can(paste)) << "a copy may be pasted again";
    ASSERT_TRUE(perform(undo, {}));
    EXPECT_TRUE(shows({}, {}));
    ASSERT_TRUE(perform(redo, {}));
    EXPECT_TRUE(shows({"a.txt", "b.txt"}, {"a.txt", "b.txt"}));
}

TEST_F(Clipboard, DuplicatesInTheSameFolder) {
    ASSERT_TRUE(perform(copy, {"a.txt"}));
    ASSERT_TRUE(perform(paste, {}));
    EXPECT_TRUE(runUntil([&] { return pane.items().size() == 4 && pane.selection().count() == 1; }));
    EXPECT_NE(selectedNames(pane), std::vector<std::string>{"a.txt"});
    EXPECT_EQ(tree.contents("pane/" + selectedNames(pane).at(0)), "pane/a.txt");
}

TEST_F(Clipboard, IsEmptyAfterAMoveAndKeptAfterHalfOfOne) {
    tree.file("other/b.txt", "there before");
    ASSERT_TRUE(perform(cut, {"a.txt", "b.txt"}));
    EXPECT_TRUE(can(cancelCut));
    ASSERT_TRUE(perform(paste, {})) << "into its own folder, which changes nothing";
    EXPECT_THAT(tree.names("pane"), ElementsAre("a.txt", "b.txt", "c.txt"));
    show("other");
    ASSERT_TRUE(perform(paste, {}));
    EXPECT_EQ(tree.contents("other/b.txt"), "there before");
    EXPECT_TRUE(shows({"a.txt", "b.txt"}, {"a.txt"}));
    EXPECT_TRUE(can(paste)) << "one was skipped";
    EXPECT_EQ(services->clipboard().cutURLs().size(), 2U);

    show("pane");
    ASSERT_TRUE(perform(cut, {"c.txt"}));
    show("other");
    ASSERT_TRUE(perform(paste, {}));
    EXPECT_TRUE(shows({"a.txt", "b.txt", "c.txt"}, {"c.txt"}));
    EXPECT_FALSE(can(paste));
    EXPECT_THAT(services->clipboard().cutURLs(), IsEmpty());
}

TEST_F(Clipboard, LeavesTheSelectionThatTheUserMadeMeanwhile) {
    ASSERT_TRUE(perform(copy, {"a.txt"}));
    show("other");
    tree.file("other/z.txt");
    ASSERT_TRUE(runUntil([&] { return pane.items().size() == 1; }));
    ASSERT_TRUE(commands.perform(paste, pane));
    select(pane, {"z.txt"});
    ASSERT_TRUE(waitForJobs());
    EXPECT_TRUE(shows({"a.txt", "z.txt"}, {"z.txt"}));
}

TEST_F(Clipboard, PastesOnlyWhereThereIsAFolder) {
    ASSERT_TRUE(perform(copy, {"a.txt"}));
    EXPECT_TRUE(can(paste));
    actions.clipboard().pasteInto(pane, tree.url("other"));
    ASSERT_TRUE(waitForJobs());
    EXPECT_THAT(tree.names("other"), ElementsAre("a.txt"));
    pane.navigateHome();
    EXPECT_FALSE(can(paste));
    pane.navigate(tree.url("missing"));
    ASSERT_TRUE(runUntil(
        [&] { return pane.listingState() == ListingState::failed(DirectoryError::Case::notFound); }));
    EXPECT_FALSE(can(paste));
    show("other");
    services->setReadOnlyDiagnostics(true);
    for (const auto command :
         {paste, cut, moveToTrash, deletePermanently, rename, newFolder, newFile, undo}) {
        select(pane, {"a.txt"});
        EXPECT_FALSE(can(command)) << rawValue(command);
    }
    EXPECT_TRUE(can(copy));
}

TEST_F(Clipboard, CopiesThePathsOfTheSelectionOrOfTheFolder) {
    ASSERT_TRUE(perform(copyPath, {"a.txt", "c.txt"}));
    EXPECT_EQ(pasteboard.read("text/plain"), tree.path("pane/a.txt") + "\n" + tree.path("pane/c.txt"));
    show("pane");
    ASSERT_TRUE(perform(copyPath, {}));
    EXPECT_EQ(pasteboard.read("text/plain"), tree.path("pane"));
    pane.navigateHome();
    EXPECT_FALSE(can(copyPath));
}

} // namespace
} // namespace ombrel
