#include "app/Session.h"

#include <unistd.h>

namespace ombrel {
namespace {

/// Going through folders, and what is shown of them.
class BrowsingSession : public testing::Session {
protected:
    void SetUp() override {
        Session::SetUp();
        if (IsSkipped()) return;
        for (const char* folder : {"alpha", "alpha/inner", "mike", "zulu"})
            tree.folder(std::string("home/desk/") + folder);
        tree.file("home/desk/notes.txt", "text");
        tree.file("home/desk/alpha/inner/ancient notes.txt", "old");
        tree.fileOfSize("home/desk/beams.bin", 5000);
        tree.fileOfSize("home/desk/crate.bin", 300);
    }

    const std::vector<std::string> all = {"alpha", "mike", "zulu", "beams.bin", "crate.bin", "notes.txt"};
};

TEST_F(BrowsingSession, GoesByListCrumbsAndTypedAddresses) {
    start();
    seeRows(all);
    clickRow("alpha", 2);
    seeTitle("alpha");
    seeRows({"inner"});

    click(Role::button, "desk"); // the crumb
    seeTitle("desk");
    inPopup([] { click(Role::button, "Folders in desk"); },
            [] {
                key("m");
                key("Return");
            });
    seeTitle("mike");
    see(Role::label, "This folder is empty");

    goTo("home/desk/alpha/inner");
    seeRows({"ancient notes.txt"});
    key("ctrl+l");
    typeInto("Address", "C:\\things");
    key("Return");
    see(Role::any, "Windows drive and network addresses can’t be opened here.");
    key("Escape");
    seeGone(Role::any, "Windows drive and network addresses can’t be opened here.");
    seeTitle("inner");

    click(Role::button, "Up");
    seeTitle("alpha");
    click(Role::button, "Back");
    seeTitle("inner");
    const auto list = see(Role::list, "Files");
    constexpr int backButton = 8, forwardButton = 9;
    desktop().clickAt(middle(list), backButton);
    seeTitle("mike");
    desktop().clickAt(middle(list), forwardButton);
    seeTitle("inner");
    quit();
}

TEST_F(BrowsingSession, GoesByKeys) {
    start();
    seeRows(all);
    key("Home");
    key("Return");
    seeTitle("alpha");
    key("BackSpace");
    seeTitle("desk");
    key("alt+Right");
    seeTitle("alpha");
    key("alt+Left");
    seeTitle("desk");
    // Back has selected the folder that was left.
    wait("the folder that was left", [] { return row("alpha").isSelected; });
    key("Down");
    key("Return");
    seeTitle("mike");
    key("alt+Up");
    seeTitle("desk");
    key("z");
    wait("the folder that was typed", [] { return row("zulu").isSelected; });
    key("ctrl+Return");
    seeTitle("zulu");
    see(Role::tab, "desk", Match::beginning);
    key("ctrl+w");
    seeTitle("desk");
    key("ctrl+a");
    see(Role::label, "6 items selected", Match::beginning);
    quit();
}

TEST_F(BrowsingSession, StandsAFolderThatGoesAway) {
    start();
    clickRow("mike", 2);
    seeTitle("mike");
    see(Role::label, "This folder is empty");
    ASSERT_EQ(::rmdir(tree.path("home/desk/mike").c_str()), 0);
    see(Role::label, "This folder is gone");
    click(Role::button, "Go to the folder above");
    seeTitle("desk");
    seeRows({"alpha", "zulu", "beams.bin", "crate.bin", "notes.txt"});
    quit();
}

TEST_F(BrowsingSession, GoesByTreeAndHome) {
    start();
    click(Role::treeItem, "Home");
    seeTitle("Home");
    desktop().clickAt(middle(see(Role::listItem, "desk, ", Match::beginning)), 1, 2);
    seeTitle("desk");
    click(Role::treeItem, "desk");
    key("Right");
    click(Role::treeItem, "mike");
    seeTitle("mike");
    see(Role::label, "This folder is empty");
    click(Role::treeItem, "alpha");
    seeTitle("alpha");
    seeRows({"inner"});
    // A folder that somebody else makes comes by itself.
    tree.folder("home/desk/alpha/outer");
    seeRows({"inner", "outer"});
    quit();
}

TEST_F(BrowsingSession, SortsByItsHeader) {
    start();
    seeRows(all);
    const auto header = see(Role::any, "Columns");
    const int y = middle(header).y(), right = header.place.right() + 1;
    desktop().clickAt({header.place.left() + 5 * header.place.height(), y}); // the name, which is first
    seeRows({"zulu", "mike", "alpha", "notes.txt", "crate.bin", "beams.bin"});
    desktop().clickAt({right - 50, y}); // the size
    seeRows({"alpha", "mike", "zulu", "notes.txt", "crate.bin", "beams.bin"});
    quit();
}

TEST_F(BrowsingSession, KeepsTheSizeThatItsWindowIsDraggedTo) {
    start();
    const auto before = window().place;
    constexpr int less = 200;
    // As the window manager has it: with Alt and the right button, near a corner.
    const QPoint corner = before.bottomRight() - QPoint(40, 40);
    desktop().hand({"keydown", "alt"});
    desktop().beginDrag(corner, corner - QPoint(less, less / 2), 3);
    desktop().release(3);
    desktop().hand({"keyup", "alt"});
    wait("a smaller window", [&] { return window().place.width() == before.width() - less; });
    const QSize size = window().place.size();
    seeRows(all);
    EXPECT_LE(see(Role::list, "Files").place.right(), window().place.right());
    quit();
    start();
    wait("a window as small as the last one", [&] { return window().place.size() == size; });
    quit();
}

TEST_F(BrowsingSession, SearchesBelowTheFolder) {
    start();
    seeRows(all);
    key("ctrl+f");
    typeInto("Search", "note");
    seeRows({"ancient notes.txt", "notes.txt"});
    see(Role::any, "Results for “note” in desk");
    key("Escape");
    seeRows(all);
    key("ctrl+f");
    typeInto("Search", "nothing like it");
    see(Role::label, "No items match “nothing like it”");
    click(Role::button, "Clear search");
    seeRows(all);
    quit();
}

} // namespace
} // namespace ombrel
