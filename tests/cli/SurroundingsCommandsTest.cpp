#include "cli/SurroundingsWorld.h"
#include "support/MirrorMount.h"
#include "support/TestMount.h"

#include <QJsonArray>

#include <gmock/gmock.h>

#include <filesystem>
#include <functional>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

using ParsePath = Surroundings;

TEST_F(ParsePath, PrintsTheLocationOrSaysWhyThereIsNone) {
    struct Row {
        std::vector<std::string> words;
        int status;
        std::string output, told;
    };
    const Row rows[] = {
        {{"/usr/../tmp"}, 0, "/tmp\n", ""},
        {{"-0", "/caf\xE9"}, 0, std::string("/caf\xE9\0", 6), ""},
        {{"--home", "/h", "~/x"}, 0, "/h/x\n", ""},
        {{"--relative-to", "/srv", "../etc"}, 0, "/etc\n", ""},
        {{"--relative-to", "sub", "x"}, 0, tree.path("sub/x\n"), ""},
        {{"--relative-to", "/srv", "--", "-x"}, 0, "/srv/-x\n", ""},
        {{"docs"}, 1, "", "Type a full path."},
        {{"C:\\Users"}, 1, "", "Windows"},
        {{"file:///%zz"}, 1, "", "not a valid address"},
        {{" "}, 1, "", "Nothing was typed"},
        {{"--home", "", "~"}, 2, "", "empty path"},
    };
    for (auto row : rows) {
        row.words.insert(row.words.begin(), "parse-path");
        const auto result = run(row.words);
        EXPECT_EQ(result.status, row.status) << row.words.back();
        EXPECT_EQ(result.output, row.output);
        EXPECT_THAT(result.errors,
                    row.told.empty() ? ::testing::Matcher<std::string>(IsEmpty()) : HasSubstr(row.told));
    }
    const auto url = objects({"parse-path", "/caf\xE9"}).at(0), none = objects({"parse-path", "C:"}).at(0);
    EXPECT_EQ(text(url, "result"), "url");
    EXPECT_EQ(text(url, "pathBytes"), "L2NhZuk=");
    EXPECT_EQ(text(none, "result"), "windowsPath");
    EXPECT_TRUE(none.value(QStringLiteral("path")).isNull());
}

using SettingsCommand = Surroundings;

TEST_F(SettingsCommand, GetsWhatWasSetAndListsAll) {
    EXPECT_EQ(run({"settings", "set", "compactView", "true"}).status, 0);
    EXPECT_EQ(run({"settings", "set", "keyPreset", "mac"}).status, 0);
    EXPECT_EQ(run({"settings", "set", "pinnedFolders", "known:music", "/caf\xE9"}).status, 0);
    EXPECT_EQ(run({"settings", "set", "interfaceLanguage", "de"}).status, 0);
    EXPECT_EQ(run({"settings", "get", "compactView"}).output, "true\n");
    EXPECT_EQ(run({"settings", "get", "pinnedFolders"}).output, "known:music\nfile:///caf%E9\n");
    EXPECT_THAT(run({"settings", "list"}).output,
                AllOf(HasSubstr("keyPreset\tmac\n"),
                      HasSubstr("pinnedFolders\tknown:music\tfile:///caf%E9\n"),
                      HasSubstr("interfaceLanguage\tde\n"), HasSubstr("confirmMoveToTrash\ttrue\n")));
    const auto all = objects({"settings", "list"});
    EXPECT_EQ(all.size(), 20U);
    EXPECT_EQ(
        objects({"settings", "get", "pinnedFolders"}).at(0).value(QStringLiteral("value")).toArray().size(),
        2);
    EXPECT_EQ(run({"settings", "set", "pinnedFolders"}).status, 0);
    EXPECT_EQ(run({"settings", "get", "pinnedFolders"}).output, "");
    EXPECT_EQ(run({"settings", "set", "interfaceLanguage"}).status, 0);
    EXPECT_TRUE(
        objects({"settings", "get", "interfaceLanguage"}).at(0).value(QStringLiteral("value")).isNull());
}

