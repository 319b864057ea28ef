#include "listing/FolderEvents.h"

#include "listing/FolderFingerprint.h"
#include "support/TempTree.h"
#include "support/TestMount.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>

namespace ombrel {

void PrintTo(const FolderEvents::News& news, std::ostream* stream) {
    *stream << (news.changed ? "changed " : "") << (news.gone ? "gone " : "")
            << (news.doubtful ? "doubtful" : "");
}

namespace {

using testing::TempTree;
using testing::TestMount;

constexpr FolderEvents::News none, changed{.changed = true};

/// A folder with a little in it, and what the kernel tells of it. What was done is in the queue when the call
/// that did it returns.
class Events : public ::testing::Test {
protected:
    Events() {
        tree.folder("shown");
        tree.file("shown/file", "text");
        tree.folder("shown/sub");
        tree.file("outside");
        arm("shown");
    }
    void arm(const char* name) {
        const OwnedFd folder(::open(tree.path(name).c_str(), O_PATH | O_CLOEXEC));
        ASSERT_TRUE(events->arm(folder.get()));
    }
    void rename(const char* from, const char* to) const {
        ASSERT_EQ(::rename(tree.path(from).c_str(), tree.path(to).c_str()), 0);
    }

    TempTree tree;
    POSIX::Result<FolderEvents> events = FolderEvents::open();
};

TEST_F(Events, TellWhateverMakesTheListingWrong) {
    const auto path = tree.path("shown/file");
    const std::pair<const char*, std::function<void()>> steps[] = {
        {"a new file", [&] { tree.file("shown/new"); }},
        {"a new folder", [&] { tree.folder("shown/folder"); }},
        {"a new link", [&] { tree.symlink("shown/link", "nowhere"); }},
        {"another name", [&] { rename("shown/new", "shown/newer"); }},
        {"one that is moved in", [&] { rename("outside", "shown/inside"); }},
        {"one that is moved out", [&] { rename("shown/inside", "outside"); }},
        {"a removed file", [&] { ::unlink(tree.path("shown/newer").c_str()); }},
        {"a removed folder", [&] { ::rmdir(tree.path("shown/folder").c_str()); }},
        {"closing after writing", [&] { std::ofstream(path) << "more text"; }},
        {"other permissions", [&] { ::chmod(path.c_str(), 0600); }},
        {"other times", [&] { ::utimensat(AT_FDCWD, path.c_str(), nullptr, 0); }},
        {"other permissions of its own", [&] { ::chmod(tree.path("shown").c_str(), 0700); }},
    };
    for (const auto& [what, step] : steps) {
        EXPECT_EQ(events->read(), none) << "before " << what;
        step();
        EXPECT_EQ(events->read(), changed) << what;
    }
}

TEST_F(Events, DoNotTellWhatTheListingDoesNotShow) {
    {
        std::ofstream open(tree.path("shown/file"), std::ios::app);
        for (int i = 0; i < 10; ++i)
            open << "each single write" << std::flush;
        EXPECT_EQ(events->read(), none);
    }
    EXPECT_EQ(events->read(), changed);
    EXPECT_EQ(tree.contents("shown/file").substr(0, 4), "text");
    EXPECT_EQ(tree.names("shown").size(), 2U);
    tree.file("shown/sub/deeper");
    tree.file("beside");
    rename("beside", "besides");
    EXPECT_EQ(events->read(), none);
}

TEST_F(Events, TellThatTheFolderIsGone) {
    rename("shown", "elsewhere");
    EXPECT_TRUE(events->read().gone);
    arm("elsewhere/sub");
    ASSERT_EQ(::rmdir(tree.path("elsewhere/sub").c_str()), 0);
    EXPECT_TRUE(events->read().gone);

    auto mount = TestMount::tmpfs();
    if (!mount) GTEST_SKIP() << mount.error();
    ASSERT_TRUE(events->arm(OwnedFd(::open((*mount)->path().c_str(), O_PATH | O_CLOEXEC)).get()));
    ASSERT_TRUE((*mount)->unmount());
    EXPECT_TRUE(events->read().gone);
}

TEST_F(Events, RaiseADoubtWhenAFolderGoesThatSomebodyStillHasOpen) {
    arm("shown/sub");
    const OwnedFd open(::open(tree.path("shown/sub").c_str(), O_RDONLY | O_CLOEXEC));
    ASSERT_EQ(::rmdir(tree.path("shown/sub").c_str()), 0);
    EXPECT_EQ(events->read(), (FolderEvents::News{.doubtful = true}));
}

TEST_F(Events, OfWhatIsWatchedAlreadyStayWhenItIsArmedAgain) {
    tree.file("shown/new");
    arm("shown");
    EXPECT_EQ(events->read(), changed);
    arm("shown/sub");
    tree.file("shown/newer");
    EXPECT_EQ(events->read(), none) << "the old folder, which is now the one above";
    arm("shown");
    tree.file("shown/sub/deeper");
    EXPECT_EQ(events->read(), none);
    tree.file("shown/newest");
    EXPECT_EQ(events->read(), changed);
    events->disarm();
    tree.file("shown/last");
    EXPECT_EQ(events->read(), none);
}

TEST(TooManyEvents, CountAsAChangeAndADoubt) {
    auto events = FolderEvents::open();
    const TempTree tree("/dev/shm");
    ASSERT_TRUE(events->arm(OwnedFd(::open(tree.path().c_str(), O_PATH | O_CLOEXEC)).get()));
    for (int i = 0; i < 33'334; ++i) { // made, closed, removed: three events each
        const auto path = tree.path("brief" + std::to_string(i));
        ::close(::open(path.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600));
        ::unlink(path.c_str());
    }
    EXPECT_EQ(events->read(), (FolderEvents::News{.changed = true, .doubtful = true}));
    EXPECT_EQ(events->read(), none);
}

TEST(EventsOfTheRoot, CanBeArmed) {
    auto events = FolderEvents::open();
    const OwnedFd root(::open("/", O_PATH | O_CLOEXEC));
    ASSERT_TRUE(events->arm(root.get()));
    ASSERT_TRUE(events->arm(root.get()));
    EXPECT_FALSE(events->read().gone);
}

// ---- What stands in for events

class Fingerprint : public Events {
protected:
    [[nodiscard]] FolderFingerprint
    taken(FolderFingerprint::Numbers numbers = FolderFingerprint::Numbers::untrusted) const {
        return FolderFingerprint::of(tree.url("shown"), numbers).value();
    }
};

TEST_F(Fingerprint, DiffersAfterEachChange) {
    const auto path = tree.path("shown/file");
    const std::pair<const char*, std::function<void()>> steps[] = {
        {"a new file", [&] { tree.file("shown/new"); }},
        {"another name", [&] { rename("shown/new", "shown/newer"); }},
        {"a removed file", [&] { ::unlink(tree.path("shown/newer").c_str()); }},
        {"another size", [&] { std::ofstream(path, std::ios::app) << "more"; }},
        {"other permissions", [&] { ::chmod(path.c_str(), 0600); }},
        {"another time",
         [&] {
             const timespec times[2] = {{1, 2}, {3, 4}};
             ::utimensat(AT_FDCWD, path.c_str(), times, 0);
         }},
        {"two sizes exchanged",
         [&] {
             tree.file("shown/a", "1");
             tree.file("shown/b", "22");
         }},
    };
    for (const auto& [what, step] : steps) {
        const auto before = taken();
        EXPECT_EQ(before, taken()) << "before " << what;
        step();
        EXPECT_NE(before, taken()) << what;
    }
    const auto before = taken();
    rename("shown/a", "shown/c");
    rename("shown/b", "shown/a");
    rename("shown/c", "shown/b");
    EXPECT_NE(before, taken()) << "the same names, with each other's facts";
}

TEST_F(Fingerprint, KnowsAFileThatTookTheNameOfATwinWhereNumbersCanBeTrusted) {
    using Numbers = FolderFingerprint::Numbers;
    const auto twin = [&](const char* name) {
        tree.file(name, "text");
        const timespec times[2] = {{1, 0}, {1, 0}};
        ASSERT_EQ(::utimensat(AT_FDCWD, tree.path(name).c_str(), times, 0), 0);
    };
    twin("shown/twin");
    twin("other");
    const auto trusting = taken(Numbers::trusted), careful = taken();
    rename("other", "shown/twin");
    EXPECT_NE(trusting, taken(Numbers::trusted));
    EXPECT_EQ(careful, taken());
}

TEST_F(Fingerprint, IsNotTakenOfWhatCannotBeReadOrAfterAStop) {
    const auto failure = [](const FileURL& url, const std::stop_token& stop = {}) {
        return FolderFingerprint::of(url, FolderFingerprint::Numbers::trusted, stop).error().number;
    };
    EXPECT_EQ(failure(tree.url("none")), ENOENT);
    EXPECT_EQ(failure(tree.url("outside")), ENOTDIR);
    std::stop_source stopped;
    stopped.request_stop();
    EXPECT_EQ(failure(tree.url("shown"), stopped.get_token()), ECANCELED);
}

} // namespace
} // namespace ombrel
