#include "listing/VolumeInfo.h"

#include "listing/CapacityQuery.h"
#include "listing/ShownMounts.h"
#include "listing/UserDirectories.h"
#include "support/MirrorMount.h"
#include "support/TempTree.h"
#include "support/TestMount.h"

#include <gmock/gmock.h>
#include <sys/statvfs.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

namespace ombrel {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using testing::MirrorMount;
using ::testing::Not;
using testing::TempTree;
using testing::TestMount;

std::vector<std::string> pathsOf(const MountTable& table) {
    std::vector<std::string> paths;
    for (const Mount* mount : shownMounts(table))
        paths.push_back(mount->point.path());
    return paths;
}

// ---- Which mounts are volumes

// A desktop's table, as far as it matters here.
constexpr std::string_view desktop = R"(1 0 259:2 / / rw - ext4 /dev/nvme0n1p2 rw
2 1 0:21 / /proc rw - proc proc rw
3 1 0:22 / /run rw - tmpfs tmpfs rw
4 3 0:23 / /run/user/1000 rw - tmpfs tmpfs rw
5 4 0:24 / /run/user/1000/gvfs rw - fuse.gvfsd-fuse gvfsd-fuse rw
6 4 0:25 / /run/user/1000/doc rw - fuse.portal portal rw
7 1 259:1 / /boot/efi rw - vfat /dev/nvme0n1p1 rw
8 1 259:3 / /home rw - ext4 /dev/nvme0n1p3 rw
9 1 7:0 / /snap/core/1 ro - squashfs /dev/loop0 ro
10 1 0:30 / /var/lib/docker/overlay2/x/merged rw - overlay overlay rw
11 3 8:1 / /run/media/ann/STICK rw - vfat /dev/sda1 rw
12 1 8:17 / /data rw - ext4 /dev/sdb1 rw
13 1 8:17 /shared /export rw - ext4 /dev/sdb1 rw
14 1 8:17 / /again rw - ext4 /dev/sdb1 rw
15 8 0:31 / /home/ann/server rw - fuse.sshfs ann@server: rw
16 8 0:32 / /home/ann/.cache/thing rw - fuse.thing thing rw
17 1 0:33 / /net/share rw - nfs4 server:/share rw
18 1 0:34 / /mnt/memory rw - tmpfs tmpfs rw
19 1 8:17 /shared /mnt/bound rw - ext4 /dev/sdb1 rw
20 1 0:35 /@media /pictures rw - btrfs /dev/sdc rw
21 1 0:36 / /media/hidden rw - tmpfs tmpfs rw,x-gvfs-hide
22 1 0:37 / /opt/shown rw - overlay overlay rw,x-gvfs-show
23 1 0:38 / /media/covered rw - tmpfs tmpfs rw
24 23 0:39 / /media/covered rw - tmpfs tmpfs rw
25 1 0:40 / /mnt/asleep rw - autofs systemd-1 rw,direct
26 1 0:40 / /mnt/awake rw - autofs systemd-1 rw,direct
27 26 0:41 / /mnt/awake rw - nfs4 server:/awake rw
)";

TEST(ShownMounts, AreThoseThatPeopleKnow) {
    const auto table = *MountTable::fromText(desktop);
    EXPECT_THAT(pathsOf(table), ElementsAre("/", "/run/media/ann/STICK", "/data", "/home/ann/server",
                                            "/net/share", "/mnt/memory", "/mnt/bound", "/pictures",
                                            "/opt/shown", "/media/covered", "/mnt/awake"));
    EXPECT_EQ(shownMounts(table).back()->id, 27U);
    EXPECT_TRUE(shownMounts(MountTable()).empty());
}

TEST(ShownMounts, CountWhateverIsBelowMnt) {
    const auto memory = TestMount::tmpfs("/mnt/ombrel test memory");
    if (!memory) GTEST_SKIP() << memory.error();
    const auto image = TestMount::image("ext4", "/mnt/ombrel-test-image");
    ASSERT_TRUE(image.has_value()) << image.error();
    const auto bind = TestMount::bind("/usr/share", "/mnt/ombrel-test-bind");
    ASSERT_TRUE(bind.has_value()) << bind.error();
    const auto elsewhere = TestMount::tmpfs();
    ASSERT_TRUE(elsewhere.has_value()) << elsewhere.error();
    const auto shown = pathsOf(MountTable::current());
    EXPECT_THAT(shown, Contains("/"));
    for (const auto* mount : {&*memory, &*image, &*bind})
        EXPECT_THAT(shown, Contains((*mount)->path()));
    EXPECT_THAT(shown, Not(Contains((*elsewhere)->path())));
}

// ---- What is told of one

TEST(VolumeInfo, DescribesAnImage) {
    const auto image = TestMount::image("ext4", "/mnt/ombrel-test-labelled", "My Label");
    if (!image) GTEST_SKIP() << image.error();
    const auto volume = VolumeInfo::read((*image)->url());
    EXPECT_EQ(volume.url, (*image)->url());
    EXPECT_EQ(volume.name.value(), "My Label");
    EXPECT_EQ(volume.displayName(), "My Label");
    EXPECT_EQ(volume.fileSystemType.value(), "ext4");
    EXPECT_FALSE(volume.isReadOnly.value());
    EXPECT_TRUE(volume.isLocal.value());
    EXPECT_TRUE(volume.isEjectable.value());
    EXPECT_FALSE(volume.isRemovable.value());
    EXPECT_FALSE(volume.isRootFileSystem);
    struct statvfs facts;
    ASSERT_EQ(::statvfs((*image)->path().c_str(), &facts), 0);
    EXPECT_EQ(volume.totalCapacity.value(), static_cast<std::int64_t>(facts.f_blocks * facts.f_frsize));
    EXPECT_EQ(volume.availableCapacity.value(), static_cast<std::int64_t>(facts.f_bavail * facts.f_frsize));
    EXPECT_EQ(volume, VolumeInfo::read((*image)->url()));
    EXPECT_EQ(volume.hashValue(), VolumeInfo::read((*image)->url()).hashValue());
}

