#include "services/KnownFolderLocator.h"

#include "support/MirrorMount.h"
#include "support/TempTree.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "qtmain/KitWorld.h"

namespace ombrel {
namespace {

using testing::KitWorld;
using testing::MirrorMount;
using testing::runUntil;
using testing::TempTree;

class KnownFoldersOfAUser : public ::testing::Test {
protected:
    KnownFoldersOfAUser() {
        for (const char* folder : {"config", "Bilder", "Klänge", "Music"})
            tree.folder(folder);
        QObject::connect(&locator, &KnownFolderLocator::changed, [this] { ++changes; });
    }
    void configure(std::string_view text) const {
        std::filesystem::remove(tree.path("config/user-dirs.dirs"));
        tree.file("config/user-dirs.dirs", text);
    }
    void refresh() {
        locator.refresh();
        ASSERT_TRUE(runUntil([this] { return !locator.isBusy(); }));
    }
    [[nodiscard]] std::string at(KnownFolder folder) const {
        return locator.folders().url(folder).path().substr(tree.path().size() + 1);
    }

    KitWorld world;
    TempTree tree;
    KnownFolderLocator locator{tree.url(), tree.url("config")};
    int changes = 0;
};

TEST_F(KnownFoldersOfAUser, StandWhereTheDesktopSetThemUpAsFarAsTheyExist) {
    EXPECT_EQ(locator.folders(), KnownFolders(tree.url()));
    refresh();
    EXPECT_EQ(locator.folders(), KnownFolders(tree.url())) << "nothing is set up";
    EXPECT_EQ(changes, 0);
    tree.file("file");
    configure(
        "XDG_PICTURES_DIR=\"$HOME/Bilder\"\nXDG_MUSIC_DIR=\"$HOME/Gone\"\nXDG_VIDEOS_DIR=\"$HOME/file\"\n");
    refresh();
    EXPECT_EQ(at(KnownFolder::pictures), "Bilder");
    EXPECT_EQ(at(KnownFolder::music), "Music");
    EXPECT_EQ(at(KnownFolder::videos), "Movies");
    EXPECT_EQ(changes, 1);
    tree.folder("Gone");
    configure("XDG_MUSIC_DIR=\"$HOME/Gone\"\n");
    refresh();
    EXPECT_EQ(at(KnownFolder::pictures), "Pictures") << "not set up any more";
    EXPECT_EQ(at(KnownFolder::music), "Gone");
}

TEST_F(KnownFoldersOfAUser, AreNotHeldUpByOneThatHangs) {
    const TempTree films;
    films.folder("old");
    const auto dead = MirrorMount::of(films.path(), {"hanging"}, tree.path("dead"));
    if (!dead) GTEST_SKIP() << dead.error();
    configure("XDG_VIDEOS_DIR=\"$HOME/dead/old\"\nXDG_PICTURES_DIR=\"$HOME/Bilder\"\n");
    refresh();
    EXPECT_EQ(at(KnownFolder::pictures), "Bilder");
    EXPECT_EQ(at(KnownFolder::videos), "dead/old");
}

TEST_F(KnownFoldersOfAUser, AreReadOnceMoreWhenThatWasWantedMeanwhile) {
    locator.refresh();
    configure("XDG_PICTURES_DIR=\"$HOME/Bilder\"\n");
    refresh();
    EXPECT_EQ(at(KnownFolder::pictures), "Bilder");
}

} // namespace
} // namespace ombrel
