#include "listing/FolderBookmark.h"

#include "listing/POSIX.h"
#include "support/FailingCalls.h"
#include "support/Locations.h"
#include "support/TempTree.h"
#include "support/TestMount.h"
#include "support/Unprivileged.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <filesystem>

namespace ombrel {
namespace {

using Kind = FolderBookmark::Failure::Kind;
using testing::at;
using testing::FailingCalls;
using testing::TempTree;
using testing::TestMount;

void rename(const std::string& from, const std::string& to) {
    std::filesystem::rename(from, to);
}

/// The path, marked where it is not the one that was remembered; or why there is none.
std::string outcome(const FolderBookmark& bookmark) {
    const auto found = bookmark.resolve();
    if (found) return (found->isElsewhere ? "now " : "") + found->url.path();
    switch (found.error().kind) {
    case Kind::notThere: return "not there";
    case Kind::replaced: return "replaced";
    case Kind::system: return "failed";
    }
    return {};
}

class FolderIsFoundAgain : public ::testing::Test {
protected:
    FolderIsFoundAgain() {
        for (const char* folder : {"a", "a/b", "a/b/c", "other"})
            tree.folder(folder);
        bookmark = FolderBookmark::of(tree.url("a/b/c")).value();
    }
    void rename(const std::string& from, const std::string& to) const {
        ombrel::rename(tree.path(from), tree.path(to));
    }

    TempTree tree;
    FolderBookmark bookmark;
};

TEST_F(FolderIsFoundAgain, WhereItWas) {
    EXPECT_EQ(outcome(bookmark), tree.path("a/b/c"));
    tree.file("a/b/c/new");
    EXPECT_EQ(outcome(bookmark), tree.path("a/b/c")) << "changed contents do not matter";
    EXPECT_EQ(outcome(FolderBookmark::of(FileURL()).value()), "/");
}

TEST_F(FolderIsFoundAgain, UnderANewName) {
    rename("a/b/c", "a/b/new");
    EXPECT_EQ(outcome(bookmark), "now " + tree.path("a/b/new"));
    tree.folder("a/b/c");
    EXPECT_EQ(outcome(bookmark), "now " + tree.path("a/b/new")) << "another one has its old name";
}

TEST_F(FolderIsFoundAgain, BelowRenamedFolders) {
    rename("a", "x\xFF");
    EXPECT_EQ(outcome(bookmark), "now " + tree.path("x\xFF/b/c"));
    rename("x\xFF/b", "x\xFF/y");
    rename("x\xFF/y/c", "x\xFF/y/z");
    EXPECT_EQ(outcome(bookmark), "now " + tree.path("x\xFF/y/z"));
    tree.folder("a");
    tree.folder("a/b");
    EXPECT_EQ(outcome(bookmark), "now " + tree.path("x\xFF/y/z"));
}

TEST_F(FolderIsFoundAgain, AmongManyOthers) {
    for (int i = 0; i < 3000; ++i)
        tree.folder("a/b/other" + std::to_string(i));
    rename("a/b/c", "a/b/d");
    EXPECT_EQ(outcome(bookmark), "now " + tree.path("a/b/d"));
}

TEST_F(FolderIsFoundAgain, ThroughALinkToIt) {
    tree.symlink("link", "a/b/c");
    const auto linked = FolderBookmark::of(tree.url("link")).value();
    EXPECT_EQ(outcome(linked), tree.path("link"));
    std::filesystem::remove(tree.path("link"));
    EXPECT_EQ(outcome(linked), "now " + tree.path("a/b/c"));
    tree.symlink("link", "other");
    EXPECT_EQ(outcome(linked), "now " + tree.path("a/b/c"));
}

TEST_F(FolderIsFoundAgain, NotWhereItCannotBeWithoutASearch) {
    rename("a/b/c", "other/c");
    EXPECT_EQ(outcome(bookmark), "not there");
    rename("other/c", "a/b/c");
    EXPECT_EQ(outcome(bookmark), tree.path("a/b/c"));
}

TEST_F(FolderIsFoundAgain, NotInAnotherThatStandsThere) {
    std::filesystem::remove(tree.path("a/b/c"));
    EXPECT_EQ(outcome(bookmark), "not there");
    tree.folder("a/b/c");
    EXPECT_EQ(outcome(bookmark), "replaced");
    std::filesystem::remove(tree.path("a/b/c"));
    tree.file("a/b/c");
    EXPECT_EQ(outcome(bookmark), "not there");
    std::filesystem::remove_all(tree.path("a"));
    EXPECT_EQ(outcome(bookmark), "not there");
}

TEST_F(FolderIsFoundAgain, NotAmongLinksThatLeadInACircle) {
    rename("a", "x");
    tree.symlink("a", "a");
    EXPECT_EQ(outcome(bookmark), "failed");
}

TEST_F(FolderIsFoundAgain, ByItsPathWhereItMayNotBeLookedAt) {
    std::filesystem::permissions(tree.path("a"), std::filesystem::perms::owner_all);
    std::filesystem::permissions(tree.path(), std::filesystem::perms::all);
    EXPECT_TRUE(testing::asNobody([&] { return outcome(bookmark) == tree.path("a/b/c"); }));
}

TEST_F(FolderIsFoundAgain, NotWhenTheSystemDoesNotAnswerForIt) {
    for (const auto& [number, expected] :
         {std::pair(EIO, "not there"), {ENOTCONN, "not there"}, {ESTALE, "not there"}, {ENOMEM, "failed"}}) {
        const FailingCalls failing(SystemCall::Kind::open, number);
        EXPECT_EQ(outcome(bookmark), expected) << number;
    }
}

TEST(FolderBookmarkOf, OnlyFoldersThatAreThere) {
    const TempTree tree;
    EXPECT_EQ(FolderBookmark::of(tree.url("none")).error().number, ENOENT);
    EXPECT_EQ(FolderBookmark::of(tree.file("file")).error().number, ENOTDIR);
    tree.symlink("link", "link");
    EXPECT_EQ(FolderBookmark::of(tree.url("link")).error().number, ELOOP);
}

TEST(FolderBookmarkOf, PathsOfAnyLength) {
    const TempTree tree;
    auto deep = tree.url();
    const std::string name(200, 'n');
    auto folder = POSIX::open(deep, O_RDONLY | O_DIRECTORY);
    for (int i = 0; i < 25; ++i) {
        ASSERT_EQ(::mkdirat(folder->get(), name.c_str(), 0700), 0);
        folder = POSIX::open({folder->get(), name.c_str()}, O_RDONLY | O_DIRECTORY);
        ASSERT_TRUE(folder);
        deep = deep.appending(name);
    }
    const auto bookmark = FolderBookmark::of(deep).value();
    EXPECT_EQ(outcome(bookmark), deep.path());
    rename(tree.path(name), tree.path("x"));
    EXPECT_EQ(outcome(bookmark), "now " + tree.path("x") + deep.path().substr(tree.path(name).size()));
}

class FolderOnAVolume : public ::testing::TestWithParam<const char*> {
protected:
    void SetUp() override {
        auto made = TestMount::image(GetParam());
        if (!made) GTEST_SKIP() << made.error();
        mount = *std::move(made);
        std::filesystem::create_directories(mount->path() + "/a/b");
        bookmark = FolderBookmark::of(at(mount->path() + "/a/b")).value();
    }
    [[nodiscard]] std::string elsewhere() const { return place.path("elsewhere"); }

