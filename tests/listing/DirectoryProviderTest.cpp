#include "listing/DirectoryProvider.h"

#include "base/Worker.h"
#include "support/FailingCalls.h"
#include "support/TempTree.h"
#include "support/Unprivileged.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

namespace ombrel {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using testing::TempTree;
using ::testing::UnorderedElementsAreArray;

std::vector<std::string> namesOf(const FileItemList& items) {
    std::vector<std::string> names;
    for (const auto item : items)
        names.emplace_back(item.name());
    return names;
}

std::vector<std::string> listed(DirectoryRequest request) {
    const auto snapshot = DirectoryProvider().load(std::move(request));
    return snapshot ? namesOf(snapshot->items()) : std::vector<std::string>{"failed"};
}

DirectoryError failureOf(const FileURL& url) {
    return DirectoryProvider().load({.url = url}).error().error();
}

struct Shape {
    std::size_t items;
    bool isComplete;
    friend bool operator==(const Shape&, const Shape&) = default;
};
void PrintTo(const Shape& shape, std::ostream* out) {
    *out << shape.items << (shape.isComplete ? " complete" : " partial");
}

std::vector<Shape> shapes(const FileURL& url, std::int64_t firstBatch) {
    std::vector<Shape> seen;
    const auto ending =
        DirectoryProvider().read({.url = url, .firstBatchSize = firstBatch}, [&](auto snapshot) {
            EXPECT_EQ(snapshot.items().size(), snapshot.count());
            seen.push_back({snapshot.count(), snapshot.isComplete});
        });
    EXPECT_TRUE(ending);
    return seen;
}

class Batches : public ::testing::Test {
protected:
    void fill(int count) {
        for (int i = 0; i < count; ++i)
            tree.file(std::to_string(i));
    }
    TempTree tree;
};

TEST_F(Batches, DoubleFromTheFirst) {
    fill(20);
    EXPECT_THAT(shapes(tree.url(), 2),
                ElementsAre(Shape{2, false}, Shape{6, false}, Shape{14, false}, Shape{20, true}));
}

TEST_F(Batches, EndInACompleteSnapshotEvenWhenNothingIsLeft) {
    fill(4);
    EXPECT_THAT(shapes(tree.url(), 4), ElementsAre(Shape{4, false}, Shape{4, true}));
    EXPECT_THAT(shapes(TempTree().url(), 4), ElementsAre(Shape{0, true}));
}

TEST_F(Batches, OfLessThanOneCountAsOne) {
    fill(2);
    for (const std::int64_t size : {0, -5})
        EXPECT_THAT(shapes(tree.url(), size), ElementsAre(Shape{1, false}, Shape{2, true}));
}

TEST_F(Batches, StopGrowingAtTheLargest) {
    fill(40'000);
    EXPECT_THAT(shapes(tree.url(), 10'000),
                ElementsAre(Shape{10'000, false}, Shape{26'384, false}, Shape{40'000, true}));
    EXPECT_THAT(shapes(tree.url(), (std::int64_t{1} << 61) - 1), ElementsAre(Shape{40'000, true}));
}

// ---- What is listed, and in which order

std::vector<std::string> hostileNames() {
    std::vector<std::string> names = {"a\nb",
                                      "\x01\x1f\x7f",
                                      "\u202Egnp.exe",
                                      "\xFF\xFE\x80",
                                      "caf\xE9",
                                      "café",
                                      "CAFÉ",
                                      "cafe\u0301",
                                      " leading",
                                      "trailing ",
                                      "-rf",
                                      "*?[",
                                      "\\",
                                      "file2",
                                      "file10",
                                      "File2",
                                      "file02",
                                      "写真",
                                      "ß",
                                      "ss",
                                      ".hidden",
                                      "...",
                                      "a",
                                      "A",
                                      "10000000000000000000000",
                                      "😀.txt",
                                      "\xED\xA0\x80",
                                      "x.app"};
    names.push_back(std::string(255, 'n'));
    names.push_back(std::string(254, 'n') + "\xC3");
    return names;
}

TEST(Listing, GivesEveryNameInOneTotalOrderWhateverTheOrderOfCreation) {
    auto names = hostileNames();
    std::vector<std::vector<std::string>> orders;
    std::mt19937 random(7);
    for (int round = 0; round < 3; ++round) {
        const TempTree tree;
        std::ranges::shuffle(names, random);
        for (const auto& name : names)
            tree.file(name);
        orders.push_back(listed({.url = tree.url(), .firstBatchSize = 3}));
    }
    EXPECT_THAT(orders[0], UnorderedElementsAreArray(names));
    EXPECT_EQ(orders[1], orders[0]);
    EXPECT_EQ(orders[2], orders[0]);
}

TEST(Listing, MergesBatchesIntoTheOrderThatTheComparisonAlonePrescribes) {
    const TempTree tree;
    std::mt19937 random(11);
    constexpr const char* stems[] = {"IMG_00000000000000000", "a", "Ä", "file", "FILE", "\xFF"};
    constexpr const char* endings[] = {".txt", ".jpg", ".unknown", "", ".png"};
    for (int i = 0; i < 600; ++i) {
        const auto name = stems[random() % 6] + std::to_string(random() % 400) + endings[random() % 5];
        if (tree.exists(name)) continue;
        switch (random() % 8) {
        case 0: tree.folder(name); break;
        case 1: tree.symlink(name, random() % 2 ? "." : "nowhere"); break;
        default: tree.fileOfSize(name, random() % 4); break;
        }
        const struct timespec times[2] = {
            {}, {static_cast<time_t>(random() % 3) - 1, static_cast<long>(random() % 2)}};
        ::utimensat(AT_FDCWD, tree.path(name).c_str(), times, AT_SYMLINK_NOFOLLOW);
    }
    for (const auto key : FileSort::allKeys) {
        for (const int flags : {0, 1, 2, 3}) {
            const FileSort sort{key, (flags & 1) != 0, (flags & 2) != 0};
            const auto snapshot =
                DirectoryProvider().load({.url = tree.url(), .sort = sort, .firstBatchSize = 7});
            ASSERT_TRUE(snapshot);
            const auto& items = snapshot->items();
            std::vector<std::size_t> rows(items.size());
            for (std::size_t row = 0; row < rows.size(); ++row)
                rows[row] = row;
            std::ranges::shuffle(rows, random);
            std::ranges::sort(rows,
                              [&](auto a, auto b) { return sort.areInIncreasingOrder(items[a], items[b]); });
            EXPECT_TRUE(std::ranges::is_sorted(rows)) << FileSort::rawValue(key) << " " << flags;
            EXPECT_EQ(namesOf(sort.sorted(items)), namesOf(items)) << FileSort::rawValue(key) << " " << flags;
        }
    }
}

TEST(Listing, OfFoldersAloneLeavesOutPackagesFilesAndBrokenLinks) {
    const TempTree tree;
    tree.folder("folder");
    tree.folder("x.app");
    tree.file("file");
    tree.fifo("fifo");
    tree.symlink("to folder", "folder");
    tree.symlink("to file", "file");
    tree.symlink("broken", "nowhere");
    tree.symlink("loop", "loop");
    EXPECT_THAT(listed({.url = tree.url(), .directoriesOnly = true}), ElementsAre("folder", "to folder"));
    EXPECT_THAT(listed({.url = tree.url(), .directoriesOnly = true, .firstBatchSize = 1}),
                ElementsAre("folder", "to folder"));
}

TEST(Listing, HidesWhatTheFoldersHiddenFileNames) {
    const TempTree tree;
    tree.file(".hidden", "secret\r\nnot/this\n\nalso");
    for (const auto* name : {"secret", "also", "this", ".dot"})
        tree.file(name);
    const auto snapshot = DirectoryProvider().load({.url = tree.url()});
    std::vector<std::string> hidden;
    for (const auto item : snapshot->items())
        if (item.isHidden()) hidden.emplace_back(item.name());
    EXPECT_THAT(hidden, ElementsAre(".dot", ".hidden", "also", "secret"));
}

TEST(Listing, WorksWhereThePathIsLongerThanASystemCallTakes) {
    const TempTree tree;
    const std::string component(200, 'd');
    FileURL deep = tree.url();
    int folder = ::open(tree.path().c_str(), O_RDONLY | O_DIRECTORY);
    for (int depth = 0; depth < 40; ++depth) {
        ASSERT_EQ(::mkdirat(folder, component.c_str(), 0755), 0);
        const int next = ::openat(folder, component.c_str(), O_RDONLY | O_DIRECTORY);
        ::close(folder);
        folder = next;
        deep = deep.appending(component);
    }
    ::close(::openat(folder, "leaf.txt", O_CREAT | O_WRONLY, 0644));
    ::close(folder);
    ASSERT_GT(deep.path().size(), 8000U);
    EXPECT_THAT(listed({.url = deep}), ElementsAre("leaf.txt"));
    EXPECT_EQ(FileItem::make("leaf.txt", deep, 1).kind(), FileKind::Case::file);
}

// ---- What fails

TEST(ListingFails, WithATypedReason) {
    const TempTree tree;
    EXPECT_EQ(failureOf(tree.url("missing")), DirectoryError::Case::notFound);
    EXPECT_EQ(failureOf(tree.file("file")), DirectoryError::Case::notADirectory);
    EXPECT_EQ(failureOf(tree.symlink("loop", "loop")), DirectoryError::io(ELOOP));
    EXPECT_EQ(failureOf(tree.fifo("fifo")), DirectoryError::Case::notADirectory);
    const auto locked = tree.folder("locked");
    ::chmod(tree.path().c_str(), 0755);
    ::chmod(locked.path().c_str(), 0);
    EXPECT_TRUE(
        testing::asNobody([&] { return failureOf(locked) == DirectoryError::Case::permissionDenied; }));
    ::chmod(locked.path().c_str(), 0755);
}

TEST(ListingFails, PartWayAfterTheSnapshotsAlreadySent) {
    const TempTree tree;
    for (int i = 0; i < 10; ++i)
        tree.file(std::to_string(i));
    const testing::FailingCalls failing(SystemCall::Kind::readDirectory, EIO, 6);
    std::vector<std::size_t> counts;
    const auto ending = DirectoryProvider().read({.url = tree.url(), .firstBatchSize = 2},
                                                 [&](auto snapshot) { counts.push_back(snapshot.count()); });
    ASSERT_FALSE(ending);
    EXPECT_EQ(ending.error().error(), DirectoryError::Case::volumeUnavailable);
    EXPECT_THAT(counts, ElementsAre(2));
}

TEST(ListingKeeps, EntriesThatCannotBeExamined) {
    const TempTree tree;
    for (const auto* name : {"a", "b", ".c"})
        tree.file(name);
    const testing::FailingCalls failing(SystemCall::Kind::status, ENOENT);
    const auto snapshot = DirectoryProvider().load({.url = tree.url()});
    ASSERT_TRUE(snapshot);
    EXPECT_EQ(snapshot->unreadableCount, 3);
    EXPECT_THAT(namesOf(snapshot->items()), ElementsAre(".c", "a", "b"));
    const auto item = snapshot->items()[0];
    EXPECT_EQ(item.kind(), FileKind::Case::other);
    EXPECT_EQ(item.size().errorNumber(), ENOENT);
    EXPECT_TRUE(item.typeIdentifier().isUnknown());
    EXPECT_TRUE(item.isHidden());
    EXPECT_EQ(item.readError(), POSIXFailure{ENOENT});
    EXPECT_FALSE(item.identity());
}

TEST(ListingNeverOpens, AnythingButTheFolder) {
    const TempTree tree;
    tree.fifo("fifo");
    tree.file("file");
    tree.symlink("link", "fifo");
    ASSERT_EQ(::mknod(tree.path("socket").c_str(), S_IFSOCK | 0644, 0), 0);
    const testing::FailingCalls counting(SystemCall::Kind::open, 0, 1, 0);
    EXPECT_THAT(listed({.url = tree.url()}), ElementsAre("fifo", "file", "link", "socket"));
    EXPECT_LE(counting.seen(), 4) << "the folder, once more by each thread, and its .hidden file";
}

// ---- What ends it

std::size_t openDescriptors() {
    std::size_t count = 0;
    for (int fd = 0; fd < 256; ++fd)
        if (::fcntl(fd, F_GETFD) >= 0) ++count;
    return count;
}

TEST(ListingEnds, WhenItsStreamIsAbandoned) {
    const TempTree tree;
    for (int i = 0; i < 3000; ++i)
        tree.file(std::to_string(i));
    const auto descriptors = openDescriptors();
    for (int round = 0; round < 20; ++round) {
        auto stream = DirectoryProvider().snapshots({.url = tree.url(), .firstBatchSize = 1});
        const auto first = stream.next();
        ASSERT_TRUE(first && *first);
        EXPECT_EQ((*first)->count(), 1U);
    }
    EXPECT_TRUE(Worker::waitUntilNoneRuns(5s));
    EXPECT_EQ(openDescriptors(), descriptors);
}

TEST(ListingEnds, AsCancelledWhenAskedToStop) {
    const TempTree tree;
    tree.file("a");
    std::stop_source source;
    source.request_stop();
    const auto snapshot = DirectoryProvider().load({.url = tree.url()}, source.get_token());
    ASSERT_FALSE(snapshot);
    EXPECT_TRUE(snapshot.error().wasCancelled());
}

TEST(ListingEnds, WhenTheFolderIsRemovedWhileItIsRead) {
    const TempTree tree;
    const auto folder = tree.folder("folder");
    for (int i = 0; i < 100; ++i)
        tree.file("folder/" + std::to_string(i));
    auto stream = DirectoryProvider().snapshots({.url = folder, .firstBatchSize = 1});
    std::error_code ignored;
    std::filesystem::remove_all(folder.path(), ignored);
    for (auto next = stream.next(); next && *next; next = stream.next())
        EXPECT_LE((*next)->unreadableCount, static_cast<std::int64_t>((*next)->count()));
    EXPECT_EQ(failureOf(folder), DirectoryError::Case::notFound);
}

} // namespace
} // namespace ombrel
