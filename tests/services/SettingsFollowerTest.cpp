#include "services/SettingsFollower.h"

#include "support/TempTree.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <memory>

#include "qtmain/KitWorld.h"

namespace ombrel {
namespace {

using testing::KitWorld;
using testing::runUntil;
using testing::TempTree;

/// The settings of a program that runs on, and those of another that comes and goes.
class SettingsFollowed : public ::testing::Test {
protected:
    [[nodiscard]] SettingsFile file() const { return SettingsFile(tree.url("config/ours/settings.json")); }
    void follow() {
        settings = std::make_unique<AppSettings>(file());
        follower = std::make_unique<SettingsFollower>(*settings, tree.url(), tree.url("config"));
        follower->start();
    }
    void otherSets(Setting setting) const {
        AppSettings other(file());
        other.set(setting, !other.isOn(setting));
        ASSERT_TRUE(runUntil([&] { return !other.isWriting(); }));
    }
    [[nodiscard]] bool becomes(Setting setting, bool on) const {
        return runUntil([&] { return settings->isOn(setting) == on; });
    }

    KitWorld world;
    TempTree tree;
    std::unique_ptr<AppSettings> settings;
    std::unique_ptr<SettingsFollower> follower;
};

TEST_F(SettingsFollowed, TakeOverWhatAnotherProgramSets) {
    std::filesystem::create_directories(tree.path("config/ours"));
    follow();
    otherSets(Setting::compactView);
    EXPECT_TRUE(becomes(Setting::compactView, true));
    settings->set(Setting::showHiddenFiles, true);
    otherSets(Setting::showStatusBar);
    EXPECT_TRUE(becomes(Setting::showStatusBar, false));
    EXPECT_TRUE(settings->showHiddenFiles()) << "and lose nothing of their own";
}

TEST_F(SettingsFollowed, AlsoWhenTheirFolderIsMadeLater) {
    tree.folder("config");
    follow();
    otherSets(Setting::compactView);
    EXPECT_TRUE(becomes(Setting::compactView, true));
    // The folder is replaced as a whole, as a restored backup is.
    std::filesystem::rename(tree.path("config/ours"), tree.path("config/old"));
    EXPECT_TRUE(becomes(Setting::compactView, false));
    otherSets(Setting::showHiddenFiles);
    EXPECT_TRUE(becomes(Setting::showHiddenFiles, true));
}

TEST_F(SettingsFollowed, KnowWhereTheStandardFoldersStand) {
    tree.folder("config");
    tree.folder("Bilder");
    tree.file("config/user-dirs.dirs", "XDG_PICTURES_DIR=\"$HOME/Bilder\"\n");
    follow();
    const auto pictures = [&] { return settings->knownFolders().url(KnownFolder::pictures); };
    EXPECT_TRUE(runUntil([&] { return pictures() == tree.url("Bilder"); }));
    EXPECT_TRUE(settings->isPinned(tree.url("Bilder")));
    std::filesystem::remove(tree.path("config/user-dirs.dirs"));
    EXPECT_TRUE(runUntil([&] { return pictures() == tree.url("Pictures"); }));
}

TEST_F(SettingsFollowed, NotAfterTheyWereStopped) {
    std::filesystem::create_directories(tree.path("config/ours"));
    follow();
    otherSets(Setting::compactView);
    ASSERT_TRUE(becomes(Setting::compactView, true));
    follower->stop();
    int told = 0;
    bool isWatching = false;
    DirectoryWatcher witness(DirectoryWatcher::Seconds(0.5), [&](DirectoryWatcher::Event) { ++told; });
    witness.watch(tree.url("config/ours"), [&](const auto& outcome) { isWatching = outcome.has_value(); });
    ASSERT_TRUE(runUntil([&] { return isWatching; }));
    otherSets(Setting::compactView);
    follower->refresh();
    ASSERT_TRUE(runUntil([&] { return told > 0; }));
    EXPECT_TRUE(settings->compactView()) << "somebody who watches had long been told";
    witness.stop();
    follower->start();
    EXPECT_TRUE(becomes(Setting::compactView, false));
}

} // namespace
} // namespace ombrel
