#include "operations/FileOperationService.h"
#include "support/FailingCalls.h"
#include "support/StrikeAt.h"
#include "support/TempTree.h"
#include "support/TestMount.h"
#include "support/TransferWorld.h"
#include "support/TreeSnapshot.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// One of everything that a copy must carry.
void fill(const TempTree& tree, const std::string& top) {
    tree.folder(top);
    tree.folder(top + "/sub");
    tree.folder(top + "/sub/empty");
    tree.file(top + "/empty");
    tree.file(top + "/note.txt", "note");
    tree.fileOfSize(top + "/sub/big", 3'000'001);
    tree.file(top + "/sub/\xFF\n\x01 " + std::string(200, 'n'), "odd");
    tree.symlink(top + "/link", "sub/big");
    tree.symlink(top + "/broken", std::string(3000, 'x'));
    tree.fifo(top + "/fifo");
    tree.file(top + "/run.sh", "#!/bin/sh\n");
    ::chmod(tree.path(top + "/run.sh").c_str(), 0751);
    ::chown(tree.path(top + "/run.sh").c_str(), 1234, 4321);
    ::chmod(tree.path(top + "/note.txt").c_str(), 04755);
    ::setxattr(tree.path(top + "/note.txt").c_str(), "user.origin", "here", 4, 0);
    const int sparse = ::open(tree.path(top + "/sparse").c_str(), O_CREAT | O_WRONLY, 0640);
    (void)!::pwrite(sparse, "begin", 5, 0);
    (void)!::pwrite(sparse, "middle", 6, 1 << 20);
    ::ftruncate(sparse, 3 << 20);
    ::close(sparse);
    ::setxattr(tree.path(top + "/sub").c_str(), "user.color", "red", 3, 0);
    const struct timespec old[2] = {{1000, 1}, {1'234'567'890, 123'456'789}};
    for (const char* name : {"/link", "/note.txt", "/sub/empty", "/sub", ""})
        ::utimensat(AT_FDCWD, tree.path(top + name).c_str(), old, AT_SYMLINK_NOFOLLOW);
    ::chmod(tree.path(top + "/sub").c_str(), 0555);
}

TEST(TransferCopy, CarriesEverything) {
    const TempTree tree;
    fill(tree, "source");
    const auto target = tree.folder("target");
    TransferWorld world;
    const auto report = world.copy({tree.url("source")}, target);
    EXPECT_THAT(report.items, ElementsAre(ItemResult{tree.url("source"),
                                                     ItemOutcome::completed(tree.url("target/source"))}));
    EXPECT_THAT(differences(snapshotOf(tree.url("source")), snapshotOf(tree.url("target/source"))),
                IsEmpty());
    EXPECT_THAT(tree.names("target"), ElementsAre("source"));
    EXPECT_THAT(world.answers.errors, IsEmpty());
}

TEST(TransferCopy, CarriesEverythingOfFoldersThatTwoThreadsCopy) {
    const TempTree tree;
    tree.folder("source");
    fill(tree, "source/deep");
    for (int i = 0; i < 300; ++i) {
        const auto name = "source/deep/file" + std::to_string(i);
        tree.fileOfSize(name, i * 331); // the last ones are too large for the short way
        const struct timespec times[2] = {{i, 7}, {1'000'000'000 + i, i}};
        ::chmod(tree.path(name).c_str(), i % 2 == 0 ? 0640 : 0444);
        if (i % 3 == 0) ::chown(tree.path(name).c_str(), 1000 + i, 2000);
        if (i % 5 == 0) ::setxattr(tree.path(name).c_str(), "user.number", &i, sizeof i, 0);
        ::utimensat(AT_FDCWD, tree.path(name).c_str(), times, 0);
    }
    const auto target = tree.folder("target");
    TransferWorld world;
    const auto report = world.copy({tree.url("source")}, target);
    EXPECT_EQ(report.overall(), OperationReport::Overall::succeeded);
    EXPECT_THAT(differences(snapshotOf(tree.url("source")), snapshotOf(tree.url("target/source"))),
                IsEmpty());
    EXPECT_THAT(tree.names("target"), ElementsAre("source"));
    const auto& last = world.answers.reports.back();
    EXPECT_EQ(last.completedBytes, last.totalBytes);
}

// ---- Large files, which are compared while they are copied

constexpr std::size_t large = 170'000'001;

class TransferOfALargeFile : public ::testing::Test {
protected:
    void SetUp() override {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
        GTEST_SKIP() << "files as large as this take minutes under a sanitizer";
#endif
        tree.folder("source");
        tree.fileOfSize("source/large", large);
        tree.file("source/small", "small");
    }
    OperationReport copy() { return world.copy({tree.url("source")}, target); }
    std::string contents(const std::string& name) { return tree.contents(name); }

    const TempTree tree;
    const FileURL target = tree.folder("target");
    TransferWorld world;
};

TEST_F(TransferOfALargeFile, IsWhole) {
    EXPECT_EQ(copy().overall(), OperationReport::Overall::succeeded);
    EXPECT_EQ(contents("target/source/large"), contents("source/large"));
    EXPECT_EQ(world.answers.reports.back().completedBytes, world.answers.reports.back().totalBytes);
}

TEST_F(TransferOfALargeFile, BeginsAnewAfterAnErrorInItsMiddle) {
    world.answers.errorAnswers = {{ErrorChoice::retry}};
    const FailingCalls failing(SystemCall::Kind::write, EFBIG, 600, 2);
    EXPECT_EQ(copy().overall(), OperationReport::Overall::succeeded);
    EXPECT_THAT(world.answers.errors, ::testing::SizeIs(1));
    EXPECT_EQ(contents("target/source/large"), contents("source/large"));
}

TEST_F(TransferOfALargeFile, GoesOnByReadingAndWritingWhereTheKernelStopsCopying) {
    const FailingCalls failing(SystemCall::Kind::write, EINVAL, 600, 1);
    EXPECT_EQ(copy().overall(), OperationReport::Overall::succeeded);
    EXPECT_THAT(world.answers.errors, IsEmpty());
    EXPECT_EQ(contents("target/source/large"), contents("source/large"));
}

TEST_F(TransferOfALargeFile, LeavesTheOthersWellWhenItIsSkipped) {
    const FailingCalls failing(SystemCall::Kind::write, EFBIG, 600, 2);
    (void)copy();
    ASSERT_THAT(world.answers.errors, ::testing::SizeIs(1));
    EXPECT_EQ(world.answers.errors.front().error, FileOperationError::posix(EFBIG));
    EXPECT_THAT(tree.names("target/source"), ElementsAre("small"));
}

TEST_F(TransferOfALargeFile, IsNotKeptWhenItsCopyWasSpoiledMeanwhile) {
    // Where the copy stands, in the part that has long been written.
    const StrikeAt strike(SystemCall::Kind::write, 200, [&] {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(tree.path("target"))) {
            if (entry.path().filename() != "large") continue;
            const int fd = ::open(entry.path().c_str(), O_WRONLY | O_CLOEXEC);
            EXPECT_EQ(::pwrite(fd, "spoiled", 7, 45'000'000), 7);
            ::close(fd);
        }
    });
    const auto report = copy();
    EXPECT_TRUE(strike.hasStruck());
    EXPECT_NE(report.overall(), OperationReport::Overall::succeeded);
    EXPECT_FALSE(tree.exists("target/source/large"));
    EXPECT_THAT(stagingNames(tree.names("target")), IsEmpty());
    EXPECT_EQ(contents("source/large").size(), large);
}

} // namespace
} // namespace ombrel
