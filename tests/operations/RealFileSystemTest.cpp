#include "operations/SystemTrash.h"
#include "support/TempTree.h"
#include "support/TestMount.h"
#include "support/TransferWorld.h"
#include "support/TreeSnapshot.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Every operation on file systems as they are, each fresh on a loop device or in memory, or served by a
// driver of the tests' own that refuses what poor drivers refuse.

namespace ombrel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Error = FileOperationError;
using Kind = FileOperationKind;
using Overall = OperationReport::Overall;

struct FileSystem {
    const char* name;
    const char* image;            ///< a format; nullptr for what is made of memory
    const char* limits = nullptr; ///< of the tests' own driver, over memory
    bool holdsModes = true;
    bool holdsAttributes = true;
    bool holdsLists = true;
    bool holdsLinks = true;
    bool isWindows = false; ///< its rules for names, letter case included
};

constexpr FileSystem fileSystems[] = {
    {"ext4", "ext4"},
    {"ext4casefold", "ext4-casefold"},
    {"ext2", "ext2"},
    {"btrfs", "btrfs"},
    {"xfs", "xfs"},
    {"tmpfs", nullptr},
    {"vfat", "vfat", nullptr, false, false, false, false, true},
    {"exfat", "exfat", nullptr, false, false, false, false, true},
    {"ntfs", "ntfs", nullptr, false, true, false},
    {"refusing", nullptr, ""},
    {"poor", nullptr, "nolinks,noattributes", true, false, false},
};

class RealFileSystem : public ::testing::TestWithParam<FileSystem> {
protected:
    const FileSystem& tested = GetParam();
    std::unique_ptr<TestMount> memory, volume;
    TempTree from;
    std::optional<TempTree> to;
    TransferWorld world;

    void SetUp() override {
        if (!tested.image) {
            auto made = TestMount::tmpfs({}, "size=64m");
            if (!made) GTEST_SKIP() << made.error();
            memory = std::move(*made);
        }
        if (tested.image || tested.limits) {
            auto made = tested.image ? TestMount::image(tested.image)
                                     : TestMount::limited(memory->path(), tested.limits);
            if (!made) GTEST_SKIP() << made.error();
            volume = std::move(*made);
        }
        to.emplace((volume ? *volume : *memory).path());
    }

    /// A tree of what the file system has a place for; more attributes than that.
    FileURL makeTree() const {
        from.folder("top");
        from.folder("top/sub");
        from.folder("top/sub/empty");
        from.file("top/note.txt", "note");
        from.file("top/closed", "closed");
        from.file("top/empty");
        from.file("top/run.sh", "#!/bin/sh\n");
        from.file("top/\xC3\x9Cn\xC3\xAF"
                  "code " +
                      std::string(200, 'n'),
                  "odd");
        from.fileOfSize("top/sub/big", 1'500'001);
        from.fileOfSize("top/sub/chunk", 1 << 20);
        const int sparse = ::open(from.path("top/sparse").c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0644);
        EXPECT_EQ(::pwrite(sparse, "middle", 6, 1 << 20), 6);
        EXPECT_EQ(::ftruncate(sparse, 3 << 20), 0);
        ::close(sparse);
        if (tested.holdsLinks) {
            from.symlink("top/link", "sub/big");
            from.symlink("top/broken", "nowhere/at all");
            from.fifo("top/fifo");
        }
        ::chmod(from.path("top/run.sh").c_str(), 0751);
        ::chmod(from.path("top/closed").c_str(), 0400);
        ::chown(from.path("top/run.sh").c_str(), 1234, 4321);
        ::setxattr(from.path("top/note.txt").c_str(), "user.origin", "here", 4, 0);
        ::setxattr(from.path("top/sub").c_str(), "user.color", "red", 3, 0);
        // user::rw-, user:1234:r--, group::r--, mask::r--, other::r--
        constexpr char list[] = "\2\0\0\0\1\0\6\0\377\377\377\377\2\0\4\0\322\4\0\0\4\0\4\0\377\377\377\377"
                                "\20\0\4\0\377\377\377\377\40\0\4\0\377\377\377\377";
        ::setxattr(from.path("top/note.txt").c_str(), "system.posix_acl_access", list, sizeof list - 1, 0);
        ::chmod(from.path("top/sub").c_str(), 0555);
        const timespec old[2] = {{1'000'000'000, 0}, {1'234'567'890, 0}};
        for (const auto& [path, entry] : snapshotOf(from.path("top")))
            ::utimensat(AT_FDCWD, from.path(path.empty() ? "top" : "top/" + path).c_str(), old,
                        AT_SYMLINK_NOFOLLOW);
        return from.url("top");
    }

