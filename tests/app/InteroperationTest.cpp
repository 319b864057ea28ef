#include "app/Session.h"

#include <QByteArray>

#include <csignal>
#include <sstream>

namespace ombrel {
namespace {

using testing::ChildProcess;
using ::testing::ElementsAre;
using Words = std::vector<std::string>;

constexpr auto uriList = "text/uri-list", gnomeFiles = "x-special/gnome-copied-files",
               kdeCutMark = "application/x-kde-cutselection";

/// What passes between the program and other programs of the desktop.
class Interoperation : public testing::Session {
protected:
    void SetUp() override {
        Session::SetUp();
        if (IsSkipped()) return;
        tree.folder("home/desk/alpha");
        tree.file("home/desk/späte notes.txt", "text");
        tree.folder("others");
    }
    void TearDown() override {
        if (other) endOther();
        Session::TearDown();
    }

    [[nodiscard]] static std::string onClipboard(const std::string& format) {
        return desktop().start({OMBREL_PEER_PATH, "read", format})->finish().output;
    }
    static void waitForClipboard(const std::string& format, const std::string& bytes) {
        wait(format + " on the clipboard", [&] { return onClipboard(format) == bytes; });
    }
    void startOther(const Words& words) {
        Words all = words;
        all.insert(all.begin(), OMBREL_PEER_PATH);
        tree.file("said");
        other = desktop().start(all, {.outputPath = tree.path("said")});
    }
    void endOther() {
        other->signal(SIGTERM);
        static_cast<void>(other->finish());
        other = nullptr;
    }
    /// The rests of the lines of the other program that begin with `word`.
    [[nodiscard]] Words said(const std::string& word) const {
        Words rests;
        std::istringstream lines(tree.contents("said"));
        for (std::string line; std::getline(lines, line);)
            if (line.starts_with(word)) rests.push_back(line.substr(std::min(line.size(), word.size() + 1)));
        return rests;
    }
    /// The rest of the first such line, once it is there.
    std::string hear(const std::string& word) const {
        wait("“" + word + "” of the other program", [&] { return !said(word).empty(); });
        return said(word).front();
    }
    /// Where the middle of the other program's window is.
    [[nodiscard]] QPoint place() const {
        std::istringstream numbers(hear("ready"));
        int x = -1, y = -1;
        numbers >> x >> y;
        return {x, y};
    }
    [[nodiscard]] std::string uriOf(const std::string& name) const { return tree.url(name).uri(); }

    std::unique_ptr<ChildProcess> other;
};

TEST_F(Interoperation, OtherProgramsReadWhatIsCopiedAndCut) {
    start();
    const std::string uri = uriOf("home/desk/späte notes.txt");
    EXPECT_TRUE(uri.ends_with("/home/desk/sp%C3%A4te%20notes.txt")) << uri;
    clickRow("späte notes.txt");
    key("ctrl+c");
    waitForClipboard(gnomeFiles, "copy\n" + uri);
    EXPECT_EQ(onClipboard(uriList), uri + "\r\n");
    EXPECT_EQ(onClipboard(kdeCutMark), "0");
    EXPECT_EQ(onClipboard("text/plain"), tree.path("home/desk/späte notes.txt"));

    key("ctrl+a");
    key("ctrl+x");
    const std::string folder = uriOf("home/desk/alpha");
    waitForClipboard(gnomeFiles, "cut\n" + folder + "\n" + uri);
    EXPECT_EQ(onClipboard(uriList), folder + "\r\n" + uri + "\r\n");
    EXPECT_EQ(onClipboard(kdeCutMark), "1");
    quit();
}

TEST_F(Interoperation, WhatOtherProgramsOfferIsPastedAsACopyEvenIfTheyHaveCutIt) {
    const std::string uri = uriOf("others/item");
    struct Row {
        const char* name;
        Words offered;
    };
    const Row rows[] = {
        {"list", {uriList, uri + "\r\n"}},
        {"copied", {gnomeFiles, "copy\n" + uri}},
        {"cut", {gnomeFiles, "cut\n" + uri, uriList, uri + "\r\n"}},
        {"kde copied", {uriList, uri + "\r\n", kdeCutMark, "0"}},
        {"kde cut", {uriList, uri + "\r\n", kdeCutMark, "1"}},
    };
    start();
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        tree.file("others/item", row.name);
        const std::string folder = std::string("home/desk/alpha/") + row.name;
        tree.folder(folder);
        Words words = {"offer"};
        words.insert(words.end(), row.offered.begin(), row.offered.end());
        startOther(words);
        hear("ready");
        goTo(folder);
        wait("something to paste", [] { return see(Role::button, "Paste").isEnabled; });
        key("ctrl+v");
        waitForDisk(folder, {"item"});
        EXPECT_EQ(tree.contents(folder + "/item"), row.name);
        EXPECT_THAT(tree.names("others"), ElementsAre("item"));
        endOther();
    }
    quit();
}

TEST_F(Interoperation, OtherProgramsTakeWhatIsDraggedToThem) {
    start();
    const std::vector<std::string> all = {"alpha", "späte notes.txt"};
    seeRows(all);
    startOther({"take", uriList});
    const QPoint there = place();
    clickRow("alpha");
    key("ctrl+a");
    desktop().beginDrag(grip(row("späte notes.txt")), there);
    // It is told of a step when it has answered the one before, so the third one says that it was heard.
    int step = 0;
    wait("the drag over the other program", [&] {
        desktop().moveTo(there + QPoint(++step % 2, 0));
        return said("over").size() >= 3;
    });
    desktop().release();
    EXPECT_EQ(QByteArray::fromPercentEncoding(hear("dropped").c_str()).toStdString(),
              uriOf("home/desk/alpha") + "\r\n" + uriOf("home/desk/späte notes.txt") + "\r\n");
    EXPECT_EQ(tree.names("home/desk"), all);
    seeRows(all);
    endOther();
    quit();
}

TEST_F(Interoperation, WhatIsDraggedInFromOtherProgramsIsCopied) {
    tree.file("others/item", "from elsewhere");
    start();
    const QPoint folder = grip(row("alpha"));
    startOther({"give", uriList, uriOf("others/item") + "\r\n"});
    hold(place(), folder, "Copy to alpha");
    desktop().release();
    EXPECT_EQ(hear("ended"), "copied");
    waitForDisk("home/desk/alpha", {"item"});
    EXPECT_EQ(tree.contents("home/desk/alpha/item"), "from elsewhere");
    EXPECT_EQ(tree.contents("others/item"), "from elsewhere");
    endOther();
    desktop().clickAt(folder, 1, 2);
    seeTitle("alpha");
    seeRows({"item"});
    quit();
}

} // namespace
} // namespace ombrel
