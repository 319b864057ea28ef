#include "listing/FileItem.h"
#include "support/ChildProcess.h"
#include "support/MirrorMount.h"
#include "support/TempTree.h"

#include <QByteArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <csignal>
#include <filesystem>
#include <ranges>
#include <set>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

ChildResult run(std::vector<std::string> words, const ChildProcess::Setting& setting = {}) {
    words.insert(words.begin(), {OMBRELCTL_PATH, "find"});
    return ChildProcess(words, setting).finish();
}

/// Lines, or whatever else ends in `end`.
std::multiset<std::string> linesOf(const std::string& output, char end = '\n') {
    std::multiset<std::string> lines;
    for (std::size_t at = 0; at < output.size();) {
        const auto next = output.find(end, at);
        lines.insert(output.substr(at, next - at));
        at = next + 1;
    }
    return lines;
}

bool isInsidePackage(const std::filesystem::path& path) {
    const auto parent = path.parent_path();
    return std::ranges::any_of(parent,
                               [](const auto& name) { return FileItem::isPackageName(name.string()); });
}

/// What find(1) finds, without what is inside of folders named like packages.
std::multiset<std::string> expected(const std::string& folder, const std::string& text, bool all) {
    std::vector<std::string> words = {"/usr/bin/find", folder, "-mindepth", "1"};
    if (!all) words.insert(words.end(), {"-name", ".*", "-prune", "-o"});
    words.insert(words.end(), {"-iname", "*" + text + "*", "-print0"});
    auto paths = linesOf(ChildProcess(words).finish().output, '\0');
    std::erase_if(paths, isInsidePackage);
    return paths;
}

TEST(FindCommand, FindsTheSetThatFindFinds) {
    const TempTree tree;
    for (const char* folder : {"Q", "Q/.q", "Q/.q/q", "q.app"})
        tree.folder(folder);
    for (const char* file :
         {"q.txt", "Q/line\nend q", "Q/\xFFq", "Q/none", "Q/.hidden q", "Q/.q/q/Q1", "q.app/q"})
        tree.file(file);
    tree.symlink("Q/q up", "..");
    tree.symlink("q itself", "q itself");
    tree.fifo("Q/q pipe");
    for (const std::string& folder :
         {tree.path(), std::string("/usr/include"), std::string("/usr/share/doc")})
        for (const std::string text : {"q", "README", "-1", "0."})
            for (const bool all : {true, false}) {
                std::vector<std::string> words = {"-0", "--", folder, text};
                if (all) words.insert(words.begin(), "--all");
                const auto result = run(words);
                EXPECT_EQ(result.status, 0) << result.errors;
                EXPECT_EQ(linesOf(result.output, '\0'), expected(folder, text, all))
                    << text << " in " << folder;
            }
}

TEST(FindCommand, TellsInJSONWhatAListingTells) {
    const TempTree tree;
    tree.folder("sub");
    tree.file("sub/r\xE9sum\xE9", "12345");
    const auto result = run({"--json", "sub", "SUM"}, {.workingFolder = tree.path()});
    const auto object = QJsonDocument::fromJson(QByteArray::fromStdString(result.output)).object();
    EXPECT_EQ(QByteArray::fromBase64(object.value(QStringLiteral("pathBytes")).toString().toLatin1()),
              QByteArray::fromStdString(tree.path("sub/r\xE9sum\xE9")));
    EXPECT_EQ(object.value(QStringLiteral("size")).toInteger(), 5);
    EXPECT_EQ(object.value(QStringLiteral("kind")), QStringLiteral("file"));
}

TEST(FindCommand, IgnoresCaseAndAccents) {
    const TempTree tree;
    tree.file("Résumé.pdf");
    EXPECT_EQ(run({tree.path(), "rESUME"}).output, tree.path("Résumé.pdf\n"));
    EXPECT_EQ(run({tree.path(), "ÉSUMÉ"}).output, tree.path("Résumé.pdf\n"));
}

TEST(FindCommand, SaysThatItEndedAtItsLimit) {
    const TempTree tree;
    for (int number = 0; number < 20'000; ++number)
        tree.file("match " + std::to_string(number));
    const auto result = run({tree.path(), "MATCH"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(linesOf(result.output).size(), 10'000U);
    EXPECT_EQ(result.errors, "The search ended at 10,000 matches. There may be more.\n");

    // Far more than a pipe holds, and nobody reads on.
    ChildProcess unread({OMBRELCTL_PATH, "find", tree.path(), "match"});
    EXPECT_THAT(unread.readOutputLine(), HasSubstr("/match "));
    unread.signal(SIGINT);
    EXPECT_EQ(unread.finishUnread(), 130);
}

TEST(FindCommand, PrintsMatchesWhileItSearches) {
    const TempTree tree, slow;
    tree.file("first match");
    slow.file("second match");
    const auto mirror = MirrorMount::of(slow.path(), {}, tree.path("mirror"));
    if (!mirror) GTEST_SKIP() << mirror.error();
    (*mirror)->hang();
    ChildProcess search({OMBRELCTL_PATH, "find", tree.path(), "match"});
    EXPECT_EQ(search.readOutputLine(), tree.path("first match"));
    (*mirror)->answer();
    EXPECT_EQ(search.readOutputLine(), tree.path("mirror/second match"));
    EXPECT_EQ(search.finish().status, 0);
}

TEST(FindCommand, FailsWhereThereIsNoFolderAndPassesOverWhatIsClosed) {
    const TempTree tree;
    tree.file("file");
    for (const char* folder : {"open", "closed"}) {
        tree.folder(folder);
        tree.file(std::string(folder) + "/match");
    }
    ::chmod(tree.path().c_str(), 0755);
    ::chmod(tree.path("closed").c_str(), 0700);
    const ChildProcess::Setting nobody{.asNobody = true};
    const auto open = run({tree.path(), "match"}, nobody);
    EXPECT_EQ(open.status, 0) << open.errors;
    EXPECT_EQ(open.output, tree.path("open/match\n"));
    EXPECT_EQ(open.errors, "");
    const auto closed = run({tree.path("closed"), "match"}, nobody);
    EXPECT_EQ(closed.status, 1);
    EXPECT_THAT(closed.errors, HasSubstr(tree.path("closed: ")));
    for (const char* name : {"file", "missing"}) {
        const auto result = run({tree.path(name), "x"});
        EXPECT_EQ(result.status, 1);
        EXPECT_THAT(result.errors, AllOf(HasSubstr(tree.path(name) + ": This "), Not(HasSubstr("error."))));
        EXPECT_THAT(result.output, IsEmpty());
    }
    EXPECT_EQ(run({tree.path()}).status, 2);
    EXPECT_EQ(run({"", "x"}).status, 2);
}

} // namespace
} // namespace ombrel
