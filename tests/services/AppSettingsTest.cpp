#include "services/AppSettings.h"

#include "base/Worker.h"
#include "listing/DirectoryProvider.h"
#include "services/ChannelConfig.h"
#include "support/Locations.h"
#include "support/TempTree.h"
#include "support/TestMount.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <gmock/gmock.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>

#include "qtmain/KitWorld.h"

namespace ombrel {
namespace {

using testing::at;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::KitWorld;
using testing::runUntil;
using testing::runUntilQuiet;
using testing::TempTree;
using testing::TestMount;

/// Writes to a new file until the disk takes no more.
void fill(const std::string& path) {
    std::ofstream stream(path, std::ios::binary);
    while (stream.write("x", 1).flush()) {
    }
}

std::vector<std::string> paths(const std::vector<FileURL>& urls) {
    std::vector<std::string> found;
    for (const auto& url : urls)
        found.push_back(url.path());
    return found;
}

std::vector<std::string> stored(const std::vector<PinnedFolder>& folders) {
    std::vector<std::string> found;
    for (const auto& folder : folders)
        found.push_back(folder.stored());
    return found;
}

class Settings : public ::testing::Test {
protected:
    [[nodiscard]] SettingsFile file() const { return SettingsFile(tree.url("config/settings.json")); }
    void write(std::string_view text) const {
        if (!tree.exists("config")) tree.folder("config");
        tree.file("config/settings.json", text);
    }
    [[nodiscard]] QJsonObject written() const {
        return QJsonDocument::fromJson(QByteArray::fromStdString(tree.contents("config/settings.json")))
            .object();
    }
    static void settle() { ASSERT_TRUE(runUntilQuiet()); }

