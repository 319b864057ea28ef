#include "services/ClipboardService.h"

#include "support/Locations.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>

namespace ombrel {
namespace {

using Case = ClipboardService::PasteIntent::Case;
using testing::at;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

FileReference item(std::string_view path, std::uint64_t inode = 1) {
    return {at(path), FileIdentity{7, inode}};
}

std::vector<std::string> pathsOf(const std::vector<FileURL>& urls) {
    std::vector<std::string> paths;
    for (const auto& url : urls)
        paths.push_back(url.path());
    return paths;
}

class Clipboard : public ::testing::Test {
protected:
    /// What a paste would do, in a line.
    std::string intent() {
        const auto now = service.currentIntent();
        std::string text = now.which == Case::copy ? "copy" : now.which == Case::move ? "move" : "none";
        for (const auto& url : now.urls)
            text += ' ' + url.path();
        for (const auto& each : now.items)
            text += ' ' + each.url.path();
        return text;
    }
    /// Another program writes.
    void others(std::string format, std::string bytes) {
        pasteboard.write({{std::move(format), std::move(bytes)}});
    }
    [[nodiscard]] std::string offered(std::string_view format) const {
        return pasteboard.read(format).value_or("none");
    }

    PrivatePasteboard pasteboard;
    ClipboardService service{pasteboard};
};

using ClipboardOffer = Clipboard;

TEST_F(ClipboardOffer, IsUnderstoodByEveryFileManager) {
    service.copy({item("/a b/c"), item("/caf\xE9;#?%\n"), {at("/folder/"), {}}});
    EXPECT_EQ(offered("text/uri-list"),
              "file:///a%20b/c\r\nfile:///caf%E9%3B%23%3F%25%0A\r\nfile:///folder\r\n");
    EXPECT_EQ(offered("x-special/gnome-copied-files"),
              "copy\nfile:///a%20b/c\nfile:///caf%E9%3B%23%3F%25%0A\nfile:///folder");
    EXPECT_EQ(offered("application/x-kde-cutselection"), "0");
    EXPECT_EQ(offered("text/plain"), "/a b/c\n/caf\xE9;#?%\n\n/folder");
    EXPECT_EQ(offered("text/plain;charset=utf-8"), offered("text/plain"));
    service.cut({item("/x")});
    EXPECT_EQ(offered("x-special/gnome-copied-files"), "cut\nfile:///x");
    EXPECT_EQ(offered("application/x-kde-cutselection"), "1");
}

TEST_F(ClipboardOffer, OfPathsAndTextHasNoFinalLineFeed) {
    service.copyPaths({at("/a"), at("/b\xFF")});
    EXPECT_EQ(offered("text/plain"), "/a\n/b\xFF");
    EXPECT_EQ(intent(), "none");
    service.copyText({"one", "two"});
    EXPECT_EQ(offered("text/plain;charset=utf-8"), "one\ntwo");
    EXPECT_EQ(offered("text/uri-list"), "none");
}

TEST_F(ClipboardOffer, OfNothingChangesNothing) {
    service.cut({item("/a")});
    service.copy({});
    service.cut({});
    service.copyPaths({});
    service.copyText({});
    EXPECT_EQ(intent(), "move /a");
}

using FilesOfOthers = Clipboard;

TEST_F(FilesOfOthers, AreReadFromEachForm) {
    struct Row {
        const char* format;
        std::string bytes;
        std::vector<std::string> paths;
    };
    const Row rows[] = {
        {"text/uri-list", "# comment\r\nfile:///a%20b\r\nfile:///c\r\n", {"/a b", "/c"}},
        {"text/uri-list", "file:/a\nfile://localhost/b\n", {"/a", "/b"}},
        {"text/uri-list", std::string("file:///a\r\n\0", 12), {"/a"}},
        {"text/uri-list", "file:///caf%E9/%FF", {"/caf\xE9/\xFF"}},
        {"text/uri-list", "sftp://host/a\r\nfile:///b\r\nhttps://example.org/\r\ntrash:///x", {"/b"}},
        {"text/uri-list", "file://other.invalid/a\r\nfile:///%zz\r\n/plain/path\r\n\r\nfile:///ok", {"/ok"}},
        {"x-special/gnome-copied-files", "copy\nfile:///a\nfile:///b", {"/a", "/b"}},
        {"x-special/gnome-copied-files", "cut\nfile:///a\n", {"/a"}},
        {"x-special/gnome-copied-files", "file:///a\nfile:///b", {}},
        {"x-special/mate-copied-files", "copy\nfile:///a", {"/a"}},
        {"text/plain", "x-special/nautilus-clipboard\ncut\nfile:///a\nfile:///b\n", {"/a", "/b"}},
        {"text/plain", "file:///a", {}},
        {"text/plain", "/a/path", {}},
        {"image/png", "\x89PNG", {}},
        {"text/uri-list", "", {}},
    };
    for (const auto& row : rows) {
        others(row.format, row.bytes);
        EXPECT_EQ(pathsOf(service.fileURLs()), row.paths) << row.format << ' ' << row.bytes;
    }
}

TEST_F(FilesOfOthers, PreferTheMarkedFormAndFallBackWhenItNamesNone) {
    pasteboard.write(
        {{"text/uri-list", "file:///list"}, {"x-special/gnome-copied-files", "copy\nfile:///gnome"}});
    EXPECT_THAT(pathsOf(service.fileURLs()), ElementsAre("/gnome"));
    pasteboard.write(
        {{"text/uri-list", "file:///list"}, {"x-special/gnome-copied-files", "copy\nsftp://host/x"}});
    EXPECT_THAT(pathsOf(service.fileURLs()), ElementsAre("/list"));
}

TEST_F(FilesOfOthers, PasteAsACopyEvenWhenTheyWereCutThere) {
    pasteboard.write(
        {{"x-special/gnome-copied-files", "cut\nfile:///a"}, {"application/x-kde-cutselection", "1"}});
    EXPECT_EQ(intent(), "copy /a");
    PrivatePasteboard elsewhere;
    ClipboardService other(elsewhere);
    other.cut({item("/b")});
    pasteboard.write({{"text/uri-list", *elsewhere.read("text/uri-list")},
                      {std::string(ClipboardFormats::token), *elsewhere.read(ClipboardFormats::token)}});
    EXPECT_EQ(intent(), "copy /b") << "also when the other program is one of ours";
}

TEST_F(FilesOfOthers, MayBeMany) {
    std::string bytes;
    constexpr std::size_t count = 50'000;
    for (std::size_t i = 0; i < count; ++i)
        bytes += "file:///some/folder%20with%20a%20name/file%20" + std::to_string(i) + "\r\n";
    ASSERT_GT(bytes.size(), 2U << 20);
    others("text/uri-list", bytes);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(service.fileURLs().size(), count);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
    std::vector<FileReference> items;
    for (const auto& url : service.fileURLs())
        items.push_back({url, {}});
    service.cut(items);
    EXPECT_EQ(service.currentIntent().items.size(), count);
}

using Cut = Clipboard;

TEST_F(Cut, MovesWhatWasCutAndOnlyOnce) {
    std::vector<std::string> told;
    QObject::connect(&service, &ClipboardService::intentChanged, [&] { told.push_back(intent()); });
    service.cut({item("/a", 1), item("/b", 2)});
    EXPECT_THAT(told, ElementsAre("move /a /b")) << "never a state on the way";
    EXPECT_THAT(service.cutURLs(), UnorderedElementsAre(at("/a"), at("/b")));
    const auto intended = service.refresh();
    EXPECT_EQ(intended.which, Case::move);
    EXPECT_THAT(intended.items, ElementsAre(item("/a", 1), item("/b", 2)));
    service.finishMove(intended.items);
    EXPECT_EQ(intent(), "none");
    EXPECT_THAT(service.cutURLs(), IsEmpty());
    EXPECT_FALSE(pasteboard.has("text/uri-list"));
}

TEST_F(Cut, EndsWithTheNextCopyOrText) {
    service.cut({item("/a")});
    service.copy({item("/b")});
    EXPECT_EQ(intent(), "copy /b");
    EXPECT_THAT(service.cutURLs(), IsEmpty());
    service.cut({item("/a")});
    service.copyPaths({at("/a")});
    EXPECT_THAT(service.cutURLs(), IsEmpty());
}

TEST_F(Cut, EndsWhenAnotherProgramWrites) {
    int changes = 0;
    service.cut({item("/a")});
    QObject::connect(&service, &ClipboardService::cutURLsChanged, [&] { ++changes; });
    others("text/plain", "words");
    EXPECT_THAT(service.cutURLs(), IsEmpty());
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(intent(), "none");
    service.cut({item("/a")});
    others("text/uri-list", "file:///a\r\n");
    EXPECT_EQ(intent(), "copy /a") << "the same files, but not our cut any more";
}

TEST_F(Cut, GoesWithoutATraceWhenItIsCancelled) {
    service.cut({item("/a")});
    service.cancelCut();
    EXPECT_EQ(intent(), "none");
    EXPECT_FALSE(pasteboard.has("text/plain"));
    service.cut({item("/a")});
    others("text/plain", "words");
    service.cancelCut();
    EXPECT_EQ(offered("text/plain"), "words") << "what others wrote stays";
    service.copy({item("/c")});
    service.cancelCut();
    EXPECT_EQ(intent(), "copy /c");
}

TEST_F(Cut, StaysWhenAnOlderOneIsFinished) {
    service.cut({item("/a")});
    const auto first = service.currentIntent().items;
    service.cut({item("/b")});
    service.finishMove(first);
    EXPECT_EQ(intent(), "move /b");
}

TEST_F(Cut, SurvivesAClipboardManagerThatTakesOver) {
    service.cut({item("/a")});
    std::vector<Pasteboard::Entry> kept;
    for (const char* format : {"text/uri-list", "x-special/gnome-copied-files", "text/plain"})
        kept.push_back({format, offered(format)});
    auto whole = kept;
    whole.push_back({std::string(ClipboardFormats::token), offered(ClipboardFormats::token)});
    pasteboard.write(whole);
    EXPECT_EQ(intent(), "move /a");
    EXPECT_THAT(service.cutURLs(), ElementsAre(at("/a")));
    pasteboard.write(kept);
    EXPECT_EQ(intent(), "copy /a") << "one that drops formats it does not know leaves no proof";
}

/// A clipboard that tells nothing of what others write, as on a desktop where only the focused program is
/// told.
class SilentPasteboard : public Pasteboard {
public:
    void write(std::vector<Entry> entries) override { entries_ = std::move(entries); }
    bool has(std::string_view format) const override {
        return std::ranges::find(entries_, format, &Entry::format) != entries_.end();
    }
    std::optional<std::string> read(std::string_view format) const override {
        for (const auto& entry : entries_)
            if (entry.format == format) return entry.bytes();
        return std::nullopt;
    }

private:
    std::vector<Entry> entries_;
};

TEST(CutOnASilentClipboard, IsLookedAtWhenTheProgramComesBack) {
    SilentPasteboard pasteboard;
    ClipboardService service(pasteboard);
    service.cut({item("/a")});
    Q_EMIT pasteboard.regained();
    EXPECT_EQ(service.currentIntent().which, Case::move);
    pasteboard.write({{"text/plain", "words"}});
    Q_EMIT pasteboard.regained();
    EXPECT_THAT(service.cutURLs(), IsEmpty());
    EXPECT_EQ(service.currentIntent().which, Case::none);
}

/// Tells how often it was read.
class CountingPasteboard final : public SilentPasteboard {
public:
    std::optional<std::string> read(std::string_view format) const override {
        ++reads;
        return SilentPasteboard::read(format);
    }
    mutable int reads = 0;
};

TEST(ClipboardOfAText, IsReadOnceHoweverOftenTheProgramComesBack) {
    CountingPasteboard pasteboard;
    ClipboardService service(pasteboard);
    pasteboard.write({{"text/plain;charset=utf-8", "words"}, {"text/plain", "words"}});
    EXPECT_THAT(service.fileURLs(), IsEmpty());
    EXPECT_EQ(pasteboard.reads, 1);
    Q_EMIT pasteboard.regained();
    EXPECT_THAT(service.fileURLs(), IsEmpty());
    EXPECT_EQ(pasteboard.reads, 1);
    pasteboard.write({{"text/uri-list", "file:///a\r\n"}});
    Q_EMIT pasteboard.regained();
    EXPECT_EQ(pathsOf(service.fileURLs()), std::vector<std::string>{"/a"});
}

} // namespace
} // namespace ombrel
