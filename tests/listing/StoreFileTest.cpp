#include "listing/StoreFile.h"

#include "support/FaultAt.h"
#include "support/TempTree.h"
#include "support/TestMount.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <thread>

namespace ombrel {
namespace {

using namespace std::chrono_literals;
using ::testing::AnyOf;
using ::testing::ElementsAre;
using testing::FaultAt;
using testing::TempTree;
using testing::TestMount;

int modeOf(const std::string& path) {
    struct stat facts;
    return ::stat(path.c_str(), &facts) == 0 ? static_cast<int>(facts.st_mode & 07777) : -1;
}

TEST(StoreFileReplace, MakesFoldersAndFileForTheUserAlone) {
    const TempTree tree;
    const StoreFile file(tree.url("a/b/store"));
    EXPECT_EQ(file.read().value(), std::nullopt);
    ASSERT_TRUE(file.replace("one"));
    EXPECT_EQ(file.read().value(), "one");
    EXPECT_EQ(modeOf(tree.path("a")), 0700);
    EXPECT_EQ(modeOf(tree.path("a/b/store")), 0600);
    ::chmod(tree.path("a/b/store").c_str(), 0640);
    ASSERT_TRUE(file.replace(std::string(100'000, 'x')));
    EXPECT_EQ(file.read().value(), std::string(100'000, 'x'));
    EXPECT_EQ(modeOf(tree.path("a/b/store")), 0640);
    EXPECT_THAT(tree.names("a/b"), ElementsAre("store"));
}

TEST(StoreFileReplace, KeepsTheLinkAndReplacesWhatItLeadsTo) {
    const TempTree tree;
    tree.folder("dotfiles");
    tree.folder("config");
    tree.symlink("config/store", "../dotfiles/link");
    tree.symlink("dotfiles/link", "real");
    ASSERT_TRUE(StoreFile(tree.url("config/store")).replace("one"));
    EXPECT_EQ(tree.contents("dotfiles/real"), "one");
    EXPECT_TRUE(std::filesystem::is_symlink(tree.path("config/store")));
    tree.symlink("loop", "loop");
    EXPECT_EQ(StoreFile(tree.url("loop")).replace("x").error().number, ELOOP);
}

TEST(StoreFileReplace, LeavesOldContentsOrNewWhicheverCallFails) {
    int calls = 0, told = 0;
    for (int nth = 0; nth <= calls; ++nth) {
        const TempTree tree;
        tree.file("store", "old");
        const StoreFile file(tree.url("store"));
        bool replaced = false;
        {
            const FaultAt fault(nth, {.errorNumber = EIO});
            replaced = file.replace("new").has_value();
            if (nth == 0) calls = fault.seen();
        }
        EXPECT_THAT(tree.contents("store"), AnyOf("new", replaced ? "new" : "old")) << nth;
        EXPECT_THAT(tree.names(), ElementsAre("store")) << nth;
        if (!replaced) ++told;
    }
    // One look at what is to be replaced may fail without harm; every other failure is told.
    EXPECT_GE(told, calls - 1);
    EXPECT_GT(calls, 6);
}

TEST(StoreFileReplace, WritesAllThroughAShortWrite) {
    const TempTree tree;
    const StoreFile file(tree.url("store"));
    for (int nth = 1; nth < 12; ++nth) {
        const FaultAt fault(nth, {.isShort = true});
        ASSERT_TRUE(file.replace("twelve bytes"));
        EXPECT_EQ(tree.contents("store"), "twelve bytes");
    }
}

TEST(StoreFileReplace, LeavesTheOldContentsOnAFullDisk) {
    const auto mount = TestMount::tmpfs({}, "size=64k");
    if (!mount) GTEST_SKIP() << mount.error();
    const StoreFile file((*mount)->url().appending("store"));
    ASSERT_TRUE(file.replace("old"));
    EXPECT_EQ(file.replace(std::string(200'000, 'x')).error().number, ENOSPC);
    EXPECT_EQ(file.read().value(), "old");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator((*mount)->path()), {}), 1);
}

TEST(StoreFileRead, RefusesWhatIsNoSmallFile) {
    const TempTree tree;
    EXPECT_EQ(StoreFile(tree.fifo("fifo")).read().error().number, EINVAL);
    EXPECT_EQ(StoreFile(tree.folder("folder")).read().error().number, EINVAL);
    EXPECT_EQ(StoreFile(tree.fifo("fifo2")).replace("x").error().number, EINVAL);
    tree.file("file", "x");
    const auto large = tree.file("large");
    ASSERT_EQ(::truncate(large.path().c_str(), StoreFile::largest + 1), 0);
    EXPECT_EQ(StoreFile(large).read().error().number, EFBIG);
    for (int nth = 1; nth <= 4; ++nth) {
        const FaultAt fault(nth, {.errorNumber = EIO});
        EXPECT_EQ(StoreFile(tree.url("file")).read().error().number, EIO) << nth;
    }
}

TEST(StoreFileAside, TakesTheFirstFreeName) {
    const TempTree tree;
    const StoreFile file(tree.url("store"));
    for (const char* contents : {"first", "second"}) {
        tree.file("store", contents);
        ASSERT_TRUE(file.setAside());
    }
    EXPECT_EQ(tree.contents("store.damaged"), "first");
    EXPECT_EQ(tree.contents("store.damaged-2"), "second");
    EXPECT_EQ(file.setAside().error().number, ENOENT);
    EXPECT_THAT(tree.names(), ElementsAre("store.damaged", "store.damaged-2"));
}

TEST(StoreFileLock, IsHeldByOneAtATime) {
    const TempTree tree;
    const StoreFile file(tree.url("new/store"));
    auto held = file.lock();
    ASSERT_TRUE(held);
    EXPECT_EQ(file.lock(40ms).error().number, ETIMEDOUT);
    std::jthread release([lock = std::move(*held)]() mutable {
        std::this_thread::sleep_for(60ms);
        const auto gone = std::move(lock);
    });
    EXPECT_TRUE(file.lock(5s));
    const FaultAt unsupported(3, {.errorNumber = ENOLCK});
    EXPECT_TRUE(file.lock(0ms));
    EXPECT_EQ(unsupported.hit(), SystemCall::Kind::lock);
}

} // namespace
} // namespace ombrel
