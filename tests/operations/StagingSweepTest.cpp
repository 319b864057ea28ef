#include "operations/StagingSweep.h"

#include "operations/SetAside.h"
#include "operations/StagingName.h"
#include "support/FolderTrash.h"
#include "support/TempTree.h"
#include "support/TestMount.h"
#include "support/TransferWorld.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <string>

namespace ombrel {
namespace {

using namespace testing;
using std::chrono::seconds;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;
using Clock = std::chrono::system_clock;

class StagingSweep : public ::testing::Test {
protected:
    TempTree tree, bin;
    FolderTrash trash{bin.path()};

    /// The newer of an item's times: modification times can be set to anything, the other cannot.
    Clock::time_point birthOf(const std::string& name) const {
        struct stat facts;
        ::lstat(tree.path(name).c_str(), &facts);
        return Clock::time_point(seconds(facts.st_ctim.tv_sec) +
                                 std::chrono::nanoseconds(facts.st_ctim.tv_nsec));
    }
    void sweepAt(Clock::time_point now) { sweepStaleStaging(tree.url(), seconds(120), now, trash); }
    void sweepLater() { sweepAt(Clock::now() + std::chrono::hours(1)); }

    /// As a job leaves it that dies with `name` set aside. Answers the name it has then.
    std::string setAside(const std::string& name) const {
        const int folder = ::open(tree.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        const auto status = POSIX::lstat(POSIX::Place{folder, name.c_str()});
        SetAside item(folder, name, *status, true);
        const auto away = item.takeAway();
        ::close(folder);
        return away ? item.leftBehind().front() : std::string();
    }
};

TEST_F(StagingSweep, KeepsWhatIsYoungerThanTheMinimumAge) {
    const std::string name = StagingName::make();
    tree.file(name, "half");
    const timespec old[2] = {{1000, 0}, {1000, 0}};
    ::utimensat(AT_FDCWD, tree.path(name).c_str(), old, 0); // as a copy of an old file has it
    const auto birth = birthOf(name);
    sweepAt(birth + seconds(119));
    EXPECT_TRUE(tree.exists(name));
    sweepAt(birth + seconds(121));
    EXPECT_THAT(tree.names(), IsEmpty());
}

TEST_F(StagingSweep, RemovesArchivesThatWereNeverFinished) {
    tree.file(StagingName::makeZip(), "half");
    tree.file(".hom-zip-notes", "mine");
    sweepLater();
    EXPECT_THAT(tree.names(), ElementsAre(".hom-zip-notes"));
}

TEST_F(StagingSweep, RemovesWholeTreesAndNothingThatOnlyLooksAlike) {
    const std::string name = StagingName::make();
    tree.folder(name);
    tree.folder(name + "/closed");
    tree.file(name + "/closed/file");
    tree.file("outside", "kept");
    tree.symlink(name + "/link", tree.path("outside"));
    tree.symlink(StagingName::make(), tree.path("outside"));
    ::chmod(tree.path(name + "/closed").c_str(), 0);
    tree.file(".hom-staging", "a user's");
    tree.file("x.hom-staging-1", "a user's");
    sweepLater();
    EXPECT_THAT(tree.names(), UnorderedElementsAre(".hom-staging", "outside", "x.hom-staging-1"));
    EXPECT_EQ(tree.contents("outside"), "kept");
}

TEST_F(StagingSweep, KeepsWhatALiveJobHolds) {
    const std::string name = StagingName::make();
    tree.file(name, "under way");
    const int job = ::open(tree.path(name).c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(::flock(job, LOCK_SH), 0);
    sweepLater();
    EXPECT_TRUE(tree.exists(name));
    ::close(job);
    sweepLater();
    EXPECT_THAT(tree.names(), IsEmpty());
}

TEST_F(StagingSweep, PutsAnItemThatWasSetAsideBackWhereItsNameIsFree) {
    tree.file("report\n.txt", "only copy");
    ASSERT_NE(setAside("report\n.txt"), "");
    EXPECT_EQ(tree.names().size(), 2U); // the item and its record
    sweepAt(Clock::now());
    EXPECT_FALSE(tree.exists("report\n.txt")) << "a young one may belong to a job that lives";
    sweepLater();
    EXPECT_THAT(tree.names(), ElementsAre("report\n.txt"));
    EXPECT_EQ(tree.contents("report\n.txt"), "only copy");
}

TEST_F(StagingSweep, SendsItToTheTrashWhereItsNameIsTaken) {
    tree.folder("Album.d");
    tree.file("Album.d/song", "old");
    ASSERT_NE(setAside("Album.d"), "");
    tree.file("Album.d", "new");
    sweepLater();
    EXPECT_THAT(tree.names(), ElementsAre("Album.d"));
    EXPECT_EQ(tree.contents("Album.d"), "new");
    EXPECT_THAT(bin.names(), ElementsAre("Album.d (2)"));
    EXPECT_EQ(bin.contents("Album.d (2)/song"), "old");
}

TEST_F(StagingSweep, KeepsItWhereNoTrashTakesIt) {
    tree.file("a", "old");
    const auto aside = setAside("a");
    tree.file("a", "new");
    NoTrash none;
    const auto later = Clock::now() + std::chrono::hours(1);
    for (int time = 0; time < 2; ++time)
        sweepStaleStaging(tree.url(), seconds(120), later, none);
    EXPECT_EQ(tree.contents("a"), "new");
    EXPECT_EQ(tree.contents(aside), "old");
    EXPECT_EQ(tree.names().size(), 3U); // with the record, which a later sweep needs
}

TEST_F(StagingSweep, NeverFollowsARecordToSomethingElse) {
    tree.file("a", "old");
    const auto aside = setAside("a");
    // Somebody has put another file there; it is no more than a stale staging item.
    ASSERT_EQ(::unlink(tree.path(aside).c_str()), 0);
    tree.file(aside, "other contents");
    sweepLater();
    EXPECT_THAT(tree.names(), IsEmpty());
    EXPECT_THAT(bin.names(), IsEmpty());
}

// Seen through a file system that tells of everything as ten minutes old.
TEST_F(StagingSweep, IsMadeByATransferInEveryFolderThatGetsSomething) {
    const auto older = TestMount::limited(tree.path(), "older=600");
    if (!older) GTEST_SKIP() << older.error();
    const TempTree from;
    from.folder("top");
    from.folder("top/sub");
    from.file("top/sub/new", "new");
    tree.folder("top");
    tree.folder("top/sub");
    for (const std::string folder : {"", "top/", "top/sub/"})
        tree.file(folder + StagingName::make(), "half");
    TransferWorld world;
    world.answers.conflictAnswers = {{ConflictChoice::replace, true}};
    EXPECT_EQ(world.copy({from.url("top")}, (*older)->url()).overall(), OperationReport::Overall::succeeded);
    for (const char* folder : {"", "top", "top/sub"})
        EXPECT_THAT(stagingNames(tree.names(folder)), IsEmpty()) << folder;
    EXPECT_EQ(tree.contents("top/sub/new"), "new");
}

} // namespace
} // namespace ombrel
