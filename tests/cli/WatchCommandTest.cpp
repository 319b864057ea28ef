#include "support/ChildProcess.h"
#include "support/MirrorMount.h"
#include "support/TempTree.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <csignal>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::AllOf;
using ::testing::HasSubstr;

/// A program that watches a folder, from the moment on when it does.
class WatchCommand : public ::testing::Test {
protected:
    WatchCommand() { tree.folder("caf\xE9"); }
    [[nodiscard]] static std::unique_ptr<ChildProcess>
    watching(const std::string& path, const std::vector<std::string>& options = {}) {
        std::vector<std::string> words = {OMBRELCTL_PATH, "watch", path};
        words.insert(words.end(), options.begin(), options.end());
        auto process = std::make_unique<ChildProcess>(words);
        EXPECT_THAT(process->readErrorLine(), HasSubstr("Ctrl+C"));
        return process;
    }

    TempTree tree;
};

TEST_F(WatchCommand, TellsEachChangeAsItComesUntilInterrupted) {
    const auto process = watching(tree.path());
    tree.file("one");
    EXPECT_EQ(process->readOutputLine(), "contentsChanged");
    ASSERT_EQ(::unlink(tree.path("one").c_str()), 0);
    EXPECT_EQ(process->readOutputLine(), "contentsChanged");
    process->signal(SIGINT);
    const auto result = process->finish();
    EXPECT_EQ(result.status, 130);
    EXPECT_EQ(result.output, "");
}

TEST_F(WatchCommand, EndsWithASentenceWhenTheFolderGoes) {
    const auto path = tree.path("caf\xE9");
    const auto process = watching(path, {"--json"});
    tree.file("caf\xE9/one");
    EXPECT_THAT(process->readOutputLine(),
                AllOf(HasSubstr(R"({"event":"contentsChanged","path":)"), HasSubstr(R"("pathBytes":)")));
    ASSERT_EQ(::rename(path.c_str(), tree.path("moved").c_str()), 0);
    EXPECT_THAT(process->readOutputLine(), HasSubstr(R"({"event":"directoryInvalidated","path":)"));
    const auto result = process->finish();
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, HasSubstr(": The folder was moved, renamed or deleted"));
}

TEST_F(WatchCommand, SaysWhyAFolderCannotBeWatched) {
    tree.file("file");
    for (const auto& [name, reason] : {std::pair("none", "does not exist"), {"file", "not a folder"}}) {
        const auto result = ChildProcess({OMBRELCTL_PATH, "watch", tree.path(name)}).finish();
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.output, "");
        EXPECT_THAT(result.errors, AllOf(HasSubstr(tree.path(name) + ": "), HasSubstr(reason)));
    }
}

TEST_F(WatchCommand, IsInterruptedAlsoWhereTheFolderHangs) {
    const auto mirror = MirrorMount::of(tree.path(), {"hanging"});
    if (!mirror) GTEST_SKIP() << mirror.error();
    ChildProcess process({OMBRELCTL_PATH, "watch", (*mirror)->path()});
    process.signal(SIGINT);
    // The kernel lets no process end while the file system has a request of its.
    (*mirror)->answer();
    const auto result = process.finish();
    EXPECT_EQ(result.status, 130);
    EXPECT_EQ(result.output, "");
}

} // namespace
} // namespace ombrel
