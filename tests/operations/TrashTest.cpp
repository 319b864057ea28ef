#include "operations/PuttingBack.h"
#include "operations/SystemTrash.h"
#include "operations/TrashInfo.h"
#include "operations/Trashing.h"
#include "support/ChildProcess.h"
#include "support/FaultAt.h"
#include "support/ScriptedAnswers.h"
#include "support/TempTree.h"
#include "support/TestMount.h"
#include "support/Unprivileged.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <memory>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;
using ::testing::StartsWith;
using Error = FileOperationError;
using Overall = OperationReport::Overall;
using Reason = TrashUnavailableReason;

/// A home with a trash of its own, and no mounts but those inside the tree: the machine's own trash is never
/// touched.
class TrashWorld : public ::testing::Test {
protected:
    TempTree tree;
    FileURL home = tree.folder("home");
    uid_t user = ::geteuid();

    SystemTrash trash() const {
        const SystemTrash::Places places{home.appending("Trash"), home, user};
        return SystemTrash(places, [root = tree.path()] { return mountsBelow(root); });
    }

    static MountTable mountsBelow(const std::string& root) {
        std::ifstream lines("/proc/self/mountinfo");
        std::string text, line;
        while (std::getline(lines, line))
            if (line.find(root) != std::string::npos) text += line + "\n";
        return *MountTable::fromText(text);
    }

    static std::expected<FileURL, TrashFailure> trashed(SystemTrash& system, const FileURL& url) {
        return system.moveToTrash(FileReference::sampling(url));
    }
    std::expected<FileURL, TrashFailure> trashed(const FileURL& url) const {
        auto system = trash();
        return trashed(system, url);
    }
    std::optional<Reason> refused(const FileURL& url) const {
        const auto moved = trashed(url);
        if (moved || moved.error().error != Error(Error::Case::trashUnavailable)) return std::nullopt;
        return moved.error().reason;
    }
    std::string inTree(const FileURL& url) const { return url.path().substr(tree.path().size() + 1); }
    /// "original > location" of each item, in the order of the listing.
    std::vector<std::string> listed(SystemTrash& system) const {
        std::vector<std::string> lines;
        for (const auto& item : system.list(TrashSizes::known, {}).items)
            lines.push_back((item.original ? inTree(*item.original) : "?") + " > " + inTree(item.location));
        std::ranges::sort(lines);
        return lines;
    }
};

// ---- The record

TEST(TrashInfoText, IsByteExact) {
    ::setenv("TZ", "UTC", 1);
    ::tzset();
    EXPECT_EQ((TrashInfo{"/a b/\xC3\xBC%\n~-._(1)", 0}.text()),
              "[Trash Info]\nPath=/a%20b/%C3%BC%25%0A~-._%281%29\nDeletionDate=1970-01-01T00:00:00\n");
    for (const std::string path : {"/a", "rel/b", "/\xFF\x01;=[x]"}) {
        const TrashInfo info{path, 1700000000};
        EXPECT_EQ(TrashInfo::parse(info.text()), info);
    }
}

TEST(TrashInfoText, IsReadTolerantly) {
    const auto path = [](std::string_view text) {
        const auto info = TrashInfo::parse(text);
        return info ? info->path : "none";
    };
    EXPECT_EQ(path("[Trash Info]\nPath=/a\nPath=/b\n"), "/a");
    EXPECT_EQ(path("[Trash Info]\r\nX=1\r\nDeletionDate=junk\r\nPath = /a%20b"), "/a b");
    EXPECT_EQ(path("# c\n[Other]\nPath=/x\n[Trash Info]\nPath=y"), "y");
    for (const auto* text :
         {"", "Path=/a", "[Trash Info]\n", "[Trash Info]\nPath=\n", "[Trash Info]\nPath=/a%2\n",
          "[Trash Info]\nPath=/a%00b\n", "[Trash Info]\nPath=../x\n", "[Trash Info]\nPath=/a/../b\n",
          "[Trash Info]\nPath=/a/%2E%2E\n"})
        EXPECT_EQ(path(text), "none") << text;

    const auto date = [](const std::string& text) {
        return TrashInfo::parse("[Trash Info]\nPath=/a\nDeletionDate=" + text)->deletedAt;
    };
    EXPECT_EQ(date("1970-01-02T00:00:01"), 86401);
    EXPECT_EQ(date("19700102T00:00:01"), 86401);
    for (const auto* text : {"", "yesterday", "2026-13-01T00:00:00", "2026-01-01", "0000-00-00T00:00:00"})
        EXPECT_EQ(date(text), std::nullopt) << text;
}