TEST_F(SettingsCommand, RefusesWhatItDoesNotKnow) {
    for (const std::vector<std::string>& words : {std::vector<std::string>{"settings"},
                                                  {"settings", "drop"},
                                                  {"settings", "get"},
                                                  {"settings", "get", "none"},
                                                  {"settings", "list", "x"},
                                                  {"settings", "get", "compactView", "x"},
                                                  {"settings", "set", "compactView"},
                                                  {"settings", "set", "compactView", "yes"},
                                                  {"settings", "set", "compactView", "true", "x"},
                                                  {"settings", "set", "keyPreset", "Mac"},
                                                  {"settings", "set", "pinnedFolders", "relative"},
                                                  {"settings", "set", "interfaceLanguage", "tlh"},
                                                  {"settings", "set", "recentDestinations", "/a"}}) {
        const auto result = run(words);
        EXPECT_EQ(result.status, 2) << words.back();
        EXPECT_THAT(result.errors, AllOf(HasSubstr("--help"), ::testing::Not(HasSubstr("cli."))));
    }
    EXPECT_FALSE(tree.exists("config/HalvaneOmbrel/settings.json"));
}

TEST_F(SettingsCommand, TellsWhereTheStandardFoldersStand) {
    std::filesystem::create_directories(tree.path("config"));
    tree.folder("Bilder\xFF");
    tree.file("config/user-dirs.dirs", "XDG_PICTURES_DIR=\"" + tree.path("Bilder\xFF") +
                                           "\"\nXDG_MUSIC_DIR=\"" + tree.path("gone") + "\"\n");
    EXPECT_THAT(run({"settings", "folders"}).output,
                AllOf(HasSubstr("pictures\t" + tree.path("Bilder\xFF\n")), HasSubstr("/Music\n"),
                      HasSubstr("/Movies\n")));
    const auto folders = objects({"settings", "folders"});
    ASSERT_EQ(folders.size(), 6U);
    EXPECT_EQ(text(folders[0], "folder"), "desktop");
    EXPECT_EQ(text(folders[0], "title"), "Desktop");
    EXPECT_NE(text(folders[3], "pathBytes"), "");

    const TempTree films;
    const auto dead = MirrorMount::of(films.path(), {"hanging"}, tree.path("gone"));
    if (!dead) GTEST_SKIP() << dead.error();
    EXPECT_THAT(run({"settings", "folders"}).output, HasSubstr("music\t" + tree.path("gone\n")))
        << "it is there as far as can be said without waiting for it";
}

TEST_F(SettingsCommand, TellsOfADamagedFileAndKeepsIt) {
    std::filesystem::create_directories(tree.path("config/HalvaneOmbrel"));
    tree.file("config/HalvaneOmbrel/settings.json", "{ \"compactView\": tr");
    const auto read = run({"settings", "get", "compactView"});
    EXPECT_EQ(read.status, 1);
    EXPECT_EQ(read.output, "false\n");
    EXPECT_THAT(read.errors, HasSubstr("settings.json: The settings could not be understood."));
    EXPECT_EQ(run({"settings", "set", "compactView", "true"}).status, 1);
    EXPECT_EQ(tree.contents("config/HalvaneOmbrel/settings.json.damaged"), "{ \"compactView\": tr");
    EXPECT_EQ(run({"settings", "get", "compactView"}).output, "true\n");
}

using GrantsCommand = Surroundings;

TEST_F(GrantsCommand, FindsFoldersAgainAfterRenames) {
    for (const char* folder : {"p", "p/q\xFF"})
        tree.folder(folder);
    EXPECT_EQ(run({"grants", "list"}).output, "");
    const auto added = run({"grants", "add", "p/q\xFF"});
    EXPECT_EQ(added.status, 0);
    EXPECT_THAT(added.output, AllOf(HasSubstr("active\t"), HasSubstr("\t" + tree.path("p/q\xFF\n"))));
    std::filesystem::rename(tree.path("p/q\xFF"), tree.path("p/r"));
    EXPECT_THAT(run({"grants", "list"}).output, HasSubstr("\t" + tree.path("p/r\n")));
    std::filesystem::rename(tree.path("p"), tree.path("s"));
    const auto resolved = objects({"grants", "resolve"});
    ASSERT_EQ(resolved.size(), 1U);
    EXPECT_EQ(text(resolved[0], "state"), "active");
    EXPECT_EQ(text(resolved[0], "path"), tree.path("s/r"));
    EXPECT_EQ(text(resolved[0], "storedPath"), tree.path("p/r"));
    EXPECT_EQ(text(resolved[0], "name"), "r");
    EXPECT_EQ(run({"grants", "add", "s/r", "s"}).status, 0);
    EXPECT_EQ(objects({"grants", "list"}).size(), 2U) << "the one that is there already was answered";
    EXPECT_EQ(run({"grants", "remove", text(resolved[0], "id"), "nowhere"}).status, 1);
    EXPECT_EQ(run({"grants", "remove", "s"}).status, 0);
    EXPECT_EQ(run({"grants", "list"}).output, "");
}

