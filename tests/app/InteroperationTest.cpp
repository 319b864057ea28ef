#include "app/Session.h"

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
        if (other) {
            other->signal(SIGTERM);
            static_cast<void>(other->finish());
        }
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
        other = desktop().start(all);
    }
    /// The rest of the next line of the other program that begins with `word`.
    [[nodiscard]] std::string nextLine(const std::string& word) const {
        for (;;) {
            const std::string line = other->readOutputLine();
            if (line.empty()) throw std::runtime_error("the other program does not say “" + word + "”");
            if (line.starts_with(word)) return line.substr(std::min(line.size(), word.size() + 1));
        }
    }
    [[nodiscard]] QPoint nextPoint(const std::string& word) const {
        std::istringstream numbers(nextLine(word));
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
        static_cast<void>(nextLine("ready"));
        goTo(folder);
        wait("something to paste", [] { return see(Role::button, "Paste").isEnabled; });
        key("ctrl+v");
        waitForDisk(folder, {"item"});
        EXPECT_EQ(tree.contents(folder + "/item"), row.name);
        EXPECT_THAT(tree.names("others"), ElementsAre("item"));
        other->signal(SIGTERM);
        static_cast<void>(other->finish());
        other = nullptr;
    }
    quit();
}

} // namespace
} // namespace ombrel