    /// What of two trees differs although the file system holds it.
    [[nodiscard]] std::vector<std::string> lost(TreeSnapshot expected, TreeSnapshot found) const {
        for (auto* tree : {&expected, &found})
            for (auto& [path, entry] : *tree)
                std::erase_if(entry.attributes, [&](const auto& attribute) {
                    return attribute.first.starts_with("user.") ? !tested.holdsAttributes
                                                                : !tested.holdsLists;
                });
        if (tested.holdsModes) return differences(expected, found, Compare::metadata);
        for (auto* tree : {&expected, &found})
            for (auto& [path, entry] : *tree)
                entry.mode &= S_IFMT;
        return differences(expected, found, Compare::metadata);
    }
};

TEST_P(RealFileSystem, TakesAndGivesBackATreeWithAllThatItHolds) {
    const auto top = makeTree();
    const auto original = snapshotOf(top);
    const auto copied = world.copy({top}, to->url());
    EXPECT_EQ(copied.overall(), Overall::succeeded);
    EXPECT_THAT(world.answers.errors, IsEmpty());
    EXPECT_THAT(lost(original, snapshotOf(to->path("top"))), IsEmpty());
    EXPECT_THAT(to->names(), ElementsAre("top"));

    // There by a move, within by a rename, and back by another move.
    to->folder("moved");
    EXPECT_EQ(world.move({top}, to->url("moved")).overall(), Overall::succeeded);
    EXPECT_FALSE(from.exists("top"));
    to->folder("within");
    EXPECT_EQ(world.move({to->url("moved/top")}, to->url("within")).overall(), Overall::succeeded);
    EXPECT_THAT(lost(original, snapshotOf(to->path("within/top"))), IsEmpty());
    EXPECT_EQ(world.move({to->url("within/top")}, from.url()).overall(), Overall::succeeded);
    EXPECT_THAT(lost(original, snapshotOf(from.path("top"))), IsEmpty());
    for (const char* folder : {"moved", "within"})
        EXPECT_THAT(to->names(folder), IsEmpty());
    EXPECT_THAT(world.answers.errors, IsEmpty());
}

TEST_P(RealFileSystem, ReplacesKeepsBothAndMerges) {
    const auto file = from.file("file", "new");
    from.folder("folder");
    from.file("folder/both", "new");
    from.file("folder/fresh", "new");
    to->file("file", "old");
    to->folder("folder");
    to->file("folder/both", "old");
    to->file("folder/kept", "old");
    world.answers.conflictAnswers = {{ConflictChoice::keepBoth, false}, {ConflictChoice::replace, true}};
    EXPECT_EQ(world.copy({file}, to->url()).overall(), Overall::succeeded);
    EXPECT_EQ(to->contents("file") + to->contents("file (2)"), "oldnew");
    EXPECT_EQ(world.copy({file, from.url("folder")}, to->url()).overall(), Overall::succeeded);
    EXPECT_EQ(to->contents("file"), "new");
    EXPECT_EQ(to->contents("folder/both") + to->contents("folder/fresh") + to->contents("folder/kept"),
              "newnewold");

    // Within the volume, by name.
    to->folder("other");
    to->file("other/file", "newest");
    world.answers.conflictAnswers = {{ConflictChoice::replace, true}};
    EXPECT_EQ(world.move({to->url("other/file")}, to->url()).overall(), Overall::succeeded);
    EXPECT_EQ(to->contents("file"), "newest");
    // A file in the place of a folder.
    from.file("other", "file now");
    world.answers.conflictAnswers = {{ConflictChoice::replace, false}};
    EXPECT_EQ(world.move({from.url("other")}, to->url()).overall(), Overall::succeeded);
    EXPECT_EQ(to->contents("other"), "file now");
    EXPECT_THAT(to->names(), ElementsAre("file", "file (2)", "folder", "other"));
    EXPECT_THAT(world.answers.errors, IsEmpty());
}

