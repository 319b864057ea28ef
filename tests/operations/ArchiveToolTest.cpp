#include "operations/ArchiveService.h"
#include "operations/ToolProcess.h"
#include "operations/ToolText.h"
#include "operations/ToolWords.h"
#include "support/ArchiveWorld.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <csignal>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

// ---- Which part extracts a name

TEST(ExtractionPlan, TakesTheFirstSuffixThatFits) {
    using Extractor = ArchiveExtractor;
    const Extractor::Part libarchive = Extractor::Libarchive{}, gzip = Extractor::SingleFile{"gzip", {"-dc"}};
    const std::vector<std::tuple<std::string, std::string, Extractor::Part>> table = {
        {"a.zip", "a", Extractor::Ditto{}},
        {"Photos.TAR.GZ", "Photos", libarchive},
        {"x.cpio.gz", "x", libarchive},
        {"x.tar.lzma", "x", libarchive},
        {"x.tar.Z", "x", libarchive},
        {"x.taz", "x", libarchive},
        {"x.lzh", "x", libarchive},
        {"x.y.7z", "x.y", libarchive},
        {"x.aar", "x", Extractor::AppleArchive{}},
        {"x.yaa", "x", Extractor::AppleArchive{}},
        {"x.tar.gz.gz", "x.tar.gz", gzip},
        {"x.Z", "x", gzip},
        {"data.bz2", "data", Extractor::SingleFile{"bzip2", {"-dc"}}},
        {"data.xz", "data", Extractor::SingleFile{"xz", {"-dc"}}},
        {".gz", "", gzip},
        {"\xFF\xFE.tgz", "\xFF\xFE", libarchive},
    };
    for (const auto& [name, base, part] : table)
        EXPECT_EQ(extractionPlan(name), (ArchivePlan{{part}, base})) << name;
    for (const auto* name : {"zip", "a.zip.txt", "tar", "x.lzma", "x.zst", "x.gzip", ""})
        EXPECT_FALSE(extractionPlan(name)) << name;
}

// ---- What tools write

TEST(ToolText, UnescapesWhatBsdtarWrites) {
    EXPECT_EQ(ToolText::unescaped(R"(dir/bad\377\376name)"), "dir/bad\xFF\xFEname");
    EXPECT_EQ(ToolText::unescaped(R"(with\nnewline, back\\slash)"), "with\nnewline, back\\slash");
    EXPECT_EQ(ToolText::unescaped(R"(\\101 \477 \12 \q \)"), R"(\101 \477 \12 \q \)");
    EXPECT_EQ(ToolText::lastComponent("a/b/"), "b");
    EXPECT_EQ(ToolText::lastComponent("/"), "/");
}

class ArchiveProgressReading : public ::testing::Test {
protected:
    using Format = ArchiveProgress::Format;
    static std::int64_t sizeOf(const FileURL& url) {
        if (url.path() == "/in/dir/big") return 3'500'000;
        return url.path() == "/in/plain" ? 5 : 0;
    }
    static ArchiveProgress reading(Format format) {
        return {format, {4, 3'500'005}, *FileURL::fromPath("/in"), sizeOf};
    }
    static std::string shown(ArchiveProgress& source) {
        const auto progress = source.progress();
        return std::to_string(progress.completedItems) + " " + std::to_string(progress.completedBytes) + " " +
               progress.currentName.value_or("-");
    }
};

TEST_F(ArchiveProgressReading, CountsZipsLinesAndDots) {
    auto source = reading(Format::zip);
    source.partial("  adding: pl");
    EXPECT_EQ(shown(source), "0 0 pl");
    EXPECT_TRUE(source.consume("  adding: plain (stored 0%)"));
    EXPECT_EQ(shown(source), "1 5 -");
    EXPECT_TRUE(source.consume("  adding: dir/ (stored 0%)"));
    source.partial("  adding: dir/big ..");
    EXPECT_EQ(shown(source), "2 2097157 big");
    source.partial("  adding: dir/big ...");
    EXPECT_EQ(shown(source), "2 3145733 big");
    EXPECT_TRUE(source.consume("  adding: dir/big ... (deflated 0%)"));
    EXPECT_EQ(shown(source), "3 3500005 -");
    EXPECT_TRUE(source.consume("  adding: a (2) (stored 0%)"));
    EXPECT_FALSE(source.consume("zip warning: name not matched: ./x"));
    EXPECT_EQ(source.doneItems(), 4);
    EXPECT_EQ(source.signalToAsk(), 0);
}

