#include "listing/POSIXRename.h"

#include "support/FaultAt.h"
#include "support/TempTree.h"
#include "support/TestMount.h"

#include <fcntl.h>
#include <gmock/gmock.h>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// What a driver refuses: the flag that says not to replace, and perhaps hard links too.
struct Driver {
    const char* label;
    bool hasFlag;
    bool hasLinks;
};

/// The first rename of a test, and all its links, answer as the driver would.
class Refusing final : public SystemCall::Interceptor {
public:
    explicit Refusing(const Driver& driver) : driver_(driver) { SystemCall::intercept(this); }
    ~Refusing() override { SystemCall::intercept(nullptr); }
    std::optional<SystemCall::Fault> before(SystemCall::Kind kind) override {
        if (kind == SystemCall::Kind::rename && !driver_.hasFlag && !wasRefused_) {
            wasRefused_ = true;
            return SystemCall::Fault{.errorNumber = EINVAL};
        }
        if (kind == SystemCall::Kind::link && !driver_.hasLinks)
            return SystemCall::Fault{.errorNumber = EPERM};
        return std::nullopt;
    }

private:
    const Driver& driver_;
    bool wasRefused_ = false;
};

int renamed(const TempTree& tree, std::string_view from, std::string_view to, const Driver& driver) {
    const Refusing refusing(driver);
    const auto source = tree.path(from), target = tree.path(to);
    const auto result = POSIX::renameExclusive({AT_FDCWD, source.c_str()}, {AT_FDCWD, target.c_str()});
    return result ? 0 : result.error().number;
}

class RenameExclusive : public ::testing::TestWithParam<Driver> {};

TEST_P(RenameExclusive, MovesFilesLinksAndFullFolders) {
    const TempTree tree;
    tree.file("file", "contents");
    tree.symlink("link", "nowhere");
    tree.folder("folder");
    tree.file("folder/inside");
    EXPECT_EQ(renamed(tree, "file", "file2", GetParam()), 0);
    EXPECT_EQ(renamed(tree, "link", "link2", GetParam()), 0);
    EXPECT_EQ(renamed(tree, "folder", "folder2", GetParam()), 0);
    EXPECT_THAT(tree.names(), ElementsAre("file2", "folder2", "link2"));
    EXPECT_THAT(tree.names("folder2"), ElementsAre("inside"));
    EXPECT_EQ(tree.contents("file2"), "contents");
}

TEST_P(RenameExclusive, LeavesBothAsTheyWereWhenTheNameIsTaken) {
    const TempTree tree;
    tree.file("file", "source");
    tree.folder("folder");
    tree.file("taken", "kept");
    tree.folder("takenFolder");
    for (const auto* from : {"file", "folder"})
        for (const auto* to : {"taken", "takenFolder"})
            EXPECT_EQ(renamed(tree, from, to, GetParam()), EEXIST);
    EXPECT_THAT(tree.names(), ElementsAre("file", "folder", "taken", "takenFolder"));
    EXPECT_EQ(tree.contents("taken") + tree.contents("file"), "keptsource");
}

TEST_P(RenameExclusive, LeavesNothingBehindWhenItCannotBeDone) {
    const TempTree tree;
    tree.folder("folder");
    EXPECT_EQ(renamed(tree, "folder", "folder/inside", GetParam()), EINVAL);
    EXPECT_EQ(renamed(tree, "gone", "new", GetParam()), ENOENT);
    EXPECT_THAT(tree.names(), ElementsAre("folder"));
    EXPECT_THAT(tree.names("folder"), IsEmpty());
}

// The same through a driver that really refuses, with and without hard links.
TEST(RenameExclusiveThroughADriver, KeepsThePromise) {
    for (const auto* options : {"", "nolinks"}) {
        const TempTree tree;
        tree.folder("backing");
        const auto mount = TestMount::limited(tree.path("backing"), options, tree.path("at"));
        if (!mount) GTEST_SKIP() << mount.error();
        tree.file("at/file", "contents");
        tree.file("at/taken", "kept");
        tree.folder("at/folder");
        tree.file("at/folder/inside");
        const Driver asItIs{"", true, true};
        EXPECT_EQ(renamed(tree, "at/file", "at/taken", asItIs), EEXIST);
        EXPECT_EQ(renamed(tree, "at/folder", "at/taken", asItIs), EEXIST);
        EXPECT_EQ(renamed(tree, "at/file", "at/file2", asItIs), 0);
        EXPECT_EQ(renamed(tree, "at/folder", "at/folder2", asItIs), 0);
        EXPECT_THAT(tree.names("backing"), ElementsAre("file2", "folder2", "taken"));
        EXPECT_EQ(tree.contents("backing/file2") + tree.contents("backing/taken"), "contentskept");
    }
}

INSTANTIATE_TEST_SUITE_P(Drivers, RenameExclusive,
                         ::testing::Values(Driver{"full", true, true}, Driver{"withoutFlag", false, true},
                                           Driver{"withoutFlagAndLinks", false, false}),
                         [](const auto& driver) { return driver.param.label; });

} // namespace
} // namespace ombrel