    KitWorld world;
    TempTree tree;
};

using SettingsRead = Settings;

TEST_F(SettingsRead, HaveTheirDefaultsWithoutAFile) {
    const AppSettings settings(file());
    EXPECT_EQ(settings.keyPreset(), KeyPreset::windows);
    const std::vector<Setting> on = {Setting::confirmMoveToTrash, Setting::showsDetailsPane,
                                     Setting::hideProtectedSystemFiles, Setting::showItemCheckBoxes,
                                     Setting::showStatusBar};
    for (std::size_t i = 0; i < SettingValues::switchCount; ++i) {
        const auto setting = static_cast<Setting>(i);
        EXPECT_EQ(settings.isOn(setting), (std::ranges::find(on, setting) != on.end())) << rawValue(setting);
    }
    EXPECT_EQ(settings.pinnedFolders(), PinnedFolder::defaults());
    EXPECT_THAT(settings.recentDestinations(), IsEmpty());
    EXPECT_EQ(settings.interfaceLanguage(), std::nullopt);
    EXPECT_EQ(settings.lastStoreError(), std::nullopt);
    EXPECT_FALSE(tree.exists("config")) << "reading makes nothing";
}

TEST_F(SettingsRead, FallBackOneByOneWhereTheTypeIsWrong) {
    write(R"({"confirmMoveToTrash": "yes", "showHiddenFiles": 1, "compactView": true, "keyPreset": "Mac",
              "pinnedFolders": ["known:music", 7, "relative", "known:none", "/srv/x", "file:///caf%E9"],
              "recentDestinations": "none", "recentFolderApps": ["/a", null, "b"], "foldedHomeSections": ["volumes", 1],
              "HalvaneOmbrel": {"AppleLanguages": ["pt-BR", "de"]}})");
    const AppSettings settings(file());
    EXPECT_TRUE(settings.confirmMoveToTrash());
    EXPECT_FALSE(settings.showHiddenFiles());
    EXPECT_TRUE(settings.compactView());
    EXPECT_EQ(settings.detailsRowHeight(), 24);
    EXPECT_EQ(settings.keyPreset(), KeyPreset::windows);
    EXPECT_THAT(stored(settings.pinnedFolders()), ElementsAre("known:music", "/srv/x", "file:///caf%E9"));
    EXPECT_THAT(settings.recentDestinations(), IsEmpty());
    EXPECT_THAT(paths(settings.recentFolderApps()), ElementsAre("/a"));
    EXPECT_THAT(settings.foldedHomeSections(), ElementsAre("volumes"));
    EXPECT_EQ(settings.launchInterfaceLanguage(), "pt-BR");
    const AppSettings withoutLanguage(file(), std::nullopt);
    EXPECT_EQ(withoutLanguage.interfaceLanguage(), std::nullopt);
}

using SettingsWritten = Settings;

TEST_F(SettingsWritten, ReachTheFileAndTheNextStart) {
    std::vector<Setting> published;
    {
        AppSettings settings(file());
        QObject::connect(&settings, &AppSettings::changed,
                         [&](Setting setting) { published.push_back(setting); });
        settings.setKeyPreset(KeyPreset::mac);
        settings.setFolderOptions(
            {.showHiddenFiles = true, .showStatusBar = false, .showFullPathInTitle = true});
        settings.setPinnedFolders({KnownFolder::videos, at("/srv/caf\xE9")});
        settings.setFoldedHomeSections({"locations"});
        settings.setInterfaceLanguage("zh-Hant");
        EXPECT_TRUE(settings.isWriting());
        ASSERT_TRUE(runUntil([&] { return !settings.isWriting(); }));
        EXPECT_EQ(settings.launchInterfaceLanguage(), std::nullopt);
    }
    EXPECT_THAT(published, ElementsAre(Setting::keyPreset, Setting::showHiddenFiles, Setting::showStatusBar,
                                       Setting::showFullPathInTitle, Setting::pinnedFolders,
                                       Setting::foldedHomeSections, Setting::interfaceLanguage));
    const auto values = written();
    EXPECT_EQ(values.value(QStringLiteral("keyPreset")), QStringLiteral("mac"));
    EXPECT_EQ(values.value(QStringLiteral("showHiddenFiles")), true);
    EXPECT_FALSE(values.contains(QStringLiteral("hideKnownExtensions")))
        << "what did not change is not written";
    const AppSettings next(file());
    EXPECT_EQ(next.folderOptions(),
              (AppSettings::FolderOptions{
                  .showHiddenFiles = true, .showStatusBar = false, .showFullPathInTitle = true}));
    EXPECT_THAT(stored(next.pinnedFolders()), ElementsAre("known:videos", "file:///srv/caf%E9"));
    EXPECT_THAT(next.foldedHomeSections(), ElementsAre("locations"));
    EXPECT_EQ(next.launchInterfaceLanguage(), "zh-Hant");
    settle();
}

TEST_F(SettingsWritten, StillReachTheFileWhenTheSettingsGoAtOnce) {
    AppSettings(file()).setCompactView(true);
    settle();
    EXPECT_TRUE(AppSettings(file()).compactView());
}

TEST_F(SettingsWritten, NotWhileChangesDoNotPersist) {
    AppSettings settings(file());
    settings.setPersistsChanges(false);
    settings.setShowHiddenFiles(true);
    settings.rememberDestination(at("/a"));
    settle();
    EXPECT_TRUE(settings.showHiddenFiles());
    EXPECT_THAT(settings.recentDestinations(), IsEmpty());
    EXPECT_FALSE(tree.exists("config"));
    write(R"({"compactView": true})");
    settings.reload();
    settle();
    EXPECT_TRUE(settings.compactView());
    EXPECT_TRUE(settings.showHiddenFiles());
}

TEST_F(SettingsWritten, FollowTheDesktopsLanguageAgain) {
    write(R"({"HalvaneOmbrel": {"AppleLanguages": ["de"], "later": 1}, "x": {"AppleLanguages": ["fr"]}})");
    AppSettings settings(file());
    settings.setInterfaceLanguage(std::nullopt);
    settle();
    EXPECT_EQ(settings.interfaceLanguage(), std::nullopt);
    EXPECT_EQ(settings.launchInterfaceLanguage(), "de");
    EXPECT_EQ(AppSettings(file()).interfaceLanguage(), std::nullopt);
    EXPECT_EQ(AppSettings(file(), "x").interfaceLanguage(), "fr");
    EXPECT_THAT(tree.contents("config/settings.json"), HasSubstr("later"));
}

using RecentList = Settings;

TEST_F(RecentList, HasTheLatestFirstOnceAndNotTooMany) {
    AppSettings settings(file());
    for (const char* path : {"/a", "/b", "/c/../a/"})
        settings.rememberDestination(at(path));
    EXPECT_THAT(paths(settings.recentDestinations()), ElementsAre("/a", "/b"));
    for (const char* path : {"/1", "/2", "/3", "/4"})
        settings.rememberDestination(at(path));
    EXPECT_THAT(paths(settings.recentDestinations()), ElementsAre("/4", "/3", "/2", "/1", "/a"));
    for (const char* path : {"/1", "/2", "/3\xFF", "/4"})
        settings.rememberFolderApp(at(path));
    settle();
    EXPECT_THAT(paths(AppSettings(file()).recentFolderApps()), ElementsAre("/4", "/3\xFF", "/2"));
}

using Pins = Settings;

TEST_F(Pins, KeepTheirOrderAndAreNotDoubled) {
    write(R"({"pinnedFolders": ["/z", {"later": "form"}, "known:music"]})");
    AppSettings settings(file());
    KnownFolders folders(at("/home/me"));
    folders.set(KnownFolder::desktop, at("/srv/desk"));
    settings.setKnownFolders(folders);
    settings.pin(std::vector{at("/home/me/Music"), at("/srv/desk/"), at("/a/../z"), at("/b"), at("/b")});
    EXPECT_THAT(stored(settings.pinnedFolders()), ElementsAre("/z", "known:music", "known:desktop", "/b"));
    EXPECT_TRUE(settings.isPinned(at("/srv/x/../desk")));
    settings.unpin(std::vector{at("/z"), at("/home/me/Music"), at("/nowhere")});
    settle();
    EXPECT_THAT(stored(AppSettings(file()).pinnedFolders()), ElementsAre("known:desktop", "/b"));
    EXPECT_THAT(tree.contents("config/settings.json"), HasSubstr("later"));
}

using SettingsOfTwoPrograms = Settings;

TEST_F(SettingsOfTwoPrograms, AreMergedByWhatEachChanged) {
    write(R"({"keyPreset": "mac", "ofALaterVersion": {"a": [1, 2]}})");
    AppSettings one(file()), other(file());
    one.setShowHiddenFiles(true);
    one.rememberDestination(at("/one"));
    settle();
    other.setCompactView(true);
    other.rememberDestination(at("/other"));
    settle();
    EXPECT_TRUE(other.showHiddenFiles()) << "taken over with the write";
    EXPECT_THAT(paths(other.recentDestinations()), ElementsAre("/other", "/one"));
    std::vector<Setting> published;
    QObject::connect(&one, &AppSettings::changed, [&](Setting setting) { published.push_back(setting); });
    one.reload();
    settle();
    EXPECT_THAT(published, ElementsAre(Setting::compactView, Setting::recentDestinations));
    EXPECT_EQ(one.keyPreset(), KeyPreset::mac);
    EXPECT_EQ(written().value(QStringLiteral("ofALaterVersion")).toObject().size(), 1);
}

TEST_F(SettingsOfTwoPrograms, LoseNothingUnderManyChangesAtOnce) {
    AppSettings one(file()), other(file());
    for (int i = 0; i < 11; ++i)
        (i % 2 ? one : other).set(static_cast<Setting>(i), !one.isOn(static_cast<Setting>(i)));
    settle();
    const AppSettings fresh(file()), untouched(SettingsFile(tree.url("none")));
    for (int i = 0; i < 11; ++i)
        EXPECT_NE(fresh.isOn(static_cast<Setting>(i)), untouched.isOn(static_cast<Setting>(i))) << i;
    EXPECT_THAT(tree.names("config"), ElementsAre("settings.json", "settings.json.lock"));
}

class DamagedSettings : public Settings, public ::testing::WithParamInterface<std::string> {};

TEST_P(DamagedSettings, AreReportedAndKeptAside) {
    write(GetParam());
    AppSettings settings(file());
    EXPECT_EQ(settings.lastStoreError(), Text{"settings.storeDamaged"});
    EXPECT_TRUE(settings.confirmMoveToTrash());
    settings.setCompactView(true);
    settle();
    EXPECT_EQ(tree.contents("config/settings.json.damaged"), GetParam());
    EXPECT_TRUE(AppSettings(file()).compactView());
    EXPECT_EQ(settings.lastStoreError(), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(Forms, DamagedSettings,
                         ::testing::Values("", "{", R"({"compactView": tr)", "[true]", "null",
                                           "keyPreset=mac", std::string("{\"a\": \"\xFF\xFE\"}"),
                                           std::string("\0\0\0\0", 4)));

TEST_F(Settings, SurviveAFileThatIsDamagedWhileTheyAreInUse) {
    write(R"({"compactView": true})");
    AppSettings settings(file());
    write("{");
    settings.reload();
    settle();
    EXPECT_TRUE(settings.compactView());
    EXPECT_NE(settings.lastStoreError(), std::nullopt);
    write(R"({"compactView": false})");
    settings.reload();
    settle();
    EXPECT_FALSE(settings.compactView());
    EXPECT_EQ(settings.lastStoreError(), std::nullopt);
}

TEST_F(Settings, DoNotReplaceWhatTheyCannotRead) {
    tree.folder("config");
    tree.folder("config/settings.json");
    AppSettings settings(file());
    EXPECT_EQ(settings.lastStoreError(), Text{"settings.storeUnreadable"});
    settings.setCompactView(true);
    settle();
    EXPECT_TRUE(settings.compactView());
    EXPECT_NE(settings.lastStoreError(), std::nullopt);
    EXPECT_THAT(tree.names("config"), ElementsAre("settings.json", "settings.json.lock"));
}

TEST_F(Settings, AreWrittenOnceThereIsRoomAgain) {
    const auto mount = TestMount::tmpfs({}, "size=64k");
    if (!mount) GTEST_SKIP() << mount.error();
    const TempTree disk((*mount)->path());
    const SettingsFile onDisk(disk.url("settings.json"));
    AppSettings settings(onDisk);
    settings.setShowHiddenFiles(true);
    settle();
    const auto before = disk.contents("settings.json");
    fill(disk.path("filler"));
    settings.setCompactView(true);
    settle();
    EXPECT_EQ(settings.lastStoreError(), Text{"settings.storeFailed"});
    EXPECT_TRUE(settings.compactView());
    EXPECT_EQ(disk.contents("settings.json"), before);
    ASSERT_EQ(::unlink(disk.path("filler").c_str()), 0);
    settings.setShowStatusBar(false);
    settle();
    EXPECT_EQ(settings.lastStoreError(), std::nullopt);
    const AppSettings next(onDisk);
    EXPECT_TRUE(next.compactView());
    EXPECT_FALSE(next.showStatusBar());
}

TEST_F(Settings, DecideWhatIsShownAndHow) {
    tree.folder("x");
    for (const char* name : {"x/photo.png", "x/.dot", "x/.DS_Store", "x/._fork"})
        tree.file(name);
    std::optional<DirectorySnapshot> snapshot;
    Worker("list", [&](std::stop_token) {
        DirectoryRequest request;
        request.url = tree.url("x");
        if (auto read = DirectoryProvider().load(std::move(request))) snapshot = *std::move(read);
    }).detach();
    settle();
    ASSERT_TRUE(snapshot);
    AppSettings settings(file());
    settings.setPersistsChanges(false);
    const auto shown = [&] {
        std::vector<std::string> names;
        for (const auto item : snapshot->items())
            if (settings.shows(item)) names.emplace_back(settings.displayName(item));
        std::ranges::sort(names);
        return names;
    };
    EXPECT_THAT(shown(), ElementsAre("photo.png"));
    settings.setShowHiddenFiles(true);
    EXPECT_THAT(shown(), ElementsAre(".dot", "photo.png"));
    settings.setHideProtectedSystemFiles(false);
    EXPECT_THAT(shown(), ElementsAre(".DS_Store", "._fork", ".dot", "photo.png"));
    settings.setHideKnownExtensions(true);
    EXPECT_THAT(shown(), ElementsAre(".DS_Store", "._fork", ".dot", "photo"));
}

TEST(ChannelOfThisBuild, IsSandboxedWhereTheEnvironmentSaysSo) {
    const std::string channel(rawValue(ChannelConfig::channel));
    EXPECT_EQ(channel, "direct");
    ASSERT_FALSE(ChannelConfig::isSandboxed());
    ::setenv("APP_SANDBOX_CONTAINER_ID", "", 1);
    EXPECT_TRUE(ChannelConfig::isSandboxed());
    ::unsetenv("APP_SANDBOX_CONTAINER_ID");
}

} // namespace
} // namespace ombrel
