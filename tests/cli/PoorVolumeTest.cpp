#include "cli/SurroundingsWorld.h"
#include "support/TestMount.h"
#include "support/TreeSnapshot.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/xattr.h>

// Sticks as they are carried around: what their formats have no place for is nothing to complain about.

namespace ombrel {
namespace {

using namespace testing;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class PoorVolume : public Surroundings, public ::testing::WithParamInterface<const char*> {};

TEST_P(PoorVolume, TakesFilesAndFoldersWithoutAWord) {
    const auto stick = TestMount::image(GetParam(), tree.path("stick"));
    if (!stick) GTEST_SKIP() << stick.error();
    tree.folder("top");
    tree.file("top/private", "p");
    tree.file("top/run.sh", "#!/bin/sh\n");
    tree.folder("top/sub");
    tree.fileOfSize("top/sub/big", 2'000'000);
    tree.file("single", "s");
    ::chmod(tree.path("top/private").c_str(), 0400);
    ::chmod(tree.path("top/run.sh").c_str(), 0755);
    ::chown(tree.path("top/run.sh").c_str(), 1234, 1234);
    ::setxattr(tree.path("top/sub/big").c_str(), "user.origin", "here", 4, 0);
    ::chmod(tree.path("top/sub").c_str(), 0500);
    const auto before = snapshotOf(tree.path("top"));

    auto result = run({"copy", "top", "single", "stick"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output + result.errors, "");
    EXPECT_THAT(differences(before, snapshotOf(tree.path("stick/top")), Compare::data), IsEmpty());
    EXPECT_EQ(tree.contents("stick/single"), "s");
    EXPECT_THAT(differences(before, snapshotOf(tree.path("top"))), IsEmpty());

    result = run({"move", "--conflict=replace", "top", "single", "stick"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output + result.errors, "");
    EXPECT_THAT(differences(before, snapshotOf(tree.path("stick/top")), Compare::data), IsEmpty());
    EXPECT_FALSE(tree.exists("top") || tree.exists("single"));
}

// They are the user's own, and would be missed.
TEST_P(PoorVolume, TellsOfLinksThatItCannotHold) {
    const auto stick = TestMount::image(GetParam(), tree.path("stick"));
    if (!stick) GTEST_SKIP() << stick.error();
    tree.folder("top");
    tree.symlink("top/link", "file");
    tree.file("top/file", "f");
    const auto result = run({"move", "top", "stick"});
    EXPECT_EQ(tree.contents("stick/top/file"), "f");
    if (tree.exists("stick/top/link")) {
        EXPECT_EQ(result.status, 0) << result.errors;
        return;
    }
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, HasSubstr(tree.path("top/link") + ": "));
    EXPECT_THAT(tree.names("top"), ::testing::Contains("link"));
}

INSTANTIATE_TEST_SUITE_P(Of, PoorVolume, ::testing::Values("vfat", "exfat", "ntfs"),
                         [](const auto& shown) { return std::string(shown.param); });

} // namespace
} // namespace ombrel
