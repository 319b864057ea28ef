#include "listing/SearchProvider.h"

#include "base/Worker.h"
#include "listing/POSIX.h"
#include "support/TempTree.h"
#include "support/Unprivileged.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace ombrel {
namespace {

using ::testing::ElementsAre;
using testing::TempTree;
using ::testing::UnorderedElementsAre;

/// Everything that a search finds, as paths below the folder, in the order of finding.
struct Found {
    std::vector<std::string> paths;
    std::vector<std::size_t> batches;
    SearchProvider::Ending ending;
};

Found search(const SearchRequest& request, std::stop_token stop = {}) {
    Found found;
    found.ending = SearchProvider::walk(
        request,
        [&](const FileItemList& batch) {
            found.batches.push_back(batch.size());
            for (const auto item : batch)
                found.paths.push_back(item.url().path().substr(request.folder.path().size() + 1));
        },
        std::move(stop));
    return found;
}

SearchRequest requestFor(const FileURL& folder, std::string text, bool all = false) {
    return {.folder = folder,
            .text = std::move(text),
            .generation = 3,
            .includesHidden = all,
            .includesProtected = all};
}

std::set<std::string> setOf(const std::vector<std::string>& paths) {
    return {paths.begin(), paths.end()};
}

// ---- What is found

TEST(Search, FindsNamesBreadthFirstAndNeverPaths) {
    const TempTree tree;
    tree.folder("src");
    tree.folder("src/deep");
    tree.file("src/deep/my source");
    tree.file("src/main.c");
    tree.file("SRC.txt");
    const auto found = search(requestFor(tree.url(), "src"));
    EXPECT_TRUE(found.ending.has_value());
    EXPECT_THAT(found.paths, UnorderedElementsAre("src", "SRC.txt"));
    EXPECT_THAT(search(requestFor(tree.url(), "s")).paths.back(), "src/deep/my source");
    EXPECT_THAT(search(requestFor(tree.url(), "nowhere")).batches, ElementsAre());
}

TEST(Search, MakesItemsAsAListingDoes) {
    const TempTree tree;
    tree.folder("sub");
    tree.file("sub/a.txt", "12345");
    tree.symlink("sub/a link", "a.txt");
    std::vector<FileItem> items;
    (void)SearchProvider::walk(requestFor(tree.url(), "a"), [&](const FileItemList& batch) {
        for (std::size_t row = 0; row < batch.size(); ++row)
            items.push_back(batch.item(row));
    });
    ASSERT_EQ(items.size(), 2U);
    for (const FileItem& item : items)
        EXPECT_EQ(item, FileItem::make(item.name(), tree.url("sub").marked(FileURL::Mark::directory), 3));
}

TEST(Search, LeavesHiddenAndProtectedItemsAloneUnlessAskedFor) {
    const TempTree tree;
    for (const char* folder : {".dotted", "listed", "System Volume Information", "open"}) {
        tree.folder(folder);
        tree.file(std::string(folder) + "/match");
    }
    tree.file("open/.match");
    tree.file("match hidden");
    tree.file(".hidden", "listed\nmatch hidden\n");
    EXPECT_THAT(search(requestFor(tree.url(), "match")).paths, ElementsAre("open/match"));
    auto hiddenOnly = requestFor(tree.url(), "match");
    hiddenOnly.includesHidden = true;
    EXPECT_THAT(search(hiddenOnly).paths, UnorderedElementsAre(".dotted/match", "listed/match", "open/match",
                                                               "open/.match", "match hidden"));
    EXPECT_EQ(search(requestFor(tree.url(), "match", true)).paths.size(), 6U);
}

TEST(Search, EntersNeitherLinksNorPackages) {
    const TempTree tree;
    tree.folder("folder");
    tree.file("folder/match");
    tree.folder("Match.app");
    tree.file("Match.app/match inside");
    tree.symlink("folder/match up", "..");
    tree.symlink("match loop", "match loop");
    tree.fifo("match pipe");
    EXPECT_THAT(
        search(requestFor(tree.url(), "match")).paths,
        UnorderedElementsAre("folder/match", "Match.app", "folder/match up", "match loop", "match pipe"));
}

TEST(Search, IsNotLedAwayByAFolderSwappedForALink) {
    const TempTree tree, outside;
    outside.file("match outside");
    tree.file("match first");
    tree.folder("sub");
    std::vector<std::string> names;
    (void)SearchProvider::walk(requestFor(tree.url(), "match"), [&](const FileItemList& batch) {
        for (const auto item : batch)
            names.emplace_back(item.name());
        std::filesystem::remove(tree.path("sub"));
        std::filesystem::create_symlink(outside.path(), tree.path("sub"));
    });
    EXPECT_THAT(names, ElementsAre("match first"));
}

TEST(Search, ReachesFoldersBeyondTheLongestPathAndManyBranches) {
    const TempTree tree;
    const std::string step(200, 'd');
    std::set<std::string> expected;
    for (int branch = 0; branch < 30; ++branch) {
        std::string path = std::to_string(branch);
        tree.folder(path);
        int folder = ::open(tree.path(path).c_str(), O_DIRECTORY | O_CLOEXEC);
        for (int depth = 0; depth < 25; ++depth) {
            ASSERT_EQ(::mkdirat(folder, step.c_str(), 0755), 0);
            const int next = ::openat(folder, step.c_str(), O_DIRECTORY | O_CLOEXEC);
            ::close(std::exchange(folder, next));
            path += '/' + step;
        }
        ::close(::openat(folder, "match", O_CREAT | O_WRONLY | O_CLOEXEC, 0644));
        ::close(folder);
        expected.insert(path + "/match");
    }
    EXPECT_EQ(setOf(search(requestFor(tree.url(), "match")).paths), expected);
}

TEST(Search, GivesTheSetThatFindGives) {
    for (const std::string folder : {"/usr/share/doc", "/usr/include"})
        for (const std::string text : {"changelog", "LIB", "q", "0.", "stdio"})
            for (const bool all : {true, false}) {
                const std::string command = "LC_ALL=C find " + folder + " -mindepth 1 " +
                                            (all ? "" : "-name '.*' -prune -o ") + "-iname '*" + text +
                                            "*' -printf '%P\\n'";
                std::set<std::string> expected;
                FILE* pipe = ::popen(command.c_str(), "r");
                ASSERT_NE(pipe, nullptr);
                for (char line[8192]; std::fgets(line, sizeof line, pipe);)
                    expected.insert(std::string(line, std::string_view(line).size() - 1));
                ASSERT_EQ(::pclose(pipe), 0);
                ASSERT_LT(expected.size(), SearchProvider::resultLimit);
                const auto insidePackage = [](const std::string& path) {
                    for (auto slash = path.find('/'); slash != std::string::npos;
                         slash = path.find('/', slash + 1))
                        if (FileItem::isPackageName(
                                std::filesystem::path(path.substr(0, slash)).filename().string()))
                            return true;
                    return false;
                };
                std::erase_if(expected, insidePackage);
                const auto found = search(requestFor(*FileURL::fromPath(folder), text, all)).paths;
                EXPECT_EQ(found.size(), setOf(found).size()) << "something was found twice";
                EXPECT_EQ(setOf(found), expected) << text << " in " << folder;
            }
}

// ---- How it arrives

TEST(Search, DeliversTheFirstMatchAloneThenFullBatches) {
    const TempTree tree;
    for (int number = 0; number < 1001; ++number)
        tree.file("match " + std::to_string(number));
    const auto found = search(requestFor(tree.url(), "match"));
    EXPECT_THAT(found.batches, ElementsAre(1U, 200U, 200U, 200U, 200U, 200U));
}

TEST(Search, StopsAtItsLimit) {
    const TempTree tree;
    for (const char* folder : {"a", "b"}) {
        tree.folder(folder);
        for (int number = 0; number < 10000; ++number)
            tree.file(std::string(folder) + "/match " + std::to_string(number));
    }
    const auto found = search(requestFor(tree.url(), "match"));
    EXPECT_TRUE(found.ending.has_value());
    EXPECT_EQ(found.paths.size(), 10000U);
    EXPECT_EQ(setOf(found.paths).size(), 10000U);
}

/// Makes each look at an entry, or each opening of a folder, wait.
class Slow final : public SystemCall::Interceptor {
public:
    Slow(SystemCall::Kind kind, std::chrono::microseconds wait) : kind_(kind), wait_(wait) {
        SystemCall::intercept(this);
    }
    ~Slow() override { SystemCall::intercept(nullptr); }
    std::optional<SystemCall::Fault> before(SystemCall::Kind kind) override {
        if (kind != kind_) return std::nullopt;
        ++calls;
        std::this_thread::sleep_for(wait_);
        return std::nullopt;
    }
    std::atomic<int> calls = 0;

private:
    const SystemCall::Kind kind_;
    const std::chrono::microseconds wait_;
};

TEST(Search, DeliversInTimeInsideOneSlowFolder) {
    const TempTree tree;
    for (int number = 0; number < 90; ++number)
        tree.file("match " + std::to_string(number));
    const Slow slow(SystemCall::Kind::status, std::chrono::milliseconds(5));
    const auto found = search(requestFor(tree.url(), "match"));
    EXPECT_GE(found.batches.size(), 4U);
    EXPECT_EQ(found.batches.front(), 1U);
    EXPECT_EQ(setOf(found.paths).size(), 90U);
}

TEST(Search, FindsTheSameWithScoutsAheadOfIt) {
    const TempTree tree;
    std::set<std::string> expected;
    for (int outer = 0; outer < 20; ++outer) {
        tree.folder(std::to_string(outer));
        for (int inner = 0; inner < 10; ++inner) {
            const std::string folder = std::to_string(outer) + "/" + std::to_string(inner);
            tree.folder(folder);
            tree.file(folder + "/match");
            expected.insert(folder + "/match");
        }
    }
    const Slow slow(SystemCall::Kind::open, std::chrono::microseconds(500));
    EXPECT_EQ(setOf(search(requestFor(tree.url(), "match")).paths), expected);
    EXPECT_GT(slow.calls, 300) << "nobody read ahead although every folder was waited for";
    EXPECT_TRUE(Worker::waitUntilNoneRuns(std::chrono::seconds(10))) << "the scouts end with the walk";
}

// ---- What ends it early

TEST(Search, StopsWithinOneEntryWhenCancelled) {
    const TempTree tree;
    for (int number = 0; number < 500; ++number)
        tree.file("match " + std::to_string(number));
    std::stop_source stop;
    const Slow count(SystemCall::Kind::status, {});
    const auto ending = SearchProvider::walk(
        requestFor(tree.url(), "match"), [&](const FileItemList&) { stop.request_stop(); }, stop.get_token());
    ASSERT_FALSE(ending.has_value());
    EXPECT_TRUE(ending.error().wasCancelled());
    EXPECT_EQ(count.calls, 1);
}

TEST(Search, EndsWhenItsStreamIsDropped) {
    const TempTree tree;
    for (int number = 0; number < 300; ++number)
        tree.file("match " + std::to_string(number));
    const Slow slow(SystemCall::Kind::status, std::chrono::milliseconds(20));
    {
        auto stream = SearchProvider::results(requestFor(tree.url(), "match"));
        const auto first = stream.next();
        ASSERT_TRUE(first.has_value() && first->has_value());
        EXPECT_EQ((**first).size(), 1U);
    }
    EXPECT_TRUE(Worker::waitUntilNoneRuns(std::chrono::seconds(2)));
}

TEST(Search, FailsWhenItsFolderCannotBeRead) {
    const TempTree tree;
    tree.file("file");
    const auto errorAt = [&](const char* name) {
        return search(requestFor(tree.url(name), "x")).ending.error().error();
    };
    EXPECT_EQ(errorAt("missing"), DirectoryError(DirectoryError::Case::notFound));
    EXPECT_EQ(errorAt("file"), DirectoryError(DirectoryError::Case::notADirectory));
}

TEST(Search, PassesOverWhatItMayNotRead) {
    const TempTree tree;
    for (const char* folder : {"closed", "open"}) {
        tree.folder(folder);
        tree.file(std::string(folder) + "/match");
    }
    ::chmod(tree.path().c_str(), 0755);
    ::chmod(tree.path("closed").c_str(), 0700);
    const bool isRight = testing::asNobody([&] {
        const auto found = search(requestFor(tree.url(), "match"));
        return found.ending.has_value() && found.paths == std::vector<std::string>{"open/match"} &&
               search(requestFor(tree.url("closed"), "match")).ending.error().error() ==
                   DirectoryError(DirectoryError::Case::permissionDenied);
    });
    EXPECT_TRUE(isRight);
}

} // namespace
} // namespace ombrel