// ---- Where an item goes

TEST_F(TrashWorld, HomeTrashIsMadeAndKeepsTheItemAsItWas) {
    const auto file = tree.file("home/\xFF n\xC3\xA4me.txt", "contents");
    ::chmod(file.path().c_str(), 0421);
    struct stat before, after;
    ::stat(file.path().c_str(), &before);
    const auto moved = trashed(file);
    ASSERT_TRUE(moved);
    EXPECT_EQ(inTree(*moved), "home/Trash/files/\xFF n\xC3\xA4me.txt");
    EXPECT_FALSE(tree.exists("home/\xFF n\xC3\xA4me.txt"));
    ASSERT_EQ(::stat(moved->path().c_str(), &after), 0);
    EXPECT_EQ(after.st_mode, before.st_mode);
    EXPECT_EQ(after.st_mtim.tv_nsec, before.st_mtim.tv_nsec);
    for (const auto* folder : {"home/Trash", "home/Trash/files", "home/Trash/info"}) {
        ::stat(tree.path(folder).c_str(), &after);
        EXPECT_EQ(after.st_mode & 07777, 0700U) << folder;
    }
    const auto record = tree.contents("home/Trash/info/\xFF n\xC3\xA4me.txt.trashinfo");
    EXPECT_THAT(record, MatchesRegex("\\[Trash Info\\]\nPath=/[^ ]*/home/%FF%20n%C3%A4me.txt\n"
                                     "DeletionDate=....-..-..T..:..:..\n"));
}

TEST_F(TrashWorld, NamesInTheTrashAreNeverTakenTwice) {
    auto system = trash();
    const std::string longName(255, 'n'), longCharacters = "a" + [] {
        std::string text;
        for (int i = 0; i < 127; ++i)
            text += "\xC3\xA9";
        return text;
    }();
    std::vector<std::string> names;
    for (int i = 0; i < 3; ++i)
        for (const auto& name : {std::string("a.txt"), longName, longCharacters})
            names.push_back(std::string(trashed(system, tree.file(name, std::to_string(i)))->name()));
    EXPECT_EQ(names[0] + names[3] + names[6], "a.txta (2).txta (3).txt");
    std::ranges::sort(names);
    EXPECT_EQ(std::ranges::adjacent_find(names), names.end());
    // What somebody left in "files" without a record is not overwritten either.
    tree.file("home/Trash/files/b", "orphan");
    EXPECT_EQ(trashed(system, tree.file("b", "new"))->name(), "b (2)");
    EXPECT_EQ(tree.contents("home/Trash/files/b"), "orphan");
    EXPECT_EQ(listed(system).size(), 11U);
    EXPECT_EQ(listed(system)[0], "? > home/Trash/files/b");
}

TEST_F(TrashWorld, LinksInThePathAreResolvedInTheRecord) {
    tree.folder("real");
    tree.file("real/f");
    tree.symlink("link", "real");
    auto system = trash();
    ASSERT_TRUE(trashed(system, tree.url("link/f")));
    EXPECT_THAT(listed(system), ElementsAre("real/f > home/Trash/files/f"));
    ASSERT_TRUE(trashed(system, tree.url("link"))); // the link itself, not what it leads to
    EXPECT_TRUE(tree.exists("real"));
}

TEST_F(TrashWorld, RefusesWhatMustNotBeTrashed) {
    const auto inside = trashed(tree.file("x"));
    ASSERT_TRUE(inside);
    EXPECT_EQ(refused(*inside), Reason::inTrash);
    EXPECT_EQ(refused(home.appending("Trash")), Reason::isTrash);
    EXPECT_EQ(refused(home.appending("Trash").appending("files")), Reason::isTrash);
    EXPECT_EQ(refused(home), Reason::isHome);
    EXPECT_EQ(refused(tree.url()), Reason::holdsTrash);
    EXPECT_EQ(refused(FileURL()), Reason::isMountPoint);
    EXPECT_EQ(trashed(tree.url("home/..")).error().error, Error::invalidName(InvalidNameReason::reserved));
    EXPECT_EQ(trashed(tree.url("gone")).error().error, Error(Error::Case::sourceMissing));
    EXPECT_EQ(refused(*FileURL::fromPath("/proc/self/status")), Reason::notSupported);
    EXPECT_TRUE(tree.exists("home/Trash/files/x"));
}

