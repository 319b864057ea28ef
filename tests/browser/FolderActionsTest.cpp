// Folders put together and taken apart, and archives.
#include "browser/FolderActions.h"

#include "browser/ActionsWorld.h"

namespace ombrel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using enum FileCommand;

class Folders : public ActionsWorld {
protected:
    void undoAndExpect(const std::vector<std::string>& names) {
        ASSERT_TRUE(perform(undo, {}));
        EXPECT_THAT(prompter.shown, IsEmpty());
        EXPECT_EQ(tree.names("pane"), names);
    }
};

TEST_F(Folders, TakeSelectedItemsInAndGoIntoRename) {
    for (const auto* name : {"pane/a", "pane/b", "pane/c"})
        tree.file(name, name);
    tree.folder("pane/New folder");
    show("pane");
    ASSERT_TRUE(perform(moveIntoNewFolder, {"a", "c"}));
    EXPECT_TRUE(shows({"New folder", "New folder (2)", "b"}, {"New folder (2)"}));
    EXPECT_TRUE(runUntil([&] { return renaming == "New folder (2)"; }));
    EXPECT_THAT(tree.names("pane/New folder (2)"), ElementsAre("a", "c"));
    undoAndExpect({"New folder", "a", "b", "c"});
    ASSERT_TRUE(perform(redo, {}));
    EXPECT_THAT(tree.names("pane/New folder (2)"), ElementsAre("a", "c"));
    undoAndExpect({"New folder", "a", "b", "c"});

    ASSERT_TRUE(runUntil([&] { return pane.items().size() == 4; }));
    select(pane, {"a"});
    ASSERT_EQ(::unlink(tree.path("pane/a").c_str()), 0);
    ASSERT_TRUE(perform(moveIntoNewFolder, {}));
    EXPECT_THAT(tree.names("pane"), ElementsAre("New folder", "b", "c")) << "no empty folder is left";
}

TEST_F(Folders, DissolveIntoTheOneAbove) {
    tree.folder("pane/box");
    tree.folder("pane/box/box");
    tree.file("pane/box/box/deep", "deep");
    tree.file("pane/box/.hidden");
    tree.file("pane/box/x", "x");
    ASSERT_EQ(::chmod(tree.path("pane/box").c_str(), 0750), 0);
    show("pane");
    prompter.answer = {};
    ASSERT_TRUE(perform(dissolveFolder, {"box"}));
    EXPECT_THAT(tree.names("pane"), ElementsAre("box")) << "the answer was no";
    EXPECT_EQ(prompter.questions.at(0).kind, BrowserQuestion::Kind::dissolveFolder);
    prompter.answer = {BrowserAnswer::Choice::accept};
    ASSERT_TRUE(perform(dissolveFolder, {"box"}));
    EXPECT_THAT(tree.names("pane"), ElementsAre(".hidden", "box", "x"));
    EXPECT_THAT(tree.names("pane/box"), ElementsAre("deep"));
    EXPECT_TRUE(runUntil([&] { return pane.selection().count() == 2 && pane.items().size() == 2; }));

    undoAndExpect({"box"});
    EXPECT_THAT(tree.names("pane/box"), ElementsAre(".hidden", "box", "x"));
    EXPECT_EQ(tree.contents("pane/box/box/deep"), "deep");
    struct ::stat status = {};
    ASSERT_EQ(::stat(tree.path("pane/box").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0750U);
}

TEST_F(Folders, DissolveWithANamesakeAndItsNumberedNames) {
    tree.folder("pane/box");
    for (const auto* name : {"box", "box (2)", "box (3)"})
        tree.file(std::string("pane/box/") + name, name);
    show("pane");
    ASSERT_TRUE(perform(dissolveFolder, {"box"}));
    EXPECT_THAT(tree.names("pane"), ElementsAre("box", "box (2)", "box (3)"));
    for (const auto* name : {"box", "box (2)", "box (3)"})
        EXPECT_EQ(tree.contents(std::string("pane/") + name), name);
    undoAndExpect({"box"});
    EXPECT_THAT(tree.names("pane/box"), ElementsAre("box", "box (2)", "box (3)"));
}

TEST_F(Folders, KeepWhatConflictsWhenDissolved) {
    tree.folder("pane/box");
    tree.file("pane/box/a", "inner");
    tree.file("pane/box/b", "inner");
    tree.file("pane/a", "outer");
    tree.symlink("pane/link", "box");
    tree.folder("pane/empty");
    show("pane");
    select(pane, {"link"});
    EXPECT_FALSE(can(dissolveFolder)) << "a link is no folder";
    select(pane, {"a"});
    EXPECT_FALSE(can(dissolveFolder));
    ASSERT_TRUE(perform(dissolveFolder, {"box"}));
    EXPECT_THAT(tree.names("pane/box"), ElementsAre("a")) << "it was skipped, so the folder stays";
    EXPECT_EQ(tree.contents("pane/a"), "outer");
    undoAndExpect({"a", "box", "empty", "link"});
    EXPECT_THAT(tree.names("pane/box"), ElementsAre("a", "b"));
    ASSERT_TRUE(runUntil([&] { return pane.items().size() == 4; }));
    ASSERT_TRUE(perform(dissolveFolder, {"empty"}));
    EXPECT_FALSE(tree.exists("pane/empty"));
    undoAndExpect({"a", "box", "empty", "link"});
}

TEST_F(Folders, BecomeArchivesAndComeOutOfThem) {
    tree.folder("pane/box");
    tree.file("pane/box/a", "in the box");
    tree.file("pane/b.txt", "beside it");
    tree.file("pane/broken.tar.gz", "no archive");
    show("pane");
    ASSERT_TRUE(perform(compress, {"box", "b.txt"}));
    EXPECT_TRUE(shows({"box", "b.txt", "box.zip", "broken.tar.gz"}, {"box.zip"}));
    for (const auto& [names, isEnabled] : {std::pair<std::vector<std::string>, bool>{{"box"}, false},
                                           {{"b.txt", "box.zip"}, false},
                                           {{"box.zip"}, true},
                                           {{"box.zip", "broken.tar.gz"}, true}}) {
        select(pane, names);
        EXPECT_EQ(can(extract), isEnabled) << names.front();
    }
    ASSERT_TRUE(perform(extract, {"box.zip"}));
    EXPECT_TRUE(runUntil([&] { return selectedNames(pane) == std::vector<std::string>{"box (2)"}; }));
    EXPECT_EQ(tree.contents("pane/box (2)/box/a"), "in the box");
    undoAndExpect({"b.txt", "box", "box.zip", "broken.tar.gz"});

    ASSERT_TRUE(perform(extract, {"broken.tar.gz"}));
    EXPECT_THAT(services->center().leftReports(), SizeIs(1));
    EXPECT_THAT(tree.names("pane"), ElementsAre("b.txt", "box", "box.zip", "broken.tar.gz"));
}

} // namespace
} // namespace ombrel
