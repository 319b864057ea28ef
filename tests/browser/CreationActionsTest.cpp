#include "browser/CreationActions.h"

#include "browser/ActionsWorld.h"

namespace ombrel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using enum FileCommand;

using Creating = ActionsWorld;

std::vector<std::string> titlesOf(const NewFileTemplates& templates) {
    std::vector<std::string> titles;
    for (const auto& one : templates.list())
        titles.push_back(one.title);
    return titles;
}

TEST_F(Creating, TakesAFreeNameAndGoesIntoRename) {
    tree.folder("pane/New folder");
    show("pane");
    ASSERT_TRUE(perform(newFolder, {}));
    ASSERT_TRUE(shows({"New folder", "New folder (2)"}, {"New folder (2)"}));
    EXPECT_TRUE(runUntil([&] { return renaming == "New folder (2)"; }));
    ASSERT_TRUE(perform(newFile, {}));
    EXPECT_TRUE(runUntil([&] { return renaming == "New text document.txt"; }));
    EXPECT_EQ(tree.contents("pane/New text document.txt"), "");
    ASSERT_TRUE(perform(undo, {}));
    ASSERT_TRUE(perform(undo, {}));
    EXPECT_THAT(tree.names("pane"), ElementsAre("New folder"));
    pane.navigateHome();
    EXPECT_FALSE(can(newFolder) || can(newFile));
}

TEST_F(Creating, DoesNotRenameWhereTheUserHasGoneOn) {
    show("pane");
    ASSERT_TRUE(commands.perform(newFolder, pane));
    show("other");
    ASSERT_TRUE(waitForJobs());
    show("pane");
    EXPECT_TRUE(shows({"New folder"}, {}));
    EXPECT_EQ(renaming, std::nullopt);
}

TEST_F(Creating, OffersWhatLiesInTheFolderOfTemplates) {
    tree.folder("home/Muster");
    tree.folder("home/Muster/Project");
    tree.file("home/Muster/Project/notes", "inside");
    for (const auto* name : {"Letter.odt", "Letter.txt", "Sheet.ods", ".hidden", "Old.txt~"})
        tree.file(std::string("home/Muster/") + name, name);
    tree.file("home/user-dirs.dirs", "# comment\nXDG_TEMPLATES_DIR=\"$HOME/Muster\"\n");
    NewFileTemplates templates(tree.url("home"), tree.url("home"));
    EXPECT_THAT(titlesOf(templates), ElementsAre("Text document"));
    templates.refresh();
    EXPECT_TRUE(runUntil([&] { return templates.list().size() > 1; }));
    EXPECT_THAT(titlesOf(templates),
                ElementsAre("Text document", "Project", "Letter.odt", "Letter.txt", "Sheet"));

    show("pane");
    for (const int index : {3, 3, 1})
        actions.creation().createFile(pane, templates.list().at(static_cast<std::size_t>(index)));
    ASSERT_TRUE(waitForJobs());
    EXPECT_THAT(tree.names("pane"), ElementsAre("Letter (2).txt", "Letter.txt", "Project"));
    EXPECT_EQ(tree.contents("pane/Letter (2).txt"), "Letter.txt");
    EXPECT_EQ(tree.contents("pane/Project/notes"), "inside");

    tree.file("home/user-dirs.dirs", "XDG_TEMPLATES_DIR=\"$HOME/\"\n"); // how it is switched off
    templates.refresh();
    EXPECT_TRUE(runUntil([&] { return templates.list().size() == 1; }));
}

} // namespace
} // namespace ombrel