class VolumeTrash : public TrashWorld {
protected:
    std::unique_ptr<TestMount> volume;
    std::string own = ".Trash-" + std::to_string(user);

    void SetUp() override {
        auto made = TestMount::tmpfs(tree.path("volume"));
        if (!made) GTEST_SKIP() << made.error();
        volume = std::move(*made);
        tree.folder("volume/d");
        tree.file("volume/d/f", "f");
    }
    /// Where "d/f" of the volume goes.
    std::string goesTo() const {
        const auto moved = trashed(tree.url("volume/d/f"));
        return moved ? inTree(*moved) : "refused";
    }
};

TEST_F(VolumeTrash, IsTheUsersOwnFolderWithRelativeRecords) {
    EXPECT_EQ(goesTo(), "volume/" + own + "/files/f");
    EXPECT_THAT(tree.contents("volume/" + own + "/info/f.trashinfo"), StartsWith("[Trash Info]\nPath=d/f\n"));
    EXPECT_FALSE(tree.exists("home/Trash"));
    auto system = trash();
    EXPECT_THAT(listed(system), ElementsAre("volume/d/f > volume/" + own + "/files/f"));
    EXPECT_EQ(refused(tree.url("volume")), Reason::isMountPoint);
    EXPECT_EQ(refused(tree.url("volume/" + own)), Reason::isTrash);
    EXPECT_EQ(refused(tree.url("volume/" + own + "/files/f")), Reason::inTrash);
    EXPECT_EQ(refused(tree.url("volume/" + own + "/info")), Reason::isTrash);
}

TEST_F(VolumeTrash, IsTheSharedOneWhereItIsSafe) {
    tree.folder("volume/.Trash");
    ::chmod(tree.path("volume/.Trash").c_str(), 01777);
    EXPECT_EQ(goesTo(), "volume/.Trash/" + std::to_string(user) + "/files/f");
    auto system = trash();
    EXPECT_EQ(listed(system).size(), 1U);
}

TEST_F(VolumeTrash, PassesOverAnUnsafeSharedOne) {
    tree.folder("volume/.Trash"); // without the sticky bit
    EXPECT_EQ(goesTo(), "volume/" + own + "/files/f");
    EXPECT_THAT(tree.names("volume/.Trash"), IsEmpty());
    ::rmdir(tree.path("volume/.Trash").c_str());
    tree.folder("elsewhere");
    ::chmod(tree.path("elsewhere").c_str(), 01777);
    tree.symlink("volume/.Trash", "../elsewhere");
    tree.file("volume/d/f");
    EXPECT_EQ(goesTo(), "volume/" + own + "/files/f (2)");
    EXPECT_THAT(tree.names("elsewhere"), IsEmpty());
}

TEST_F(VolumeTrash, IsNotTakenFromSomebodyElse) {
    tree.folder("elsewhere");
    tree.symlink("volume/" + own, "../elsewhere");
    EXPECT_EQ(refused(tree.url("volume/d/f")), Reason::unsafe);
    ::unlink(tree.path("volume/" + own).c_str());
    tree.folder("volume/" + own);
    ASSERT_EQ(::chown(tree.path("volume/" + own).c_str(), 12345, 12345), 0);
    EXPECT_EQ(refused(tree.url("volume/d/f")), Reason::unsafe);
    EXPECT_EQ(tree.contents("volume/d/f"), "f");
    ::rmdir(tree.path("volume/" + own).c_str());
    tree.folder("volume/" + own);
    tree.symlink("volume/" + own + "/files", "../../elsewhere");
    EXPECT_EQ(refused(tree.url("volume/d/f")), Reason::unsafe);
    EXPECT_THAT(tree.names("elsewhere"), IsEmpty());
}

TEST_F(VolumeTrash, CannotBeMadeByAUserWhoMayNotWriteAtTheTop) {
    ::chmod(tree.path("volume/d").c_str(), 0777);
    ::chmod(tree.path("volume").c_str(), 0755);
    ::chmod(tree.path().c_str(), 0755);
    EXPECT_TRUE(asNobody([&] {
        user = ::geteuid();
        return refused(tree.url("volume/d/f")) == Reason::noPermission;
    }));
    tree.folder("volume/.Trash");
    ::chmod(tree.path("volume/.Trash").c_str(), 01777);
    EXPECT_TRUE(asNobody([&] {
        user = ::geteuid();
        return goesTo() == "volume/.Trash/65534/files/f";
    }));
}