TEST_F(GrantsCommand, TakesNothingElseThatStandsThere) {
    tree.folder("p");
    ASSERT_EQ(run({"grants", "add", "p"}).status, 0);
    std::filesystem::remove(tree.path("p"));
    EXPECT_THAT(run({"grants", "resolve"}).output, HasSubstr("unavailable\t"));
    for (const auto& stand : {std::function([&] { tree.folder("p"); }), std::function([&] {
                                  tree.folder("other");
                                  tree.symlink("p", "other");
                              })}) {
        stand();
        const auto resolved = run({"grants", "resolve"});
        EXPECT_EQ(resolved.status, 1);
        EXPECT_THAT(resolved.output, HasSubstr("needsReauthorization\t"));
        EXPECT_THAT(resolved.errors, HasSubstr(tree.path("p") + ": The permission has expired."));
        std::filesystem::remove(tree.path("p"));
    }
    tree.file("p");
    EXPECT_THAT(run({"grants", "resolve"}).output, HasSubstr("unavailable\t"));
    EXPECT_EQ(run({"grants", "list"}).status, 0) << "and it is not forgotten";
}

TEST_F(GrantsCommand, KnowsThatAVolumeIsAwayAndWhereItIsMountedNow) {
    auto mount = TestMount::image("ext4", tree.path("volume"));
    if (!mount) GTEST_SKIP() << mount.error();
    std::filesystem::create_directories((*mount)->path() + "/a/b");
    ASSERT_EQ(run({"grants", "add", "volume/a/b"}).status, 0);
    ASSERT_TRUE((*mount)->unmount());
    const auto away = run({"grants", "resolve"});
    EXPECT_EQ(away.status, 1);
    EXPECT_THAT(away.output, AllOf(HasSubstr("unavailable\t"), HasSubstr(tree.path("volume/a/b\n"))));
    EXPECT_THAT(away.errors, HasSubstr(tree.path("volume/a/b") + ": The folder is not there now."));
    EXPECT_EQ(run({"grants", "list"}).status, 0) << "listing is no failure";
    ASSERT_TRUE((*mount)->remount(tree.path("elsewhere")));
    const auto back = run({"grants", "resolve", "volume/a/b"});
    EXPECT_THAT(back.errors, HasSubstr("not among the locations")) << "it has another path by now";
    EXPECT_THAT(run({"grants", "resolve"}).output, HasSubstr("\t" + tree.path("elsewhere/a/b\n")));
}

TEST_F(GrantsCommand, RefusesWhatIsNoFolderAndTellsOfADamagedList) {
    tree.file("file");
    const auto refused = run({"grants", "add", "file", "none"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(refused.errors, AllOf(HasSubstr(tree.path("file: ")), HasSubstr(tree.path("none: "))));
    EXPECT_EQ(run({"grants"}).status, 2);
    EXPECT_EQ(run({"grants", "drop"}).status, 2);
    EXPECT_EQ(run({"grants", "add"}).status, 2);
    EXPECT_EQ(run({"grants", "list", "x"}).status, 2);
    std::filesystem::create_directories(tree.path("data/HalvaneOmbrel"));
    tree.file("data/HalvaneOmbrel/Locations.plist", "bplist00 and no more");
    const auto damaged = run({"grants", "list"});
    EXPECT_EQ(damaged.status, 1);
    EXPECT_THAT(damaged.errors, HasSubstr("Locations.plist: The list of locations could not be read."));
    tree.folder("p");
    EXPECT_EQ(run({"grants", "add", "p"}).status, 1);
    EXPECT_EQ(run({"grants", "list"}).status, 0);
    EXPECT_EQ(tree.contents("data/HalvaneOmbrel/Locations.plist.damaged"), "bplist00 and no more");
}

} // namespace
} // namespace ombrel
