#include "app/Desktop.h"
#include "app/WindowPlaces.h"
#include "support/TempTree.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <memory>
#include <string>
#include <thread>

namespace ombrel {
namespace {

using testing::Desktop;
using testing::TempTree;
using testing::WindowPlaces;

/// The real program on a real display server, driven by mouse and keys; what it shows is told by its title,
/// because that follows the folder it is in.
class WindowSession : public ::testing::Test {
protected:
    void SetUp() override {
        tree.folder("desk");
        tree.folder("desk/alpha");
        tree.folder("desk/alpha/inner");
        tree.folder("desk/mike");
        tree.folder("desk/zulu");
        tree.file("desk/notes.txt", "text");
        age("desk/zulu", 3000);
        age("desk/alpha", 2000);
        age("desk/mike", 1000);
        desktop = Desktop::open();
        if (!desktop) GTEST_SKIP() << "Xvfb, openbox and xdotool are not all there";
        program = desktop->start({OMBREL_PATH, tree.path("desk")});
        if (desktop->hasTitle("desk")) return;
        program->signal(SIGTERM);
        FAIL() << "no window called desk; the program says: " << program->finish().errors;
    }

    /// The later in `seconds`, the newer.
    void age(const char* name, time_t seconds) {
        const timespec times[2] = {{seconds, 0}, {seconds, 0}};
        ASSERT_EQ(::utimensat(AT_FDCWD, tree.path(name).c_str(), times, 0), 0);
    }

    void doubleClickFirstRow() { desktop->click(WindowPlaces(desktop->windowWidth()).row(0), 2); }
    void clickNameHeader() { desktop->click(WindowPlaces(desktop->windowWidth()).nameHeader()); }
    /// Whether Enter on the first row leads into `name`.
    [[nodiscard]] bool firstFolderIs(const std::string& name) {
        desktop->key("Home");
        desktop->key("Return");
        return desktop->hasTitle(name);
    }
    /// For what the program does on a worker and then shows without a change of its title.
    static void giveTime() { std::this_thread::sleep_for(std::chrono::milliseconds(300)); }

    TempTree tree;
    std::unique_ptr<Desktop> desktop;
    std::unique_ptr<testing::ChildProcess> program;
};

TEST_F(WindowSession, GoesIntoFoldersAndBackByMouseAndKeys) {
    doubleClickFirstRow();
    ASSERT_TRUE(desktop->hasTitle("alpha")) << desktop->title();
    desktop->key("BackSpace");
    ASSERT_TRUE(desktop->hasTitle("desk"));
    desktop->key("alt+Right");
    ASSERT_TRUE(desktop->hasTitle("alpha"));
    desktop->key("alt+Left");
    ASSERT_TRUE(desktop->hasTitle("desk"));

    // Back has selected the folder that was left: the next one below is mike.
    desktop->key("Down");
    desktop->key("Return");
    ASSERT_TRUE(desktop->hasTitle("mike"));
    desktop->key("alt+Up");
    ASSERT_TRUE(desktop->hasTitle("desk"));
    desktop->key("z");
    giveTime();
    desktop->key("Return");
    ASSERT_TRUE(desktop->hasTitle("zulu"));
    desktop->key("alt+Up");
    desktop->key("F5");
    ASSERT_TRUE(desktop->hasTitle("desk"));

    desktop->key("alt+F4");
    const auto result = program->finish();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.errors.find("abort"), std::string::npos) << result.errors;
}

TEST_F(WindowSession, SortsByClicksOnTheHeader) {
    clickNameHeader();
    giveTime();
    EXPECT_TRUE(firstFolderIs("zulu")) << desktop->title();
    desktop->key("BackSpace");
    ASSERT_TRUE(desktop->hasTitle("desk"));
    clickNameHeader();
    giveTime();
    EXPECT_TRUE(firstFolderIs("alpha")) << desktop->title();
}

TEST_F(WindowSession, StandsAFolderThatGoesAway) {
    desktop->key("Home");
    desktop->key("Down");
    desktop->key("Return");
    ASSERT_TRUE(desktop->hasTitle("mike"));
    ASSERT_EQ(::rmdir(tree.path("desk/mike").c_str()), 0);
    giveTime();
    desktop->key("F5");
    desktop->key("alt+Up");
    ASSERT_TRUE(desktop->hasTitle("desk"));
    desktop->key("F5");
    desktop->key("alt+F4");
    EXPECT_EQ(program->finish().status, 0);
}

TEST_F(WindowSession, ShowsAFolderThatSomebodyElseMakes) {
    tree.folder("desk/aardvark");
    bool isThere = false;
    for (int tries = 0; tries < 100 && !isThere; ++tries) {
        desktop->key("Home");
        desktop->key("Return");
        while (desktop->title() == "desk")
            giveTime();
        isThere = desktop->title() == "aardvark";
        desktop->key("BackSpace");
        ASSERT_TRUE(desktop->hasTitle("desk"));
    }
    EXPECT_TRUE(isThere);
}

} // namespace
} // namespace ombrel
