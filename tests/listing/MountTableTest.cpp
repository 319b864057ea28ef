#include "listing/MountTable.h"

#include "listing/BlockDevice.h"
#include "listing/POSIX.h"
#include "support/TempTree.h"
#include "support/TestMount.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

namespace ombrel {
namespace {

using testing::TempTree;
using testing::TestMount;

FileURL url(std::string_view path) {
    return *FileURL::fromPath(path);
}

// A stick whose name holds a space, a bind of a folder, a subvolume, a network share, and /srv covered by a
// later mount after something had been mounted below it.
constexpr std::string_view sample = R"(27 1 254:0 / / rw,relatime - ext4 /dev/vda1 rw,discard
30 27 0:21 / /proc rw - proc proc rw
31 27 8:17 / /media/ann/My\040Stick ro,nosuid - vfat /dev/sdb1 rw,uid=1000
32 27 254:0 /home/ann /mnt/ann rw - ext4 /dev/vda1 rw
33 27 0:40 /@data /data rw - btrfs /dev/vdb rw,subvol=/@data
34 27 0:41 / /net/share rw - nfs4 server:/share rw,vers=4.2
35 27 0:42 / /srv/deep rw - tmpfs tmpfs rw
36 27 0:43 / /srv rw - tmpfs tmpfs rw
37 36 0:44 / /srv rw - fuse.sshfs ann@host: rw,user_id=0
)";

TEST(MountTable, SaysWhatIsMountedWhere) {
    const auto table = MountTable::fromText(sample);
    ASSERT_TRUE(table.has_value());
    ASSERT_EQ(table->mounts().size(), 9U);
    const Mount& stick = *table->byID(31);
    EXPECT_EQ(stick.point.path(), "/media/ann/My Stick");
    EXPECT_EQ(stick.source, "/dev/sdb1");
    EXPECT_TRUE(stick.isReadOnly);
    EXPECT_EQ(stick.optionValue("uid"), "1000");
    EXPECT_FALSE(stick.hasOption("no"));
    EXPECT_EQ(table->byID(32)->root, "/home/ann");
    EXPECT_TRUE(table->byID(34)->traits.isNetwork);
    EXPECT_EQ(table->byID(99), nullptr);
}

TEST(MountTable, FindsTheMountOfAPathAsTheKernelWalks) {
    const auto table = *MountTable::fromText(sample);
    const auto idAt = [&](std::string_view path) { return table.containing(url(path))->id; };
    EXPECT_EQ(idAt("/"), 27U);
    EXPECT_EQ(idAt("/media/ann"), 27U);
    EXPECT_EQ(idAt("/media/ann/My Stick/a/b"), 31U);
    EXPECT_EQ(idAt("/media/ann/My Sticker"), 27U);
    EXPECT_EQ(idAt("/mnt/ann"), 32U);
    EXPECT_EQ(idAt("/srv"), 37U) << "the top one of a stack";
    EXPECT_EQ(idAt("/srv/deep/x"), 37U) << "what a later mount covers is out of reach";
    EXPECT_TRUE(table.isVisible(*table.byID(37)));
    EXPECT_FALSE(table.isVisible(*table.byID(36)));
    EXPECT_FALSE(table.isVisible(*table.byID(35)));
    EXPECT_EQ(MountTable().containing(url("/srv")), nullptr);
}

TEST(MountTable, KnowsWhereACallMayNotComeBack) {
    const auto table = *MountTable::fromText(R"(1 0 254:0 / / rw - ext4 /dev/vda1 rw
2 1 0:41 / /share rw - nfs4 server:/share rw
3 2 0:42 / /share/memory rw - tmpfs tmpfs rw
4 1 0:43 / /own rw - fuse.own own rw
5 1 0:44 / /asleep rw - autofs systemd-1 rw,direct
6 1 8:17 / /disk rw - ext4 /dev/sdb1 rw
)");
    std::vector<std::string> found;
    for (const Mount& mount : table.mounts())
        if (table.mayHang(mount)) found.push_back(mount.point.path());
    EXPECT_THAT(found, ::testing::ElementsAre("/share", "/share/memory", "/own", "/asleep"));
}

TEST(MountTable, TheRunningSystemsTableAgreesWithTheKernel) {
    const auto table = MountTable::current();
    ASSERT_FALSE(table.mounts().empty());
    for (const char* path : {"/", "/proc/self", "/tmp", "/dev"}) {
        const auto status = POSIX::statFollowing(url(path));
        ASSERT_TRUE(status.has_value());
        ASSERT_NE(table.of(*status), nullptr) << path;
        EXPECT_EQ(table.of(*status)->id, table.containing(url(path))->id) << path;
    }
}

TEST(MountTable, FollowsWhatIsMountedAndUnmounted) {
    const TempTree tree;
    const auto before = MountTable::current();
    std::uint64_t id = 0;
    {
        const auto mount = TestMount::tmpfs(tree.path("a folder"));
        if (!mount) GTEST_SKIP() << mount.error();
        const auto status = POSIX::lstat((*mount)->url());
        const Mount* found = MountTable::current().containing((*mount)->url().appending("x"));
        ASSERT_NE(found, nullptr);
        EXPECT_EQ(found->type, "tmpfs");
        EXPECT_EQ(found->id, status->mountID);
        EXPECT_EQ(before.byID(found->id), nullptr) << "a snapshot stays as it was";
        id = found->id;
        const auto bind = TestMount::bind((*mount)->path(), tree.path("bound"));
        ASSERT_TRUE(bind.has_value()) << bind.error();
        const auto other = POSIX::lstat((*bind)->url());
        EXPECT_EQ(other->identity.device, status->identity.device);
        EXPECT_NE(MountTable::current().of(*other)->id, id) << "told apart by mount, not by device";
    }
    EXPECT_EQ(MountTable::current().byID(id), nullptr);
}

// ---- Traits: a table of what matters most, then the drivers themselves

struct TraitRow {
    const char* type;
    bool coarse, renumbers, links, caseInsensitive, reports;
};

TEST(FileSystemTraits, AreKnownByType) {
    const TraitRow rows[] = {
        {"ext4", false, false, true, false, true},      {"ext3", true, false, true, false, true},
        {"btrfs", false, false, true, false, true},     {"vfat", true, true, false, true, true},
        {"exfat", true, true, false, true, true},       {"ntfs3", true, false, true, false, true},
        {"nfs4", true, false, true, false, false},      {"cifs", true, true, true, true, false},
        {"fuse.sshfs", true, true, true, false, false}, {"fuseblk", true, true, true, false, false},
        {"tmpfs", false, false, true, false, true},     {"something-new", false, false, true, false, true},
    };
    for (const TraitRow& row : rows) {
        const auto traits = FileSystemTraits::of(row.type);
        EXPECT_EQ(traits.hasCoarseTimes, row.coarse) << row.type;
        EXPECT_EQ(traits.renumbersInodes, row.renumbers) << row.type;
        EXPECT_EQ(traits.holdsSymlinks, row.links) << row.type;
        EXPECT_EQ(traits.isCaseInsensitive, row.caseInsensitive) << row.type;
        EXPECT_EQ(traits.reportsChanges(), row.reports) << row.type;
    }
    EXPECT_EQ(FileSystemTraits::of("vfat").largestFile, 4294967295);
    EXPECT_TRUE(FileSystemTraits::of("proc").isPseudo);
    EXPECT_TRUE(FileSystemTraits::of("fuse.sshfs").isNetwork);
    EXPECT_FALSE(FileSystemTraits::of("fuse.encfs").isNetwork);
}

class TraitsMatchTheDriver : public ::testing::TestWithParam<const char*> {};

TEST_P(TraitsMatchTheDriver, OnARealFileSystem) {
    const auto mount = TestMount::image(GetParam());
    if (!mount) GTEST_SKIP() << mount.error();
    const Mount* found = MountTable::current().containing((*mount)->url());
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->blockDevice, BlockDevice::numberOf((*mount)->device()));
    const FileSystemTraits& traits = found->traits;
    const auto folder = POSIX::openDirectory((*mount)->url());
    ASSERT_TRUE(folder.has_value());
    const auto creates = [&](const char* name) {
        return POSIX::open({folder->fd(), name}, O_CREAT | O_WRONLY, 0644).has_value();
    };
    ASSERT_TRUE(creates("lower"));
    EXPECT_EQ(POSIX::lstat({folder->fd(), "LOWER"}).has_value(), traits.isCaseInsensitive);
    EXPECT_EQ(creates("a:b"), traits.forbiddenCharacters.find(':') == std::string_view::npos);
    EXPECT_EQ(creates("a\x01"
                      "b"),
              !traits.forbidsControlCharacters);
    EXPECT_EQ(::symlinkat("lower", folder->fd(), "link") == 0, traits.holdsSymlinks);
    EXPECT_EQ(::linkat(folder->fd(), "lower", folder->fd(), "hard", 0) == 0, traits.holdsHardLinks);
    // 200 letters of two bytes each: too long for a limit in bytes only.
    std::string longName;
    for (int i = 0; i < 200; ++i)
        longName += "\xC3\xA9";
    EXPECT_EQ(creates(longName.c_str()), traits.nameUnit == FileSystemTraits::NameUnit::utf16);
}
INSTANTIATE_TEST_SUITE_P(Formats, TraitsMatchTheDriver,
                         ::testing::Values("ext4", "ext2", "btrfs", "xfs", "exfat", "ntfs"),
                         [](const auto& row) { return std::string(row.param); });

TEST(BlockDevice, TellsLabelAndUUID) {
    const auto mount = TestMount::image("ext4", {}, "Two Words");
    if (!mount) GTEST_SKIP() << mount.error();
    const auto device = BlockDevice::of(*BlockDevice::numberOf((*mount)->device()));
    ASSERT_TRUE(device.has_value());
    EXPECT_EQ(device->label, "Two Words");
    EXPECT_EQ(device->format, "ext4");
    EXPECT_EQ(device->uuid.size(), 36U);
    EXPECT_FALSE(device->isRemovable);
    EXPECT_FALSE(BlockDevice::numberOf("/dev/null").has_value());
    EXPECT_FALSE(BlockDevice::numberOf("server:/share").has_value());
}

} // namespace
} // namespace ombrel