TEST_P(RealFileSystem, RenamesMakesTrashesAndDeletes) {
    const auto& service = world.service;
    const auto file = service.createEmptyFile(to->url(), "new.txt");
    EXPECT_EQ(file.items.at(0).outcome, ItemOutcome::completed(to->url("new.txt")));
    EXPECT_EQ(service.createEmptyFile(to->url(), "new.txt").items.at(0).outcome,
              ItemOutcome::completed(to->url("new (2).txt")));
    EXPECT_EQ(service.createFolder(to->url(), "folder").overall(), Overall::succeeded);
    const auto rename = [&](const char* name, const char* newName) {
        return service.rename(FileReference::sampling(to->url(name)), newName).items.at(0).outcome;
    };
    EXPECT_EQ(rename("new.txt", "NEW.txt"), ItemOutcome::completed(to->url("NEW.txt"))); // case only
    EXPECT_EQ(rename("folder", "Folder").isSuccess(), true);
    EXPECT_EQ(rename("NEW.txt", "new (2).txt"), ItemOutcome::failed(Error::Case::destinationExists));
    EXPECT_EQ(rename("NEW.txt", "Folder"), ItemOutcome::failed(Error::Case::destinationExists));
    EXPECT_THAT(to->names(), ElementsAre("Folder", "NEW.txt", "new (2).txt"));

    to->file("Folder/inside", "kept");
    SystemTrash trash(SystemTrash::Places{from.url("home/Trash"), from.url("home"), ::geteuid()});
    const auto trashed = trash.moveToTrash(FileReference::sampling(to->url("Folder")));
    ASSERT_TRUE(trashed);
    EXPECT_FALSE(to->exists("Folder"));
    const auto kept = trash.itemAt(*trashed);
    ASSERT_TRUE(kept && kept->original);
    EXPECT_EQ(*kept->original, to->url("Folder"));
    const PutBackItem item{FileReference::sampling(*trashed), {}};
    EXPECT_EQ(putBack(trash, {&item, 1}, MissingFolders::refuse, {}, {}).overall(), Overall::succeeded);
    EXPECT_EQ(to->contents("Folder/inside"), "kept");

    const FileReference all[] = {FileReference::sampling(to->url("Folder")),
                                 FileReference::sampling(to->url("NEW.txt"))};
    EXPECT_EQ(service.deletePermanently(all, {}).overall(), Overall::succeeded);
    EXPECT_THAT(to->names(), ElementsAre("new (2).txt"));
}

TEST_P(RealFileSystem, TellsOfNamesThatItForbidsBeforeAnythingIsCopied) {
    from.folder("top");
    from.file("top/a:b?", "x");
    from.file("top/fine", "y");
    world.answers.errorAnswers = {{ErrorChoice::cancel, false}};
    auto report = world.copy({from.url("top")}, to->url());
    if (!tested.isWindows) {
        EXPECT_EQ(report.overall(), Overall::succeeded);
        EXPECT_THAT(to->names("top"), ElementsAre("a:b?", "fine"));
        return;
    }
    const Error forbidden = Error::invalidName(InvalidNameReason::windowsCharacters);
    ASSERT_EQ(world.answers.errors.size(), 1U);
    EXPECT_EQ(world.answers.errors[0].error, forbidden);
    EXPECT_EQ(world.answers.errors[0].source, from.url("top/a:b?"));
    EXPECT_EQ(report.overall(), Overall::cancelled);
    EXPECT_TRUE(std::ranges::all_of(world.answers.reports,
                                    [](const auto& progress) { return progress.completedBytes == 0; }));
    EXPECT_THAT(to->names(), IsEmpty());

    world.answers.errorAnswers = {{ErrorChoice::skip, false}, {ErrorChoice::skip, false}};
    report = world.copy({from.url("top"), from.url("top/a:b?")}, to->url());
    EXPECT_THAT(to->names(), ElementsAre("top"));
    EXPECT_THAT(to->names("top"), ElementsAre("fine"));
    EXPECT_EQ(report.items.back().outcome, ItemOutcome::failed(forbidden));
    EXPECT_TRUE(from.exists("top/a:b?"));
}

INSTANTIATE_TEST_SUITE_P(On, RealFileSystem, ::testing::ValuesIn(fileSystems),
                         [](const auto& shown) { return std::string(shown.param.name); });

// ---- What a volume cannot take

class Volume : public ::testing::Test {
protected:
    TempTree from;
    TransferWorld world;
};