TEST_F(VolumeTrash, OfAReadOnlyVolumeIsUnavailable) {
    ASSERT_EQ(std::system(("mount -o remount,ro '" + volume->path() + "'").c_str()), 0);
    EXPECT_EQ(refused(tree.url("volume/d/f")), Reason::readOnly);
}

TEST_F(VolumeTrash, OfABindMountIsThatMountsOwn) {
    tree.folder("source");
    tree.file("source/f");
    const auto bound = TestMount::bind(tree.path("source"), tree.path("bound"));
    ASSERT_TRUE(bound);
    // The device is that of the home trash, and still no rename leads out of the mount.
    EXPECT_EQ(inTree(*trashed(tree.url("bound/f"))), "bound/" + own + "/files/f");
    EXPECT_THAT(tree.names("home/Trash/info"), IsEmpty());
    auto system = trash();
    EXPECT_THAT(listed(system), ElementsAre("bound/f > bound/" + own + "/files/f"));
}

// ---- Listing

TEST_F(TrashWorld, ListingShowsEmergenciesAndTellsStaleRecordsApart) {
    auto system = trash();
    EXPECT_THAT(listed(system), IsEmpty());
    ASSERT_TRUE(trashed(system, tree.file("kept")));
    tree.file("home/Trash/files/orphan");
    tree.file("home/Trash/files/broken");
    tree.file("home/Trash/info/broken.trashinfo", "[Trash Info]\nPath=../up\n");
    tree.file("home/Trash/info/stale.trashinfo", "[Trash Info]\nPath=/x\n");
    tree.file("home/Trash/info/unrelated");
    tree.file("home/Trash/files/relative");
    tree.file("home/Trash/info/relative.trashinfo", "[Trash Info]\nPath=sub/x\nDeletionDate=junk\n");
    EXPECT_THAT(listed(system),
                ElementsAre("? > home/Trash/files/broken", "? > home/Trash/files/orphan",
                            "home/sub/x > home/Trash/files/relative", "kept > home/Trash/files/kept"));
    const auto listing = system.list(TrashSizes::known, {});
    ASSERT_EQ(listing.staleRecords.size(), 1U);
    EXPECT_EQ(inTree(listing.staleRecords[0]), "home/Trash/info/stale.trashinfo");
    EXPECT_EQ(system.itemAt(tree.url("home/Trash/files/kept"))->original, tree.url("kept"));
    EXPECT_EQ(system.itemAt(tree.url("home/Trash/files/gone")), std::nullopt);
    EXPECT_EQ(system.itemAt(tree.file("plain")), std::nullopt);
}

TEST_F(TrashWorld, SizesOfFoldersAreCountedOnceAndKept) {
    auto system = trash();
    tree.folder("big\n");
    tree.folder("big\n/sub");
    tree.fileOfSize("big\n/sub/f", 100000);
    const auto moved = trashed(system, tree.url("big\n"));
    ASSERT_TRUE(moved);
    const auto size = [&](TrashSizes sizes) { return system.list(sizes, {}).items.at(0).size; };
    EXPECT_EQ(size(TrashSizes::known), std::nullopt);
    const auto counted = size(TrashSizes::counted);
    ASSERT_TRUE(counted);
    EXPECT_GE(*counted, 100000);
    struct stat facts;
    ::stat(tree.path("home/Trash/info/big\n.trashinfo").c_str(), &facts);
    EXPECT_EQ(tree.contents("home/Trash/directorysizes"),
              std::to_string(*counted) + " " + std::to_string(facts.st_mtime) + " big%0A\n");
    EXPECT_EQ(size(TrashSizes::known), counted);
    // A record of another time makes the entry stale.
    tree.file("home/Trash/directorysizes",
              "1 " + std::to_string(facts.st_mtime - 1) + " big%0A\nx y z\n7\n1 2 gone\n");
    EXPECT_EQ(size(TrashSizes::known), std::nullopt);
    EXPECT_EQ(size(TrashSizes::counted), counted);
    EXPECT_EQ(tree.contents("home/Trash/directorysizes").find("gone"), std::string::npos);
}

