// Panes whose folder is changed, taken away or refused by others while it is shown.
#include "browser/BrowserModel.h"
#include "browser/ModelWorld.h"
#include "listing/SystemCall.h"
#include "support/FaultAt.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <random>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Place = BrowserModel::Place;

/// A process that changes the entries of a folder at random: makes, writes, renames over one another, removes
/// and changes their permissions.
class Vandal {
public:
    Vandal(const std::string& folder, unsigned seed, int changes) : process_(::fork()) {
        if (process_ != 0) return;
        std::minstd_rand random(seed);
        const int at = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY);
        for (int i = 0; i < changes; ++i)
            change(at, random);
        ::_exit(0);
    }
    Vandal(const Vandal&) = delete;
    Vandal& operator=(const Vandal&) = delete;
    ~Vandal() {
        if (isAtWork()) ::waitpid(process_, nullptr, 0);
    }
    [[nodiscard]] bool isAtWork() {
        if (process_ > 0 && ::waitpid(process_, nullptr, WNOHANG) != 0) process_ = 0;
        return process_ > 0;
    }

private:
    static void change(int at, std::minstd_rand& random) {
        constexpr unsigned names = 60;
        char name[16], other[16];
        (void)std::snprintf(name, sizeof name, "entry %u", static_cast<unsigned>(random() % names));
        (void)std::snprintf(other, sizeof other, "entry %u", static_cast<unsigned>(random() % names));
        switch (random() % 8) {
        case 0:
        case 1:
        case 2: {
            const int file = ::openat(at, name, O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
            if (file >= 0) (void)!::write(file, other, random() % sizeof other);
            ::close(file);
            break;
        }
        case 3: ::mkdirat(at, name, 0700); break;
        case 4: ::renameat(at, name, at, other); break;
        case 5: ::unlinkat(at, name, 0); break;
        case 6: ::unlinkat(at, name, AT_REMOVEDIR); break;
        case 7: ::symlinkat(other, at, name); break;
        }
        if (random() % 16 == 0) ::usleep(2000);
    }

    pid_t process_;
};

/// What a listing says of its items, in its order.
std::vector<std::string> described(const FileItemList& items) {
    std::vector<std::string> lines;
    for (const FileItemView item : items) {
        const auto date = item.modificationDate();
        lines.push_back(
            std::string(item.name()) + " kind " + std::to_string(static_cast<int>(item.kind().which())) +
            " inode " + std::to_string(item.record().inode) + " size " + std::to_string(item.record().size) +
            " time " +
            (date.hasValue()
                 ? std::to_string(date.value().seconds) + "." + std::to_string(date.value().nanoseconds)
                 : "none"));
    }
    return lines;
}

TEST(PaneTorture, EqualsTheDiskOnceOthersAreDoneWithIt) {
    const TempTree tree;
    const auto folder = tree.folder("shown");
    BrowserModel model(realListings());
    model.navigate(folder);
    std::mt19937 random(7);
    for (unsigned round = 0; round < 3; ++round) {
        Vandal vandal(folder.path(), 100 + round, 4000);
        while (vandal.isAtWork()) {
            const auto step = model.generation() + 1;
            (void)runUntil([&] { return !vandal.isAtWork() || model.generation() >= step; });
            if (model.items().empty()) continue;
            // The user is at work too.
            auto selection = model.selection();
            selection.change(random() % model.items().size(), FileSelection::Change::flip);
            model.setSelection(selection);
            model.setRow(Place::current, random() % model.items().size());
            if (random() % 4 == 0) model.setSort({.ascending = random() % 2 == 0});
            if (random() % 4 == 0) model.refresh();
        }
        const auto disk = [&] {
            const SystemCall::Allowed comparing;
            const auto snapshot = DirectoryProvider().load({.url = folder, .sort = model.sort()});
            return snapshot ? described(snapshot->items()) : std::vector<std::string>();
        }();
        ASSERT_GT(disk.size(), 5U);
        EXPECT_TRUE(runUntil([&] { return described(model.items()) == disk; }))
            << "round " << round << ": the pane differs from the disk";
        EXPECT_EQ(model.listingState(), ListingState::Case::loaded);
        EXPECT_EQ(model.selection().items().size(), model.selection().count());
        if (const auto row = model.row(Place::current)) {
            EXPECT_LT(*row, model.items().size());
        }
    }
}

// ---- Refusals

