#include "operations/Relocation.h"

#include "operations/SystemTrash.h"
#include "support/TempTree.h"
#include "support/TransferWorld.h"
#include "support/Unprivileged.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <memory>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Error = FileOperationError;
using Overall = OperationReport::Overall;

/// A folder that its owner, an ordinary user, may not write.
class ReadOnlyFolder : public ::testing::Test {
protected:
    TempTree tree;

    void SetUp() override {
        ASSERT_EQ(::chmod(tree.path().c_str(), 0777), 0);
        ASSERT_TRUE(asNobody([&] {
            tree.folder("home");
            tree.folder("locked");
            tree.file("locked/file", "kept");
            tree.folder("target");
            return ::chmod(tree.path("locked").c_str(), 0555) == 0;
        }));
    }
    unsigned modeOf(const std::string& name) const {
        struct stat facts = {};
        EXPECT_EQ(::stat(tree.path(name).c_str(), &facts), 0);
        return facts.st_mode & 07777;
    }
};

TEST_F(ReadOnlyFolder, GoesToTheTrashAndBack) {
    const auto trash = std::make_shared<SystemTrash>(
        SystemTrash::Places{tree.url("home/Trash"), tree.url("home"), 65534}, [] { return MountTable(); });
    const FileOperationService service(trash);
    EXPECT_TRUE(asNobody([&] {
        const auto item = FileReference::sampling(tree.url("locked"));
        return service.moveToTrash({&item, 1}, {}).overall() == Overall::succeeded;
    }));
    EXPECT_FALSE(tree.exists("locked"));
    EXPECT_EQ(modeOf("home/Trash/files/locked"), 0555U);
    EXPECT_TRUE(asNobody([&] {
        const PutBackItem item{FileReference::sampling(tree.url("home/Trash/files/locked")), {}};
        return service.putBack({&item, 1}, MissingFolders::refuse, {}).overall() == Overall::succeeded;
    }));
    EXPECT_EQ(tree.contents("locked/file"), "kept");
    EXPECT_EQ(modeOf("locked"), 0555U);
    EXPECT_THAT(tree.names("home/Trash/info"), IsEmpty());
}

TEST_F(ReadOnlyFolder, IsMovedByName) {
    EXPECT_TRUE(asNobody([&] {
        return TransferWorld().move({tree.url("locked")}, tree.url("target")).overall() == Overall::succeeded;
    }));
    EXPECT_EQ(tree.contents("target/locked/file"), "kept");
    EXPECT_EQ(modeOf("target/locked"), 0555U);
}

TEST_F(ReadOnlyFolder, KeepsItsPermissionsWhereItHasToStay) {
    ASSERT_EQ(::chmod(tree.path("target").c_str(), 0555), 0);
    EXPECT_TRUE(asNobody([&] {
        return TransferWorld().move({tree.url("locked")}, tree.url("target")).items[0].outcome ==
               ItemOutcome::failed(Error::Case::permissionDenied);
    }));
    EXPECT_EQ(modeOf("locked"), 0555U);
    EXPECT_THAT(tree.names("target"), IsEmpty());
    // Another's folder is refused as ever.
    ASSERT_EQ(::chown(tree.path("locked").c_str(), 1234, 1234), 0);
    ASSERT_EQ(::chmod(tree.path("target").c_str(), 0755), 0);
    EXPECT_TRUE(asNobody([&] {
        return TransferWorld().move({tree.url("locked")}, tree.url("target")).items[0].outcome ==
               ItemOutcome::failed(Error::Case::permissionDenied);
    }));
    EXPECT_THAT(tree.names("locked"), ElementsAre("file"));
}

} // namespace
} // namespace ombrel