// ---- Jobs

TEST_F(TrashWorld, JobReportsBothPlacesAndTheReason) {
    auto system = trash();
    const FileReference items[] = {FileReference::sampling(tree.file("a")), FileReference::sampling(home),
                                   FileReference::sampling(tree.file("b"))};
    ScriptedAnswers answers;
    answers.errorAnswers = {{ErrorChoice::retry, true}, {ErrorChoice::skip, false}};
    const auto report = moveToTrash(system, items, answers.hooks());
    ASSERT_EQ(report.items.size(), 3U);
    EXPECT_EQ(report.items[0],
              (ItemResult{tree.url("a"), ItemOutcome::completed(tree.url("home/Trash/files/a"))}));
    EXPECT_EQ(report.items[1].outcome, ItemOutcome::failed(Error::Case::trashUnavailable));
    EXPECT_EQ(report.items[1].facts.trashReason, Reason::isHome);
    EXPECT_EQ(answers.errors.size(), 2U);
    EXPECT_EQ(answers.reports.back().phase, OperationProgress::Phase::trashing);
    EXPECT_EQ(answers.reports.back().fraction(), 1.0);
}

TEST_F(TrashWorld, EmptyingRemovesItemsAndRecordsButNoEmergencies) {
    auto system = trash();
    tree.folder("d");
    tree.file("d/f");
    ASSERT_TRUE(trashed(system, tree.url("d")));
    ASSERT_TRUE(trashed(system, tree.file("f")));
    tree.file("home/Trash/files/orphan");
    tree.file("home/Trash/info/fresh.trashinfo", "[Trash Info]\nPath=/x\n");
    tree.file("home/Trash/info/stale.trashinfo", "[Trash Info]\nPath=/x\n");
    const timespec hourAgo[2] = {{std::time(nullptr) - 3600, 0}, {std::time(nullptr) - 3600, 0}};
    ::utimensat(AT_FDCWD, tree.path("home/Trash/info/stale.trashinfo").c_str(), hourAgo, 0);
    tree.folder("home/Trash/expunged");
    tree.file("home/Trash/expunged/123");
    const auto emptied = emptyTrash(system, {});
    EXPECT_EQ(emptied.report.overall(), Overall::succeeded);
    EXPECT_EQ(emptied.report.items.size(), 2U);
    EXPECT_THAT(emptied.unrecorded, ElementsAre(tree.url("home/Trash/files/orphan")));
    EXPECT_THAT(tree.names("home/Trash/files"), ElementsAre("orphan"));
    EXPECT_THAT(tree.names("home/Trash/info"), ElementsAre("fresh.trashinfo"));
    EXPECT_THAT(tree.names("home/Trash/expunged"), IsEmpty());
}

// ---- Putting back

class PutBack : public TrashWorld {
protected:
    SystemTrash system = trash();
    ScriptedAnswers answers;

    ItemResult putBack(const FileURL& location, MissingFolders folders = MissingFolders::refuse) {
        const PutBackItem item{FileReference::sampling(location), std::nullopt};
        return ombrel::putBack(system, {&item, 1}, folders, answers.hooks()).items.at(0);
    }
    FileURL trashedFile(const std::string& name, std::string_view contents) {
        return *trashed(system, tree.file(name, contents));
    }
};

TEST_F(PutBack, ReturnsTheItemAndDropsItsRecord) {
    tree.folder("d");
    tree.file("d/f", "x");
    const auto location = *trashed(system, tree.url("d"));
    EXPECT_EQ(putBack(location), (ItemResult{location, ItemOutcome::completed(tree.url("d"))}));
    EXPECT_EQ(tree.contents("d/f"), "x");
    EXPECT_THAT(tree.names("home/Trash/info"), IsEmpty());
    EXPECT_EQ(putBack(location).outcome, ItemOutcome::failed(Error::Case::sourceMissing));
    EXPECT_EQ(putBack(tree.url("d")).outcome,
              ItemOutcome::failed(Error::Case::sourceMissing)); // not in a trash
    EXPECT_TRUE(tree.exists("d"));
}