TEST_F(ArchiveProgressReading, FollowsBsdtarThroughAFile) {
    auto source = reading(Format::ditto);
    EXPECT_EQ(source.signalToAsk(), 0); // it would end a tool that does not listen yet
    EXPECT_TRUE(source.consume("a plain"));
    EXPECT_EQ(source.signalToAsk(), SIGUSR1);
    source.partial("a dir");
    EXPECT_EQ(shown(source), "1 5 dir");
    EXPECT_TRUE(source.consume("a dir"));
    source.partial("a dir/big");
    EXPECT_EQ(shown(source), "2 5 big");
    EXPECT_TRUE(source.consume("a dir/big"));
    EXPECT_TRUE(source.consume("In: 3 files, 17367109 bytes; Out: 17367109 bytes, compression 0%"));
    EXPECT_TRUE(source.consume("Current: dir/big (1000000/3500000 bytes)"));
    EXPECT_EQ(shown(source), "2 1000005 big");
    EXPECT_TRUE(source.consume(""));
    EXPECT_TRUE(source.consume("Current: dir/big (900000/3500000 bytes)"));
    EXPECT_EQ(shown(source), "2 1000005 big");
    EXPECT_TRUE(source.consume("a dir/last\\n"));
    EXPECT_EQ(shown(source), "3 3500005 last\n");
    EXPECT_FALSE(source.consume("bsdtar: x: Cannot stat"));
    source.finish();
    EXPECT_EQ(source.doneItems(), 4);
}

TEST_F(ArchiveProgressReading, LooksAtTheFileThatGrows) {
    auto source = reading(Format::ditto);
    EXPECT_TRUE(source.consume("x dir/big"));
    EXPECT_EQ(shown(source), "0 3500000 big");
    EXPECT_TRUE(source.consume("x plain"));
    EXPECT_EQ(shown(source), "1 3500005 plain");
    EXPECT_TRUE(source.consume("copying symlink x"));
    EXPECT_TRUE(source.consume("linked x"));
    EXPECT_TRUE(source.consume("0 bytes for ./y"));
    EXPECT_EQ(source.doneItems(), 4);
}

TEST(ReadProgressReading, IsHowMuchOfTheArchiveWasRead) {
    const TempTree tree;
    const auto archive = tree.fileOfSize("a", 1000);
    const OwnedFd input(::open(archive.path().c_str(), O_RDONLY));
    ReadProgress source(input.get(), 1000, ReadProgress::BSDTar{});
    ::lseek(input.get(), 990, SEEK_SET); // a table of contents at the end
    EXPECT_EQ(source.progress().completedBytes, 0);
    ::lseek(input.get(), 100, SEEK_SET);
    EXPECT_TRUE(source.consume("x dir/a\\303\\274"));
    EXPECT_EQ(source.progress().completedBytes, 100);
    EXPECT_EQ(source.progress().currentName, "a\xC3\xBC");
    ::lseek(input.get(), 50, SEEK_SET);
    EXPECT_EQ(source.progress().completedBytes, 100);
    source.finish();
    EXPECT_EQ(source.progress().fraction(), 1.0);
    EXPECT_EQ(ReadProgress(input.get(), 1000, ReadProgress::Single{"one"}).progress().currentName, "one");
}

