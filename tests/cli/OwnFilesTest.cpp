#include "cli/SurroundingsWorld.h"
#include "support/TestMount.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

/// One of the files that the program keeps, and the commands that read and change it.
struct OwnFile {
    const char* label;
    std::string folder; // that belongs to the user
    std::string name;
    std::vector<std::string> read, change, changeMore;
    std::string unreadable, damaged, unwritable; // what is told

    [[nodiscard]] std::string path() const { return folder + "/HalvaneOmbrel/" + name; }
};

void PrintTo(const OwnFile& file, std::ostream* stream) {
    *stream << file.label;
}

class OwnFileOf : public Surroundings, public ::testing::WithParamInterface<OwnFile> {
protected:
    OwnFileOf() {
        for (const char* folder : {"p", "q"})
            tree.folder(folder);
    }
    [[nodiscard]] std::string contents() const { return tree.contents(GetParam().path()); }
    /// Lets everyone into the tree, and into nothing else of it.
    void open() const {
        for (const char* path : {"", "p", "q"})
            ::chmod(tree.path(path).c_str(), 0755);
        ::chmod(tree.path(GetParam().folder).c_str(), 0755);
        ::chmod(tree.path(GetParam().folder + "/HalvaneOmbrel").c_str(), 0755);
    }
};

TEST_P(OwnFileOf, IsReportedAndKeptAsideWhenCutShort) {
    const auto& file = GetParam();
    ASSERT_EQ(run(file.change).status, 0);
    const auto cut = contents().substr(0, contents().size() / 2);
    tree.file(file.path(), cut);
    const auto read = run(file.read);
    EXPECT_EQ(read.status, 1);
    EXPECT_THAT(read.errors, StartsWith(tree.path(file.path()) + ": " + file.damaged));
    EXPECT_EQ(contents(), cut) << "reading changes nothing";
    EXPECT_EQ(run(file.change).status, 1);
    EXPECT_EQ(tree.contents(file.path() + ".damaged"), cut);
    EXPECT_EQ(run(file.read).status, 0);
}

TEST_P(OwnFileOf, IsNeverReplacedWhenItCannotBeRead) {
    const auto& file = GetParam();
    ASSERT_EQ(run(file.change).status, 0);
    const auto before = contents();
    open();
    ::chmod(tree.path(file.path()).c_str(), 0600);
    ASSERT_EQ(::chown(tree.path(file.folder + "/HalvaneOmbrel").c_str(), 65534, 65534), 0);
    ASSERT_EQ(::chown(tree.path(file.path() + ".lock").c_str(), 65534, 65534), 0);
    for (const auto& words : {file.read, file.change}) {
        const auto result = runAsNobody(words);
        EXPECT_EQ(result.status, 1);
        EXPECT_THAT(result.errors, HasSubstr(tree.path(file.path()) + ": " + file.unreadable));
    }
    EXPECT_EQ(contents(), before);
}

TEST_P(OwnFileOf, StaysAsItWasInAFolderThatTakesNothing) {
    const auto& file = GetParam();
    ASSERT_EQ(run(file.change).status, 0);
    const auto before = contents();
    open();
    ::chmod(tree.path(file.path()).c_str(), 0644);
    EXPECT_EQ(runAsNobody(file.read).status, 0);
    const auto refused = runAsNobody(file.changeMore);
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(refused.errors, HasSubstr(tree.path(file.path()) + ": " + file.unwritable));
    EXPECT_EQ(contents(), before);
}

TEST_P(OwnFileOf, StaysAsItWasOnAFullDisk) {
    const auto& file = GetParam();
    const auto disk = TestMount::tmpfs(tree.path(file.folder), "size=64k");
    if (!disk) GTEST_SKIP() << disk.error();
    ASSERT_EQ(run(file.change).status, 0);
    const auto before = contents();
    {
        std::ofstream filler((*disk)->path() + "/filler");
        while (filler.write("x", 1).flush()) {
        }
    }
    const auto refused = run(file.changeMore);
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.errors, tree.path(file.path()) + ": " + file.unwritable + "\n");
    EXPECT_EQ(contents(), before);
    EXPECT_THAT(tree.names(file.folder + "/HalvaneOmbrel"), ElementsAre(file.name, file.name + ".lock"));
    std::filesystem::remove((*disk)->path() + "/filler");
    EXPECT_EQ(run(file.changeMore).status, 0);
    EXPECT_NE(contents(), before);
}