TEST_F(PutBack, NeverOverwrites) {
    const auto location = trashedFile("a.txt", "old");
    tree.file("a.txt", "new");
    EXPECT_EQ(putBack(location).outcome, ItemOutcome::skipped());
    ASSERT_EQ(answers.conflicts.size(), 1U);
    EXPECT_EQ(answers.conflicts[0].existing, tree.url("a.txt"));
    EXPECT_TRUE(system.itemAt(location)->original);

    answers.conflictAnswers = {{ConflictChoice::keepBoth, false}};
    tree.file("a (2).txt");
    EXPECT_EQ(putBack(location).outcome, ItemOutcome::completed(tree.url("a (3).txt")));
    EXPECT_EQ(tree.contents("a.txt") + tree.contents("a (3).txt"), "newold");
}

TEST_F(PutBack, ReplacingSendsWhatIsThereToTheTrash) {
    const auto location = trashedFile("a", "old");
    tree.file("a", "new");
    answers.conflictAnswers = {{ConflictChoice::replace, false}};
    EXPECT_EQ(putBack(location).outcome, ItemOutcome::completed(tree.url("a")));
    EXPECT_EQ(tree.contents("a"), "old");
    EXPECT_EQ(tree.contents("home/Trash/files/a (2)"), "new");
    EXPECT_THAT(listed(system), ElementsAre("a > home/Trash/files/a (2)"));
}

TEST_F(PutBack, MakesMissingFoldersOnlyWhenAsked) {
    tree.folder("d");
    tree.folder("d/e");
    const auto location = trashedFile("d/e/f", "x");
    ::rmdir(tree.path("d/e").c_str());
    ::rmdir(tree.path("d").c_str());
    EXPECT_EQ(putBack(location).outcome, ItemOutcome::failed(Error::Case::destinationMissing));
    EXPECT_FALSE(tree.exists("d"));
    EXPECT_TRUE(putBack(location, MissingFolders::make).outcome.isSuccess());
    EXPECT_EQ(tree.contents("d/e/f"), "x");
}

TEST_F(PutBack, LeavesAnItemWithoutARecord) {
    trashedFile("a", "x");
    const auto orphan = tree.file("home/Trash/files/orphan", "kept");
    const auto result = putBack(orphan);
    EXPECT_EQ(result.outcome, ItemOutcome::failed(Error::Case::trashUnavailable));
    EXPECT_EQ(result.facts.trashReason, Reason::noRecord);
    EXPECT_EQ(tree.contents("home/Trash/files/orphan"), "kept");
}

TEST_F(PutBack, LeavesTheItemWholeInOnePlaceWhateverFails) {
    for (const int error : {EIO, ENOSPC, EACCES, ESTALE, EXDEV})
        for (int nth = 0, calls = 0; nth <= calls; ++nth) {
            const auto location = trashedFile("f", "x");
            const PutBackItem item{FileReference::sampling(location), std::nullopt};
            std::optional<OperationReport> report;
            {
                const FaultAt fault(nth, {.errorNumber = error});
                report = ombrel::putBack(system, {&item, 1}, MissingFolders::refuse, {});
                if (nth == 0) calls = fault.seen();
            }
            const bool isBack = tree.exists("f");
            EXPECT_EQ(report->items[0].outcome.isSuccess(), isBack) << nth;
            EXPECT_EQ(tree.contents(isBack ? "f" : inTree(location)), "x") << nth;
            EXPECT_EQ(isBack, !tree.exists(inTree(location))) << nth;
            EXPECT_TRUE(isBack || system.itemAt(location)->original == tree.url("f")) << nth;
            ::unlink((isBack ? tree.path("f") : location.path()).c_str());
            system.forget({&location, 1});
        }
}

// ---- Every call fails once

class TrashFaults : public TrashWorld, public ::testing::WithParamInterface<SystemCall::Fault> {};