TEST_F(Volume, WithoutAPlaceForLargeFilesIsFoundOutBefore) {
    const auto volume = TestMount::image("ext2"); // files of 2 TiB at most
    if (!volume) GTEST_SKIP() << volume.error();
    const TempTree to((*volume)->path());
    from.folder("top");
    from.file("top/small", "x");
    const auto huge = from.file("top/huge");
    if (::truncate(huge.path().c_str(), std::int64_t{3} << 40) != 0)
        GTEST_SKIP() << "the temporary folder holds no file of 3 TiB";
    const auto report = world.copy({from.url("top"), huge}, to.url());
    ASSERT_EQ(world.answers.errors.size(), 2U);
    EXPECT_EQ(world.answers.errors[0].error, Error::posix(EFBIG));
    EXPECT_EQ(world.answers.errors[0].source, huge);
    EXPECT_THAT(to.names(), ::testing::Contains("top"));
    EXPECT_THAT(to.names("top"), ElementsAre("small"));
    EXPECT_EQ(report.items.back().outcome, ItemOutcome::failed(Error::posix(EFBIG)));
}

TEST_F(Volume, ThatCountsNoSpaceIsNotTakenForAFullOne) {
    const TempTree backing;
    const auto volume = TestMount::limited(backing.path(), "uncounted");
    if (!volume) GTEST_SKIP() << volume.error();
    const auto report = world.copy({from.file("a", "x"), from.file("b", "y")}, (*volume)->url());
    EXPECT_EQ(report.overall(), Overall::succeeded);
    EXPECT_THAT(world.answers.errors, IsEmpty());
}

TEST_F(Volume, ThatIsReadOnlyIsToldAsSuch) {
    const auto volume = TestMount::image("ext4");
    if (!volume) GTEST_SKIP() << volume.error();
    const TempTree to((*volume)->path());
    const auto there = to.file("there", "kept");
    ASSERT_TRUE((*volume)->setReadOnly(true));
    const auto file = from.file("file", "x");
    const ItemOutcome readOnly = ItemOutcome::failed(Error::Case::readOnlyVolume);
    EXPECT_EQ(world.copy({file}, to.url()).items[0].outcome, readOnly);
    EXPECT_EQ(world.move({file}, to.url()).items[0].outcome, readOnly);
    EXPECT_EQ(world.service.rename(FileReference::sampling(there), "new").items[0].outcome, readOnly);
    EXPECT_EQ(world.service.createFolder(to.url(), "new").items[0].outcome, readOnly);
    const auto item = FileReference::sampling(there);
    EXPECT_EQ(world.service.deletePermanently({&item, 1}, {}).items[0].outcome, readOnly);
    // A move off it is a copy, and says so.
    const auto moved = world.move({there}, from.url()).items[0].outcome;
    EXPECT_EQ(moved.which(), ItemOutcome::Case::copiedSourceKept);
    EXPECT_EQ(from.contents("there"), "kept");
    EXPECT_EQ(from.contents("file"), "x");
    ASSERT_TRUE((*volume)->setReadOnly(false));
}

TEST_F(Volume, ThatBecomesReadOnlyHalfWayLosesNothing) {
    const auto volume = TestMount::image("ext4");
    if (!volume) GTEST_SKIP() << volume.error();
    const TempTree to((*volume)->path());
    from.folder("top");
    for (int i = 0; i < 4; ++i)
        from.fileOfSize("top/" + std::to_string(i), 200'000);
    auto hooks = world.answers.hooks();
    bool isReadOnly = false;
    hooks.progress = [&](const OperationProgress& progress) {
        // No file is open for writing between two items.
        if (!isReadOnly && progress.completedItems == 1) isReadOnly = (*volume)->setReadOnly(true);
    };
    const TransferItem items[] = {FileReference::sampling(from.url("top/0")),
                                  FileReference::sampling(from.url("top/1"))};
    const auto report = world.service.transfer(Kind::copy, items, to.url(), hooks);
    ASSERT_TRUE(isReadOnly);
    EXPECT_TRUE(report.items[0].outcome.isSuccess());
    EXPECT_EQ(report.items[1].outcome, ItemOutcome::failed(Error::Case::readOnlyVolume));
    EXPECT_THAT(to.names(), ElementsAre("0"));
    ASSERT_TRUE((*volume)->setReadOnly(false));
}

} // namespace
} // namespace ombrel