TEST(VolumeInfo, IsNamedByItsLabelOrItsPlace) {
    VolumeInfo volume;
    volume.url = *FileURL::fromPath("/media/ann/stick");
    EXPECT_EQ(volume.displayName(), "stick");
    volume.name = std::string();
    EXPECT_EQ(volume.displayName(), "stick") << "an empty name is none";
    volume.name = std::string("Holiday");
    EXPECT_EQ(volume.displayName(), "Holiday");
    volume.name = Metadata<std::string>::failed(EIO);
    EXPECT_EQ(volume.displayName(), "stick");
    const auto table =
        *MountTable::fromText("1 0 0:33 / /net/x rw - nfs4 server:/share rw,x-gvfs-name=Our%20Files\n");
    const auto share = VolumeInfo::describe(table.mounts()[0]);
    EXPECT_EQ(share.displayName(), "Our Files");
    EXPECT_FALSE(share.isLocal.value());
    EXPECT_FALSE(share.isInternal.value());
}

TEST(VolumeInfo, FailsWhereNothingIsMounted) {
    const TempTree tree;
    for (const auto& volume : {VolumeInfo::read(tree.url("missing")), VolumeInfo::read(tree.url())}) {
        EXPECT_TRUE(volume.fileSystemType.isFailed());
        EXPECT_TRUE(volume.isReadOnly.isFailed());
        EXPECT_TRUE(volume.isLocal.isFailed());
        EXPECT_TRUE(volume.totalCapacity.isFailed());
    }
    EXPECT_EQ(VolumeInfo::read(tree.url("missing")).isLocal.errorNumber(), ENOENT);
}

// ---- Mounts that do not answer

using std::chrono::milliseconds;

TEST(CapacityQuery, IsNotHeldUpByAMountThatHangs) {
    const TempTree tree;
    const auto dead = MirrorMount::of(tree.path(), {"hanging"});
    if (!dead) GTEST_SKIP() << dead.error();
    const auto live = MirrorMount::of(tree.path());
    ASSERT_TRUE(live.has_value()) << live.error();
    const auto table = MountTable::current();
    const std::vector<const Mount*> mounts = {table.containing((*dead)->url()),
                                              table.containing((*live)->url()), table.containing(FileURL())};
    const auto start = std::chrono::steady_clock::now();
    {
        CapacityQuery query(table, mounts);
        EXPECT_TRUE(query.answer(2).has_value()) << "a local one is answered at once";
        EXPECT_FALSE(query.wait(milliseconds(300)));
        EXPECT_FALSE(query.answer(0).has_value());
        ASSERT_TRUE(query.answer(1).has_value() && query.answer(1)->has_value());
        EXPECT_EQ((**query.answer(1)).total, POSIX::capacity(tree.url())->total);
    }
    CapacityQuery again(table, mounts);
    ASSERT_TRUE(again.answer(0).has_value()) << "it is not asked twice at a time";
    EXPECT_EQ(again.answer(0)->error().number, ETIMEDOUT);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));

    (*dead)->answer();
    for (int tries = 0; tries < 100; ++tries) {
        CapacityQuery later(table, mounts);
        if (later.wait(milliseconds(50)) && later.answer(0)->has_value()) return;
    }
    FAIL() << "a mount that answers again is never heard";
}

TEST(CapacityQuery, TellsWhyAMountFailed) {
    const TempTree tree;
    auto mirror = MirrorMount::of(tree.path());
    if (!mirror) GTEST_SKIP() << mirror.error();
    std::filesystem::remove(tree.path());
    const auto table = MountTable::current();
    const std::vector<const Mount*> mounts = {table.containing((*mirror)->url())};
    CapacityQuery query(table, mounts);
    ASSERT_TRUE(query.wait(milliseconds(5000)));
    EXPECT_EQ(query.answer(0)->error().number, ENOENT);
}

// ---- Known folders

TEST(UserDirectories, AreReadAsTheDesktopWritesThem) {
    KnownFolders folders(*FileURL::fromPath("/home/ann"));
    UserDirectories::configure("# comment\n"
                               "XDG_DESKTOP_DIR=\"$HOME/Schreib\\\"tisch\"\n"
                               "  XDG_DOWNLOAD_DIR = \"/data/down loads/\"\r\n"
                               "XDG_DOCUMENTS_DIR=\"$HOME/\"\n"
                               "XDG_PICTURES_DIR=$HOME/Unquoted\n"
                               "XDG_MUSIC_DIR=\"relative\"\n"
                               "XDG_VIDEOS_DIR=\"$HOMEless\"\n"
                               "XDG_VIDEOS_DIR=\"$HOME/Vid\xE9os",
                               folders);
    EXPECT_EQ(folders.url(KnownFolder::desktop).path(), "/home/ann/Schreib\"tisch");
    EXPECT_EQ(folders.url(KnownFolder::downloads).path(), "/data/down loads");
    EXPECT_EQ(folders.url(KnownFolder::documents).path(), "/home/ann/Documents") << "switched off";
    EXPECT_EQ(folders.url(KnownFolder::pictures).path(), "/home/ann/Pictures");
    EXPECT_EQ(folders.url(KnownFolder::music).path(), "/home/ann/Music");
    EXPECT_EQ(folders.url(KnownFolder::videos).path(), "/home/ann/Movies") << "an unfinished line";
}

} // namespace
} // namespace ombrel