TEST_P(TrashFaults, LeaveTheItemWholeInOnePlace) {
    int calls = 0;
    tree.folder("d");
    for (int nth = 0; nth <= calls; ++nth) {
        tree.file("d/f", "contents");
        std::optional<std::expected<FileURL, TrashFailure>> moved;
        {
            const FaultAt fault(nth, GetParam());
            moved = trashed(tree.url("d"));
            if (nth == 0) calls = fault.seen();
        }
        auto system = trash();
        if (*moved) {
            EXPECT_FALSE(tree.exists("d")) << nth;
            EXPECT_EQ(tree.contents(inTree(**moved) + "/f"), "contents") << nth;
            EXPECT_THAT(listed(system), ElementsAre("d > home/Trash/files/d")) << nth;
            ASSERT_EQ(::rename((*moved)->path().c_str(), tree.path("d").c_str()), 0);
            const FileURL locations[] = {**moved};
            system.forget(locations);
        } else {
            EXPECT_EQ(tree.contents("d/f"), "contents") << nth;
        }
        EXPECT_THAT(listed(system), IsEmpty()) << nth;
        // A record of nothing may stay only where removing it was what failed.
        if (tree.exists("home/Trash/info")) {
            EXPECT_THAT(tree.names("home/Trash/info"), IsEmpty()) << nth;
        }
    }
    EXPECT_GT(calls, 10);
}

INSTANTIATE_TEST_SUITE_P(Errors, TrashFaults,
                         ::testing::Values(SystemCall::Fault{EIO, false}, SystemCall::Fault{ENOSPC, false},
                                           SystemCall::Fault{EACCES, false}, SystemCall::Fault{EINTR, false},
                                           SystemCall::Fault{ESTALE, false}, SystemCall::Fault{EXDEV, false},
                                           SystemCall::Fault{0, true}),
                         [](const auto& fault) {
                             return fault.param.isShort ? std::string("Short")
                                                        : "Errno" + std::to_string(fault.param.errorNumber);
                         });

// ---- Other programs

class TrashAndGio : public TrashWorld {
protected:
    std::unique_ptr<TestMount> volume;

    void SetUp() override {
        if (std::system(
                "command -v gio dbus-run-session >/dev/null && test -e /usr/share/gvfs/mounts/trash.mount") !=
            0)
            GTEST_SKIP() << "gio or its trash is not installed";
        auto made = TestMount::image("ext4", tree.path("volume"));
        if (!made) GTEST_SKIP() << made.error();
        volume = std::move(*made);
    }
    /// gio with the tree's home as its user's, in a session of its own. It looks at every mount, so it gets a
    /// view without those of tests beside this one, which may be made to hang.
    std::string gio(const std::string& arguments) const {
        return shellOutput("HOME='" + home.path() + "' XDG_DATA_HOME='" + home.path() +
                           "' GVFS_DISABLE_FUSE=1 unshare -m --propagation private sh -c "
                           "'umount -a -l -t fuse.mirror; exec \"$@\"' sh "
                           "dbus-run-session -- gio " +
                           arguments + " 2>/dev/null");
    }
    /// The URI that gio has for an item by its original place.
    std::string uriOf(const FileURL& original) const {
        std::string lines = gio("trash --list");
        const auto end = lines.find("\t" + original.path() + "\n");
        if (end == std::string::npos) return "not listed in " + lines;
        const auto start = lines.rfind('\n', end);
        return lines.substr(start == std::string::npos ? 0 : start + 1,
                            end - (start == std::string::npos ? 0 : start + 1));
    }
};

TEST_F(TrashAndGio, ReadWhatTheOtherWrote) {
    tree.folder("volume/d");
    const FileURL originals[] = {tree.file("home/a b%.txt", "1"), tree.file("volume/d/c (1)", "2"),
                                 tree.folder("home/folder")};
    auto system = trash();
    for (const auto& url : originals)
        ASSERT_TRUE(trashed(system, url));
    for (const auto& url : originals)
        gio("trash --restore '" + uriOf(url) + "'");
    EXPECT_EQ(tree.contents("home/a b%.txt") + tree.contents("volume/d/c (1)"), "12");
    EXPECT_TRUE(tree.exists("home/folder"));
    EXPECT_THAT(listed(system), IsEmpty());

    for (const auto& url : originals)
        gio("trash '" + url.path() + "'");
    const auto listing = system.list(TrashSizes::known, {});
    std::vector<FileURL> found;
    for (const auto& item : listing.items) {
        EXPECT_TRUE(item.deletedAt && *item.deletedAt > std::time(nullptr) - 86400);
        found.push_back(item.original.value_or(FileURL()));
    }
    EXPECT_THAT(found, ::testing::UnorderedElementsAreArray(originals));
    EXPECT_EQ(emptyTrash(system, {}).report.items.size(), 3U);
    EXPECT_THAT(gio("trash --list"), ::testing::Not(::testing::HasSubstr(tree.path())));
}

} // namespace
} // namespace ombrel