    TempTree place;
    std::unique_ptr<TestMount> mount;
    FolderBookmark bookmark;
};

TEST_P(FolderOnAVolume, IsNotThereWhileTheVolumeIsAway) {
    EXPECT_FALSE(bookmark.volume.uuid.empty());
    ASSERT_TRUE(mount->unmount());
    EXPECT_EQ(outcome(bookmark), "not there");
    std::filesystem::create_directories(mount->path() + "/a/b");
    EXPECT_EQ(outcome(bookmark), "not there") << "the empty mount point was filled";
    std::filesystem::remove_all(mount->path() + "/a");
    ASSERT_TRUE(mount->remount());
    EXPECT_EQ(outcome(bookmark), mount->path() + "/a/b");
}

TEST_P(FolderOnAVolume, IsFoundWhereTheVolumeIsMountedNow) {
    const auto before = mount->path();
    ASSERT_TRUE(mount->unmount());
    ASSERT_TRUE(mount->remount(elsewhere()));
    EXPECT_EQ(outcome(bookmark), "now " + elsewhere() + "/a/b");
    // Another volume at the old place, with the same path on it.
    const auto other = TestMount::image(GetParam(), before);
    ASSERT_TRUE(other) << other.error();
    std::filesystem::create_directories(before + "/a/b");
    EXPECT_EQ(outcome(bookmark), "now " + elsewhere() + "/a/b");
    ASSERT_TRUE(mount->unmount());
    EXPECT_EQ(outcome(bookmark), "not there");
}

TEST_P(FolderOnAVolume, IsFoundWhereAPartOfTheVolumeIsMounted) {
    const auto bind = TestMount::bind(mount->path() + "/a", elsewhere());
    ASSERT_TRUE(bind) << bind.error();
    const auto inBind = FolderBookmark::of(at(elsewhere() + "/b")).value();
    EXPECT_EQ(outcome(inBind), elsewhere() + "/b");
    ASSERT_TRUE((*bind)->unmount());
    EXPECT_EQ(outcome(inBind), "now " + mount->path() + "/a/b") << "the whole volume shows it too";
}

// The formats whose inodes stay; UUIDs are read from the device.
INSTANTIATE_TEST_SUITE_P(Formats, FolderOnAVolume, ::testing::Values("ext4", "ext2", "btrfs", "xfs"),
                         [](const auto& format) { return std::string(format.param); });

TEST_P(FolderOnAVolume, IsFoundUnderANewNameElsewhere) {
    rename(mount->path() + "/a", mount->path() + "/x");
    ASSERT_TRUE(mount->unmount());
    ASSERT_TRUE(mount->remount(elsewhere()));
    EXPECT_EQ(outcome(bookmark), "now " + elsewhere() + "/x/b");
}

TEST(FolderOnAVolumeThatRenumbers, IsWhatStandsAtItsPath) {
    auto mount = TestMount::image("exfat");
    if (!mount) GTEST_SKIP() << mount.error();
    const TempTree place;
    std::filesystem::create_directories((*mount)->path() + "/a/b");
    const auto bookmark = FolderBookmark::of(at((*mount)->path() + "/a/b")).value();
    ASSERT_TRUE((*mount)->unmount());
    EXPECT_EQ(outcome(bookmark), "not there");
    ASSERT_TRUE((*mount)->remount(place.path("elsewhere")));
    EXPECT_EQ(outcome(bookmark), "now " + place.path("elsewhere/a/b"));
    rename(place.path("elsewhere/a"), place.path("elsewhere/x"));
    EXPECT_EQ(outcome(bookmark), "not there");
}

TEST(FolderInMemory, IsNotTakenForOneOfAnotherMount) {
    auto mount = TestMount::tmpfs();
    if (!mount) GTEST_SKIP() << mount.error();
    const auto path = (*mount)->path();
    std::filesystem::create_directories(path + "/a");
    const auto bookmark = FolderBookmark::of(at(path + "/a")).value();
    EXPECT_EQ(outcome(bookmark), path + "/a");
    const TempTree place;
    ASSERT_TRUE((*mount)->moveTo(place.path("moved")));
    EXPECT_EQ(outcome(bookmark), "now " + place.path("moved/a"));
    ASSERT_TRUE((*mount)->unmount());
    EXPECT_EQ(outcome(bookmark), "not there");
    const auto other = TestMount::tmpfs(path);
    ASSERT_TRUE(other) << other.error();
    std::filesystem::create_directories(path + "/a");
    EXPECT_NE(outcome(bookmark), path + "/a");
}

TEST(VolumeLikeness, AsksForTheStrongestFactThereIs) {
    using enum VolumeIdentity::Likeness;
    struct Row {
        VolumeIdentity a, b;
        VolumeIdentity::Likeness likeness;
    };
    const Row rows[] = {
        {{"u1", "ext4", "/dev/sda1", 1}, {"u1", "ext4", "/dev/sdb1", 2}, same},
        {{"u1", "ext4", "/dev/sda1", 1}, {"u2", "ext4", "/dev/sda1", 1}, different},
        {{"u1", "fuseblk", "/dev/sda1", 1}, {"u1", "ntfs3", "/dev/sdb1", 2}, same},
        {{"", "ext4", "/dev/sda1", 1}, {"u1", "ext4", "/dev/sda1", 1}, possible},
        {{"", "nfs4", "host:/a", 1}, {"", "nfs4", "host:/a", 2}, same},
        {{"", "nfs4", "host:/a", 1}, {"", "nfs4", "host:/b", 1}, different},
        {{"", "overlay", "overlay", 1}, {"", "overlay", "overlay", 2}, possible},
        {{"", "tmpfs", "tmpfs", 1}, {"", "ramfs", "tmpfs", 1}, different},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.a.likeness(row.b), row.likeness) << row.a.source << ' ' << row.b.source;
        EXPECT_EQ(row.b.likeness(row.a), row.likeness) << row.b.source << ' ' << row.a.source;
    }
}

} // namespace
} // namespace ombrel