/// The main thread, and with it every worker that it starts, without root's privileges.
class Commoner {
public:
    Commoner() { isOne_ = ::syscall(SYS_setresuid, -1, nobody, 0) == 0; }
    ~Commoner() {
        if (isOne_) ::syscall(SYS_setresuid, -1, 0, -1);
    }
    Commoner(const Commoner&) = delete;
    Commoner& operator=(const Commoner&) = delete;
    [[nodiscard]] bool isOne() const { return isOne_ && ::geteuid() != 0; }

    static constexpr uid_t nobody = 65534;

private:
    bool isOne_;
};

TEST(PaneRefused, HidesWhatMayNotBeSeenAnyMoreAndComesBackAsItWas) {
    const TempTree tree;
    const auto folder = tree.folder("shown");
    tree.file("shown/a");
    tree.file("shown/b");
    ASSERT_EQ(::chmod(tree.path().c_str(), 0755), 0);
    if (::geteuid() == 0) {
        ASSERT_EQ(::chown(folder.path().c_str(), Commoner::nobody, 0), 0);
    }
    const Commoner commoner;
    if (::getuid() == 0 && !commoner.isOne()) GTEST_SKIP() << "this machine does not let root become another";

    BrowserModel model(realListings());
    model.navigate(folder);
    ASSERT_TRUE(runUntilLoaded(model));
    select(model, {"b"});
    const auto denied = ListingState::failed(DirectoryError::Case::permissionDenied);
    ASSERT_EQ(::chmod(folder.path().c_str(), 0000), 0);
    ASSERT_TRUE(runUntil([&] { return model.listingState() == denied; })) << "without being asked";
    EXPECT_THAT(namesOf(model.items()), IsEmpty());
    EXPECT_TRUE(model.selection().empty());
    model.refresh();
    ASSERT_TRUE(runUntilQuiet());
    EXPECT_EQ(model.listingState(), denied);

    ASSERT_EQ(::chmod(folder.path().c_str(), 0700), 0);
    model.refresh();
    ASSERT_TRUE(runUntilLoaded(model));
    EXPECT_THAT(namesOf(model.items()), ElementsAre("a", "b"));
    EXPECT_THAT(selectedNames(model), ElementsAre("b"));

    // Its names may be read and nothing of them: each is shown with its error.
    ASSERT_EQ(::chmod(folder.path().c_str(), 0400), 0);
    ASSERT_TRUE(runUntil([&] { return model.unreadableCount() == 2; }));
    EXPECT_THAT(namesOf(model.items()), ElementsAre("a", "b"));
    ASSERT_EQ(::chmod(folder.path().c_str(), 0700), 0);
    EXPECT_TRUE(runUntil([&] { return model.unreadableCount() == 0; }));
    ASSERT_TRUE(runUntilQuiet());
}

TEST(PaneRefused, EndsEachListingThatFailsAtAnyPointAndRecovers) {
    const TempTree tree;
    const auto folder = tree.folder("shown");
    for (const char* name : {"shown/a", "shown/b", "shown/c"})
        tree.file(name);
    tree.symlink("shown/link", "b");
    BrowserModel model(realListings());
    const auto isOver = [&] { return model.listingState() != ListingState::Case::loading; };
    const auto openAndRefresh = [&] {
        model.navigate(folder);
        ASSERT_TRUE(runUntil(isOver));
        ASSERT_TRUE(runUntilQuiet());
        model.refresh();
        ASSERT_TRUE(runUntilQuiet());
        ASSERT_TRUE(isOver());
    };
    int calls = 0;
    {
        const FaultAt counting(0, {});
        openAndRefresh();
        calls = counting.seen();
    }
    ASSERT_GT(calls, 10);
    for (const int error : {EIO, EACCES, ENOENT, EMFILE}) {
        for (const auto lasting : {Lasting::once, Lasting::everything}) {
            for (int nth = 1; nth <= calls; ++nth) {
                SCOPED_TRACE("error " + std::to_string(error) + " at call " + std::to_string(nth));
                {
                    const FaultAt fault(nth, {.errorNumber = error}, lasting);
                    openAndRefresh();
                }
                if (model.listingState() == ListingState::Case::loaded) {
                    EXPECT_LE(model.items().size(), 4U);
                }
                // A watch that could not be had leaves the folder to be looked at, or to be refreshed.
                model.refresh();
                ASSERT_TRUE(runUntilQuiet());
                ASSERT_TRUE(runUntilLoaded(model));
                ASSERT_THAT(namesOf(model.items()), ElementsAre("a", "b", "c", "link"));
                ASSERT_EQ(model.unreadableCount(), 0);
            }
        }
    }
}

} // namespace
} // namespace ombrel