INSTANTIATE_TEST_SUITE_P(Each, OwnFileOf,
                         ::testing::Values(OwnFile{"Settings",
                                                   "config",
                                                   "settings.json",
                                                   {"settings", "list"},
                                                   {"settings", "set", "compactView", "true"},
                                                   {"settings", "set", "showHiddenFiles", "true"},
                                                   "The settings could not be read.",
                                                   "The settings could not be understood.",
                                                   "The settings could not be saved."},
                                           OwnFile{"Grants",
                                                   "data",
                                                   "Locations.plist",
                                                   {"grants", "list"},
                                                   {"grants", "add", "p"},
                                                   {"grants", "add", "q"},
                                                   "The list of locations could not be read.",
                                                   "The list of locations could not be read.",
                                                   "The list of locations could not be saved."}),
                         [](const auto& each) { return each.param.label; });

// ---- With other programs

using OwnFilesOfManyPrograms = Surroundings;

TEST_F(OwnFilesOfManyPrograms, LoseNoChangeMadeAtTheSameTime) {
    constexpr std::array switches = {"showHiddenFiles", "didCompleteOnboarding", "productNoticesDismissed",
                                     "compactView",     "hideKnownExtensions",   "showFullPathInTitle"};
    std::vector<std::unique_ptr<ChildProcess>> programs;
    const auto start = [&](std::vector<std::string> words) {
        words.insert(words.begin(), OMBRELCTL_PATH);
        programs.push_back(std::make_unique<ChildProcess>(words, setting()));
    };
    for (const char* name : switches) {
        tree.folder(name);
        start({"settings", "set", name, "true"});
        start({"grants", "add", name});
    }
    for (const auto& program : programs)
        EXPECT_EQ(program->finish().status, 0);
    const auto settings = run({"settings", "list"}).output, grants = run({"grants", "list"}).output;
    for (const std::string name : switches) {
        EXPECT_THAT(settings, HasSubstr(name + "\ttrue\n"));
        EXPECT_THAT(grants, HasSubstr("active\t")) << name;
        EXPECT_THAT(grants, HasSubstr("\t" + tree.path(name) + "\n"));
    }
}

TEST_F(OwnFilesOfManyPrograms, AreReadAndWrittenByPlistutil) {
    const auto convert = [](const std::string& from, const std::string& to) {
        return std::system(("plistutil -i '" + from + "' -o '" + to + "'").c_str()) == 0;
    };
    tree.folder("p");
    ASSERT_EQ(run({"grants", "add", "p"}).status, 0);
    const auto store = tree.path("data/HalvaneOmbrel/Locations.plist"), xml = tree.path("list.xml");
    if (!convert(store, xml)) GTEST_SKIP() << "no plistutil";
    EXPECT_THAT(tree.contents("list.xml"),
                AllOf(HasSubstr("<key>id</key>"), HasSubstr("<key>bookmark</key>"),
                      HasSubstr("<key>displayName</key>"), HasSubstr("<key>addedAt</key>")));
    const auto listed = run({"grants", "list"}).output;
    std::filesystem::remove(store);
    ASSERT_TRUE(convert(xml, store));
    EXPECT_EQ(run({"grants", "list"}).output, listed);
    std::filesystem::rename(tree.path("p"), tree.path("renamed"));
    EXPECT_THAT(run({"grants", "resolve"}).output, AllOf(HasSubstr("active\t"), HasSubstr("/renamed\n")));
    EXPECT_THAT(run({"grants", "list", "--json"}).output,
                Not(HasSubstr("p\",\"storedPath\":\"" + tree.path("p"))))
        << "what was found elsewhere has been stored anew";
}

} // namespace
} // namespace ombrel
