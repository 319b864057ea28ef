#include "listing/FileItem.h"

#include "support/TempTree.h"
#include "support/Unprivileged.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <unordered_set>

namespace ombrel {
namespace {

using testing::TempTree;

class MadeItem : public ::testing::Test {
protected:
    FileItem make(std::string_view name) const { return FileItem::make(name, tree.url(), 1); }
    TempTree tree;
};

TEST_F(MadeItem, SaysWhatTheEntryIs) {
    tree.folder("folder");
    tree.folder("Tool.APP");
    tree.folder("x.unknownext");
    tree.fileOfSize("file", 5);
    tree.fifo("fifo");
    EXPECT_EQ(make("folder").kind(), FileKind::Case::directory);
    EXPECT_EQ(make("folder").typeIdentifier().value(), "inode/directory");
    EXPECT_TRUE(make("folder").size().isUnknown());
    EXPECT_TRUE(make("folder").url().isMarkedDirectory());
    EXPECT_TRUE(make("Tool.APP").isPackage());
    EXPECT_FALSE(make("Tool.APP").isDirectoryLike());
    EXPECT_TRUE(make("Tool.APP").url().isMarkedDirectory());
    EXPECT_EQ(make("x.unknownext").kind(), FileKind::Case::directory);
    EXPECT_EQ(make("file").size().value(), 5);
    EXPECT_EQ(make("file").typeIdentifier().value(), "application/octet-stream");
    EXPECT_EQ(make("fifo").kind(), FileKind::Case::other);
    EXPECT_TRUE(make("fifo").typeIdentifier().isUnknown());
    EXPECT_TRUE(make("fifo").size().isUnknown());
}

TEST_F(MadeItem, SaysWhereALinkLeads) {
    tree.folder("folder");
    tree.file("file");
    tree.symlink("one", "folder");
    tree.symlink("two", "one");
    tree.symlink("to file", "file");
    tree.symlink("dangling", "nowhere");
    tree.symlink("through a file", "file/x");
    tree.symlink("self", "self");
    EXPECT_TRUE(make("two").isDirectoryLike());
    EXPECT_FALSE(make("two").url().isMarkedDirectory());
    const auto leads = [this](const char* name) { return make(name).kind().target().which(); };
    EXPECT_EQ(leads("two"), SymlinkTarget::Case::directory);
    EXPECT_EQ(leads("to file"), SymlinkTarget::Case::file);
    EXPECT_EQ(leads("dangling"), SymlinkTarget::Case::broken);
    EXPECT_EQ(leads("through a file"), SymlinkTarget::Case::broken);
    EXPECT_EQ(leads("self"), SymlinkTarget::Case::loop);
    EXPECT_EQ(make("to file").size().value(), 4) << "the link's own size";
    EXPECT_FALSE(make("self").readError()) << "a link that leads nowhere was itself read well";
    EXPECT_EQ(SymlinkTarget::fromError(EACCES), SymlinkTarget::inaccessible(EACCES));
}

TEST_F(MadeItem, KeepsTheExactTimeEvenBefore1970) {
    tree.file("old");
    const struct timespec times[2] = {{}, {-86400, 123456789}};
    ASSERT_EQ(::utimensat(AT_FDCWD, tree.path("old").c_str(), times, 0), 0);
    EXPECT_EQ(make("old").modificationDate().value(), (FileTime{-86400, 123456789}));
}

TEST_F(MadeItem, OfAMissingEntryCarriesTheReason) {
    const auto item = make(".gone");
    EXPECT_EQ(item.kind(), FileKind::Case::other);
    EXPECT_EQ(item.modificationDate().errorNumber(), ENOENT);
    EXPECT_TRUE(item.isHidden());
    EXPECT_EQ(item.readError(), POSIXFailure{ENOENT});
}

TEST_F(MadeItem, TellsWhatTheUserMayNotRead) {
    tree.file("secret", "text");
    tree.file("others'");
    tree.file("open");
    tree.folder("private");
    tree.file("private/file");
    tree.symlink("into private", "private/file");
    tree.fifo("fifo");
    const auto allow = [this](const char* name, mode_t mode) {
        ASSERT_EQ(::chmod(tree.path(name).c_str(), mode), 0);
    };
    ASSERT_EQ(::chmod(tree.path().c_str(), 0755), 0);
    for (const char* name : {"secret", "private", "fifo"})
        allow(name, 0);
    allow("others'", 0044);
    EXPECT_TRUE(testing::asNobody([this] {
        for (const char* name : {"secret", "private", "into private"})
            EXPECT_EQ(make(name).accessError(), POSIXFailure{EACCES}) << name;
        for (const char* name : {"open", "fifo"})
            EXPECT_FALSE(make(name).accessError()) << name;
        EXPECT_FALSE(make("secret").readError()) << "it was itself examined well";
        EXPECT_EQ(make("secret").size().value(), 4);
        return true;
    }));
    if (::geteuid() == 0) {
        EXPECT_FALSE(make("secret").accessError()) << "the superuser may read everything";
        EXPECT_TRUE(testing::asNobody([this] { return !make("others'").accessError(); }));
    }
    allow("private", 0700);
}

TEST_F(MadeItem, IsEqualToAnotherOfTheSameListingAlone) {
    tree.file("a");
    const auto first = make("a");
    EXPECT_EQ(first, make("a"));
    EXPECT_EQ((std::unordered_set<FileItem>{first, make("a")}.size()), 1U);
    const auto later = FileItem::make("a", tree.url(), 2);
    EXPECT_NE(first.id(), later.id());
    EXPECT_FALSE(first == later);
    tree.file("a", "longer");
    EXPECT_FALSE(first == make("a"));
}

TEST_F(MadeItem, GivesAReferenceThatNoticesAnotherObjectAtItsPath) {
    tree.file("a");
    const auto reference = make("a").reference();
    EXPECT_EQ(reference, FileReference::sampling(tree.url("a")));
    tree.file("b");
    ASSERT_EQ(::rename(tree.path("b").c_str(), tree.path("a").c_str()), 0);
    EXPECT_NE(currentIdentity(tree.url("a")), reference.identity);
    EXPECT_FALSE(FileReference::sampling(tree.url("missing")).identity);
    EXPECT_EQ(currentIdentity(tree.url("missing")).error(), POSIXFailure{ENOENT});
}

} // namespace
} // namespace ombrel
