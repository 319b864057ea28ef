#include "app/Session.h"
#include "support/MirrorMount.h"

#include <algorithm>
#include <memory>

namespace ombrel {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

/// Copying between windows, the questions that come up, and the window of the jobs.
class TransferSession : public testing::Session {
protected:
    void SetUp() override {
        Session::SetUp();
        if (IsSkipped()) return;
        for (const char* folder : {"home/desk/alpha", "home/desk/mike", "home/desk/alpha/inner"})
            tree.folder(folder);
        tree.file("home/desk/alpha/inner/deep.txt", "deep");
        tree.file("home/desk/alpha/notes.txt", "the new notes");
    }

    void copyFrom(const std::string& folder, const std::string& name) {
        goTo(folder);
        clickRow(name);
        key("ctrl+c");
    }
    [[nodiscard]] std::vector<std::string> contentsIn(const std::string& folder) const {
        std::vector<std::string> all;
        for (const auto& name : tree.names(folder))
            all.push_back(tree.contents(folder + "/" + name));
        return all;
    }
};

TEST_F(TransferSession, CopiesAndMovesFromOneWindowToAnother) {
    start("home/desk/alpha");
    seeRows({"inner", "notes.txt"});
    key("ctrl+a");
    key("ctrl+c");
    key("ctrl+n");
    seeTitle("Home");
    EXPECT_EQ(reader().windows().size(), 2U);
    goTo("home/desk/mike");
    key("ctrl+v");
    waitForDisk("home/desk/mike", {"inner", "notes.txt"});
    waitForDisk("home/desk/mike/inner", {"deep.txt"});
    EXPECT_EQ(tree.contents("home/desk/mike/inner/deep.txt"), "deep");
    EXPECT_EQ(tree.contents("home/desk/mike/notes.txt"), "the new notes");
    seeRows({"inner", "notes.txt"});

    // Cut here, paste there.
    tree.folder("home/desk/zulu");
    clickRow("notes.txt");
    key("ctrl+x");
    see(Role::listItem, "notes.txt, ", Match::beginning);
    key("alt+F4");
    seeTitle("alpha");
    goTo("home/desk/zulu");
    key("ctrl+v");
    waitForDisk("home/desk/zulu", {"notes.txt"});
    waitForDisk("home/desk/mike", {"inner"});
    EXPECT_EQ(tree.contents("home/desk/zulu/notes.txt"), "the new notes");
    seeRows({"notes.txt"});
    quit();
}

TEST_F(TransferSession, AsksAboutNamesThatAreTakenAndDoesAsIsClicked) {
    tree.file("home/desk/mike/notes.txt", "the old notes");
    start();
    copyFrom("home/desk/alpha", "notes.txt");
    goTo("home/desk/mike");
    key("ctrl+v");
    clickAnywhere("Skip");
    seeGone(Role::button, "Skip");
    EXPECT_THAT(contentsIn("home/desk/mike"), ElementsAre("the old notes"));
    // What was skipped is told.
    clickAnywhere("Close");
    seeTitle("mike");

    key("ctrl+v");
    clickAnywhere("Keep both");
    wait("both", [&] { return contentsIn("home/desk/mike").size() == 2; });
    seeGone(Role::button, "Keep both");
    EXPECT_THAT(contentsIn("home/desk/mike"), UnorderedElementsAre("the old notes", "the new notes"));
    EXPECT_EQ(tree.contents("home/desk/mike/notes.txt"), "the old notes");
    seeTitle("mike");

    key("ctrl+v");
    clickAnywhere("Replace");
    seeGone(Role::button, "Replace");
    wait("the new notes", [&] { return tree.contents("home/desk/mike/notes.txt") == "the new notes"; });
    EXPECT_EQ(tree.names("home/desk/mike").size(), 2U);
    quit();
}

/// From a volume that answers when the test says so.
class SlowTransferSession : public TransferSession {
protected:
    void SetUp() override {
        TransferSession::SetUp();
        if (IsSkipped()) return;
        tree.folder("slow");
        for (const char* name : {"one", "two", "three"})
            tree.fileOfSize(std::string("slow/") + name, 300'000);
        auto made = testing::MirrorMount::of(tree.path("slow"), {}, tree.path("volume"));
        if (!made) GTEST_SKIP() << made.error();
        volume = *std::move(made);
        start("volume");
        seeRows({"one", "three", "two"});
        key("ctrl+a");
        key("ctrl+c");
        goTo("home/desk/mike");
        volume->hang();
        key("ctrl+v");
        pauseButton = seeAnywhere(Role::button, "Pause");
    }
    void TearDown() override {
        if (volume) volume->answer();
        Session::TearDown();
    }
    [[nodiscard]] std::vector<std::string> copied() const { return tree.names("home/desk/mike"); }

    std::unique_ptr<testing::MirrorMount> volume;
    Thing pauseButton;
};

TEST_F(SlowTransferSession, PausesAndResumes) {
    desktop().clickAt(middle(pauseButton));
    seeAnywhere(Role::label, "Paused", Match::beginning);
    volume->answer();
    const auto resume = seeAnywhere(Role::button, "Resume");
    // Long enough for everything to be copied if nobody held it.
    for (int look = 0; look < 20; ++look)
        seeAnywhere(Role::label, "Paused", Match::beginning);
    EXPECT_THAT(copied(), IsEmpty());
    desktop().clickAt(middle(resume));
    waitForDisk("home/desk/mike", {"one", "three", "two"});
    for (const char* name : {"one", "two", "three"})
        EXPECT_EQ(tree.contents("home/desk/mike/" + std::string(name)),
                  tree.contents("slow/" + std::string(name)));
    seeGone(Role::button, "Pause");
    seeTitle("mike");
    seeRows({"one", "three", "two"});
    quit();
}

TEST_F(SlowTransferSession, CancelsAndLeavesNothing) {
    clickAnywhere("Cancel");
    seeAnywhere(Role::label, "Cancelling…");
    volume->answer();
    seeGone(Role::label, "Cancelling…");
    seeTitle("mike");
    EXPECT_THAT(copied(), IsEmpty());
    EXPECT_THAT(tree.names("slow"), UnorderedElementsAre("one", "two", "three"));
    // Nothing is left to be taken back either.
    seeRows({});
    quit();
}

} // namespace
} // namespace ombrel
