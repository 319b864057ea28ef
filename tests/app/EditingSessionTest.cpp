#include "app/Session.h"

namespace ombrel {
namespace {

using ::testing::ElementsAre;

/// Changing what is in a folder, and taking it back.
class EditingSession : public testing::Session {
protected:
    void SetUp() override {
        Session::SetUp();
        if (IsSkipped()) return;
        tree.folder("home/desk/alpha");
        tree.file("home/desk/notes.txt", "text");
        tree.file("home/desk/other.txt", "other");
    }

    void rename(const std::string& whole, const std::string& typed, const std::string& reads) {
        wait("the old name to rename", [&] { return reader().textIn(see(Role::field, "Rename")) == whole; });
        typeInto("Rename", typed, reads);
        key("Return");
        seeGone(Role::field, "Rename");
    }
    void confirmTrash(const std::string& name) {
        see(Role::label, "Move “" + name + "” to the trash?");
        key("Return");
        seeTitle("desk");
    }
};

TEST_F(EditingSession, RenamesInPlace) {
    start();
    seeRows({"alpha", "notes.txt", "other.txt"});
    clickRow("notes.txt");
    key("F2");
    rename("notes.txt", "report", "report.txt");
    waitForDisk("home/desk", {"alpha", "other.txt", "report.txt"});
    EXPECT_EQ(tree.contents("home/desk/report.txt"), "text");
    seeRows({"alpha", "other.txt", "report.txt"});
    EXPECT_TRUE(row("report.txt").isSelected);

    // A name that is taken is refused, and the editor stays.
    key("F2");
    typeInto("Rename", "other", "other.txt");
    key("Return");
    see(Role::any, "An item with this name is already there.");
    key("Escape");
    seeGone(Role::field, "Rename");
    waitForDisk("home/desk", {"alpha", "other.txt", "report.txt"});
    EXPECT_EQ(tree.contents("home/desk/other.txt"), "other");

    // By mouse, with a name that ends at another click.
    click(Role::button, "Rename");
    typeInto("Rename", "final", "final.txt");
    clickRow("alpha");
    waitForDisk("home/desk", {"alpha", "final.txt", "other.txt"});
    key("ctrl+z");
    waitForDisk("home/desk", {"alpha", "other.txt", "report.txt"});
    key("ctrl+z");
    waitForDisk("home/desk", {"alpha", "notes.txt", "other.txt"});
    key("ctrl+y");
    waitForDisk("home/desk", {"alpha", "other.txt", "report.txt"});
    quit();
}

TEST_F(EditingSession, MakesFoldersAndDragsIntoThem) {
    start();
    seeRows({"alpha", "notes.txt", "other.txt"});
    key("ctrl+shift+n");
    rename("New folder", "fresh", "fresh");
    waitForDisk("home/desk", {"alpha", "fresh", "notes.txt", "other.txt"});
    seeRows({"alpha", "fresh", "notes.txt", "other.txt"});

    drag("notes.txt", grip(row("fresh")), "Move to fresh");
    waitForDisk("home/desk/fresh", {"notes.txt"});
    waitForDisk("home/desk", {"alpha", "fresh", "other.txt"});
    EXPECT_EQ(tree.contents("home/desk/fresh/notes.txt"), "text");
    seeRows({"alpha", "fresh", "other.txt"});

    drag("other.txt", grip(row("alpha")), "Copy to alpha", "ctrl");
    waitForDisk("home/desk/alpha", {"other.txt"});
    waitForDisk("home/desk", {"alpha", "fresh", "other.txt"});

    // Taken back one by one, the latest first.
    key("ctrl+z");
    waitForDisk("home/desk/alpha", {});
    key("ctrl+z");
    waitForDisk("home/desk", {"alpha", "fresh", "notes.txt", "other.txt"});
    waitForDisk("home/desk/fresh", {});
    seeRows({"alpha", "fresh", "notes.txt", "other.txt"});
    EXPECT_EQ(tree.contents("home/desk/notes.txt"), "text");
    quit();
}

TEST_F(EditingSession, LeavesThingsWhereTheyAreWhenADragIsCalledOff) {
    const std::vector<std::string> all = {"alpha", "notes.txt", "other.txt"};
    start();
    seeRows(all);
    const QPoint folder = grip(row("alpha"));
    const auto take = [&] { hold(grip(row("notes.txt")), folder, "Move to alpha"); };
    const auto letGo = [&] {
        seeGone(Role::label, "Move to alpha");
        desktop().moveTo(folder + QPoint(1, 1));
        desktop().release();
        seeTitle("desk");
        seeRows(all);
        EXPECT_EQ(tree.names("home/desk"), all);
    };
    take();
    key("Escape");
    letGo();
    take();
    seeTitle("alpha"); // which has opened under the drag
    key("Escape");
    seeTitle("desk");
    letGo();
    take();
    desktop().clickAt(folder, 3);
    letGo();
    take();
    const QRect place = window().place;
    desktop().moveTo({place.right() + 60, place.center().y()});
    seeGone(Role::label, "Move to alpha");
    desktop().release();
    seeRows(all);

    // Whatever had been begun would be there before what is done now.
    drag("other.txt", folder, "Copy to alpha", "ctrl");
    waitForDisk("home/desk/alpha", {"other.txt"});
    EXPECT_EQ(tree.names("home/desk"), all);
    EXPECT_EQ(tree.contents("home/desk/notes.txt"), "text");
    quit();
}

TEST_F(EditingSession, MovesToTheTrashAndRestores) {
    start();
    clickRow("notes.txt");
    key("Delete");
    confirmTrash("notes.txt");
    waitForDisk("home/desk", {"alpha", "other.txt"});
    waitForDisk("data/Trash/files", {"notes.txt"});
    EXPECT_THAT(tree.names("data/Trash/info"), ElementsAre("notes.txt.trashinfo"));
    EXPECT_THAT(tree.contents("data/Trash/info/notes.txt.trashinfo"),
                ::testing::HasSubstr("Path=" + tree.path("home/desk/notes.txt")));
    seeRows({"alpha", "other.txt"});
    key("ctrl+z");
    waitForDisk("home/desk", {"alpha", "notes.txt", "other.txt"});
    waitForDisk("data/Trash/files", {});
    EXPECT_EQ(tree.contents("home/desk/notes.txt"), "text");
    seeRows({"alpha", "notes.txt", "other.txt"});

    // The safe answer of what cannot be taken back is the one with the focus.
    clickRow("notes.txt");
    key("shift+Delete");
    see(Role::label, "Delete “notes.txt” permanently?");
    key("Return");
    seeTitle("desk");
    EXPECT_TRUE(tree.exists("home/desk/notes.txt"));
    key("shift+Delete");
    click(Role::button, "Delete");
    waitForDisk("home/desk", {"alpha", "other.txt"});
    waitForDisk("data/Trash/files", {});
    quit();
}

TEST_F(EditingSession, TakesTheKeysOfTheOtherPreset) {
    writeSettings(R"("keyPreset": "mac")");
    start();
    seeRows({"alpha", "notes.txt", "other.txt"});
    clickRow("notes.txt");
    key("Return");
    rename("notes.txt", "report", "report.txt");
    waitForDisk("home/desk", {"alpha", "other.txt", "report.txt"});
    clickRow("alpha");
    key("ctrl+Down");
    seeTitle("alpha");
    key("super+shift+n");
    rename("New folder", "fresh", "fresh");
    waitForDisk("home/desk/alpha", {"fresh"});
    key("super+Up");
    seeTitle("desk");
    key("ctrl+bracketleft");
    seeTitle("alpha");
    key("ctrl+bracketright");
    seeTitle("desk");
    clickRow("report.txt");
    key("ctrl+BackSpace");
    confirmTrash("report.txt");
    waitForDisk("home/desk", {"alpha", "other.txt"});
    key("super+z");
    waitForDisk("home/desk", {"alpha", "other.txt", "report.txt"});
    key("ctrl+shift+z");
    waitForDisk("home/desk", {"alpha", "other.txt"});
    key("ctrl+w");
    const auto ended = std::exchange(program, nullptr)->finish();
    EXPECT_EQ(ended.status, 0);
}

} // namespace
} // namespace ombrel