TEST(ToolWords, TellTheWeightiestComplaint) {
    const auto judged = [](std::vector<std::pair<std::string, bool>> lines) {
        ToolWords words;
        for (const auto& [line, isProgress] : lines)
            words.add(line, isProgress);
        return std::pair(words.fault(), words.words());
    };
    using Found = std::pair<std::optional<ArchiveFault>, std::string>;
    EXPECT_EQ(judged({{"x dir/big: ZIP decompression failed (-5): Unknown error -1", true},
                      {"bsdtar: Error exit delayed from previous errors.", false}}),
              Found(ArchiveFault::damaged, "dir/big: ZIP decompression failed (-5): Unknown error -1"));
    EXPECT_EQ(judged({{"x a: truncated gzip input", true},
                      {"x lnk/t: Cannot extract through symlink lnk/t: Success", true}})
                  .first,
              ArchiveFault::unsafe);
    EXPECT_EQ(judged({{"Enter passphrase:Enter passphrase:: Too many incorrect passphrases", false}}).first,
              ArchiveFault::encrypted);
    EXPECT_EQ(judged({{"x encrypted CRC damaged", true}, {" one ", false}, {"two", false}}),
              Found(std::nullopt, "one  two"));
    ToolWords full;
    full.add("x zz: Write failed: No space left on device", true);
    EXPECT_TRUE(full.tellsOfNoSpace());
}

// ---- Processes

TEST(ToolProcess, GivesTheToolNothingButWhatItNeeds) {
    const TempTree tree;
    fakeTool(
        tree, "tool",
        "test -e /proc/$$/fd/77 && echo leak\npwd\nprintf '%s|' \"$@\"; env | sort | tr '\\n' ' '; echo\n"
        "(exec 3</dev/tty) 2>/dev/null && echo terminal\nps -o sid= -p $$ | tr -d ' '; echo $$");
    const OwnedFd leak(::fcntl(STDIN_FILENO, F_DUPFD, 77)); // not even close-on-exec
    ASSERT_EQ(leak.get(), 77);
    const OwnedFd folder(::open(tree.path().c_str(), O_RDONLY | O_CLOEXEC));
    ASSERT_EQ(ToolProcess::find("tool", "/nowhere:" + tree.path()), tree.path("tool"));
    const auto process =
        ToolProcess::start({.path = tree.path("tool"), .words = {"a b", "$(x)", ""}, .folder = folder.get()});
    ASSERT_TRUE(process);
    ASSERT_EQ((*process)->wait(std::chrono::seconds(20)), 0);
    (*process)->output().done.acquire();
    const auto lines = (*process)->output().takeLines();
    ASSERT_EQ(lines.size(), 4U);
    EXPECT_EQ(lines[0], tree.path());
    EXPECT_THAT(lines[1], HasSubstr("a b|$(x)||"));
    EXPECT_THAT(lines[1], HasSubstr("LC_ALL=C.UTF-8 "));
    EXPECT_THAT(lines[1], ::testing::Not(HasSubstr("HOME=")));
    EXPECT_EQ(lines[2], lines[3]); // it leads a session, where no terminal is
}

TEST(ToolProcess, ReadsStreamsLineByLine) {
    const TempTree tree;
    fakeTool(tree, "tool", "printf 'one\\n\\ntw'; read x; printf 'o\\nrest'; echo err >&2; exit 7");
    const OwnedFd input(::open(tree.file("in", "line\n").path().c_str(), O_RDONLY));
    const auto process = ToolProcess::start({.path = tree.path("tool"), .words = {}, .input = input.get()});
    ASSERT_TRUE(process);
    ASSERT_EQ((*process)->wait(std::chrono::seconds(20)), 7);
    (*process)->output().done.acquire();
    (*process)->errors().done.acquire();
    EXPECT_THAT((*process)->output().takeLines(), ElementsAre("one", "", "two"));
    EXPECT_THAT((*process)->output().takeLines(), IsEmpty());
    EXPECT_EQ((*process)->output().pendingLine(), "rest");
    EXPECT_THAT((*process)->errors().takeLines(), ElementsAre("err"));
}

TEST(ToolProcess, TellsOfProgramsThatCannotBeStartedAndOfSignals) {
    const TempTree tree;
    tree.file("plain", "text");
    EXPECT_FALSE(ToolProcess::find("plain", tree.path()));
    EXPECT_FALSE(ToolProcess::start({.path = tree.path("absent"), .words = {}}));
    fakeTool(tree, "tool", "kill -SEGV $$");
    const auto process = ToolProcess::start({.path = tree.path("tool"), .words = {}});
    ASSERT_TRUE(process);
    EXPECT_EQ((*process)->wait(std::chrono::seconds(20)), 128 + SIGSEGV);
}

} // namespace
} // namespace ombrel
