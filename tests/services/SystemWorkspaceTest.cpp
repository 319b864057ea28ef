#include "services/SystemWorkspace.h"

#include "base/PathInput.h"
#include "base/UserFolders.h"
#include "support/TempTree.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <thread>

namespace ombrel {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;
using testing::TempTree;
using Kind = OpeningFacts::Kind;

constexpr mode_t runnable = 0755;

bool waitUntil(const std::function<bool()>& done) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!done()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}

std::string contentsOf(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

/// Applications of the test's own, which write down how they were started. GIO reads the folders once, so
/// they stand before the first question.
class Workspace : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        const std::filesystem::path folder = UserFolders::data().appending("applications").path();
        std::filesystem::create_directories(folder);
        std::filesystem::create_directories(UserFolders::config().path());
        const auto add = [&](const std::string& id, const std::string& more) {
            std::ofstream(folder / (id + ".desktop"))
                << "[Desktop Entry]\nType=Application\nName=" << id << "\nIcon=icon-of-" << id << "\n"
                << more << "\n";
        };
        add("taking-all", "Exec=" + recorder() + " all %F");
        add("taking-one", "Exec=" + recorder() + " one %f\nPath=/usr");
        add("hidden", "Exec=" + recorder() + " hidden %U\nNoDisplay=true");
        add("broken", "Exec=" + recorder() + " broken %F\nPath=/nothing/there");
        std::ofstream(folder / "mimeinfo.cache") << "[MIME Cache]\n"
                                                    "text/plain=taking-all.desktop;taking-one.desktop;\n"
                                                    "image/png=taking-one.desktop;taking-all.desktop;\n"
                                                    "audio/flac=broken.desktop;\n"
                                                    "inode/directory=taking-one.desktop;\n";
        std::ofstream(recorder())
            << "#!/bin/sh\n"
               "out=$(dirname \"$0\")/started\n"
               "{ echo \"$@\"; pwd; ps -o sid= -p $$ | tr -d ' ' | sed \"s/^$$\\$/leader/\";\n"
               "echo \"$DESKTOP_STARTUP_ID$XDG_ACTIVATION_TOKEN\"; } > \"$out.$$\"\n"
               "cat \"$out.$$\" >> \"$out\"; rm \"$out.$$\"\n";
        ::chmod(recorder().c_str(), runnable);
    }
    static void TearDownTestSuite() { std::filesystem::remove(record()); }
    Workspace() { std::filesystem::remove(record()); }

    static std::string recorder() { return UserFolders::data().appending("recorder").path(); }
    static std::string record() { return UserFolders::data().appending("started").path(); }
    /// What the applications wrote, once there are so many lines.
    static std::string started(int lines) {
        std::string text;
        (void)waitUntil([&] {
            text = contentsOf(record());
            return std::ranges::count(text, '\n') >= lines;
        });
        return text;
    }
    static DesktopApplication application(const std::string& id) {
        return {id + ".desktop", id, "icon-of-" + id,
                UserFolders::data().appending("applications").appending(id + ".desktop")};
    }
    static std::vector<std::string> names(const std::vector<DesktopApplication>& applications) {
        std::vector<std::string> names;
        for (const auto& one : applications)
            names.push_back(one.name);
        return names;
    }
    [[nodiscard]] FileURL executable(std::string_view name, std::string_view contents) const {
        const auto url = tree.file(name, contents);
        ::chmod(url.path().c_str(), runnable);
        return url;
    }

    TempTree tree;
    SystemWorkspace workspace;
};

TEST_F(Workspace, OpensSeveralFilesInOneStartApartFromThoseOfOtherApplications) {
    ::setenv("DESKTOP_STARTUP_ID", "ours", 1);
    const std::vector<FileURL> urls = {tree.file("a b.txt", "x"), tree.file("50%20\xff.txt", "x"),
                                       tree.file("empty.txt"), tree.file("nothing")};
    EXPECT_THAT(workspace.open(urls, {{"XDG_ACTIVATION_TOKEN", "token"}}), IsEmpty());
    ::unsetenv("DESKTOP_STARTUP_ID");
    std::string all = "all";
    for (const auto& url : urls)
        all += " " + url.path();
    EXPECT_EQ(started(4), all + "\n" + PathInput::userHomeDirectory().path() + "\nleader\ntoken\n");
}

TEST_F(Workspace, StartsAnApplicationOfOneFileOnceForEach) {
    const std::vector<FileURL> urls = {tree.file("1.txt", "x"), tree.file("2.txt", "x")};
    EXPECT_THAT(workspace.openWith(application("taking-one"), urls, {}), IsEmpty());
    const std::string text = started(8);
    for (const auto& url : urls)
        EXPECT_THAT(text, ::testing::HasSubstr("one " + url.path() + "\n/usr\nleader\n"));
}

TEST_F(Workspace, NamesWhatItCannotOpenAndOpensTheRest) {
    const std::vector<FileURL> urls = {tree.file("data", std::string("\x00\x01\x02\x03", 4)),
                                       tree.url("gone"),
                                       tree.symlink("broken", "nowhere"),
                                       tree.fifo("pipe"),
                                       tree.file("tone.flac", "fLaC"),
                                       tree.file("fine.txt", "x")};
    const auto problems = workspace.open(urls, {});
    std::vector<std::string> keys;
    for (const auto& problem : problems) {
        keys.emplace_back(problem.text.key);
        EXPECT_EQ(problem.text.arguments.at(0), problem.url.name());
        EXPECT_EQ(problem.lacksApplication, problem.text.key == "open.error.noApplication");
    }
    EXPECT_THAT(keys, ElementsAre("open.error.noApplication", "open.error.missing", "open.error.brokenLink",
                                  "open.error.special", "open.error.failed"));
    EXPECT_THAT(started(4), StartsWith("all " + urls.back().path()));
    EXPECT_THAT(workspace.openWith(application("uninstalled"), {{urls.back()}}, {}).at(0).text.key,
                "open.error.applicationGone");
}

TEST_F(Workspace, OffersWhatOpensAllOfTheFilesTheDefaultFirst) {
    const std::vector<FileURL> urls = {tree.file("a.txt", "x"), tree.file("b.png", "x")};
    const auto text = workspace.applicationsFor({&urls[0], 1});
    // Others may be installed.
    ASSERT_GE(text.applications.size(), 2U);
    EXPECT_EQ(text.applications[0], application("taking-all"));
    EXPECT_EQ(text.applications[1], application("taking-one"));
    EXPECT_TRUE(text.hasDefault);
    const auto both = workspace.applicationsFor(urls);
    EXPECT_THAT(both.types, ElementsAre("text/plain", "image/png"));
    EXPECT_THAT(names(both.applications), ::testing::UnorderedElementsAre("taking-all", "taking-one"));
    EXPECT_FALSE(both.hasDefault);
    const auto shown = names(workspace.allApplications());
    EXPECT_THAT(shown, ::testing::IsSupersetOf({"taking-all", "taking-one"}));
    EXPECT_THAT(shown, ::testing::Not(::testing::Contains("hidden")));
    EXPECT_EQ(workspace.describe(application("hidden").file), application("hidden"));
    EXPECT_EQ(workspace.describe(tree.url("gone.desktop")), std::nullopt);
}

TEST_F(Workspace, MakesAnApplicationTheDefaultThroughALink) {
    const auto list = UserFolders::config().appending("mimeapps.list").path();
    std::filesystem::create_symlink(tree.file("kept.list", "# mine\n").path(), list);
    const auto type = std::to_array<std::string>({"image/png"});
    EXPECT_EQ(workspace.setDefault(type, application("hidden")), std::nullopt);
    EXPECT_TRUE(std::filesystem::is_symlink(list));
    EXPECT_THAT(tree.contents("kept.list"), StartsWith("# mine\n"));
    const auto picture = tree.file("b.png", "x");
    // GIO hears of it by a watch.
    EXPECT_TRUE(waitUntil([&] {
        const auto choice = workspace.applicationsFor({&picture, 1});
        return choice.hasDefault && choice.applications.front().name == "hidden";
    }));
    std::filesystem::remove(list);
    std::filesystem::create_directory(list);
    const auto failure = workspace.setDefault(type, application("hidden"));
    std::filesystem::remove(list);
    EXPECT_EQ(failure.value().key, "open.error.defaultNotSaved");
}

TEST_F(Workspace, KnowsWhatOpeningWouldMean) {
    const std::string elf("\x7f"
                          "ELF\x02\x01\x01\0\0\0\0\0\0\0\0\0\x02\0\x3e\0\x01\0\0\0",
                          24);
    const struct {
        FileURL url;
        Kind kind;
        bool mayRun;
    } rows[] = {
        {tree.folder("folder"), Kind::folder, false},
        {tree.symlink("to folder", "folder"), Kind::folder, false},
        {tree.file("text.txt", "x"), Kind::document, false},
        {executable("photo.png", "x"), Kind::document, true}, // every file of some file systems is so
        {tree.file("script.sh", "#!/bin/sh\n"), Kind::script, false},
        {executable("script", "#!/usr/bin/python3\n"), Kind::script, true},
        {executable("program", elf), Kind::program, true},
        {tree.symlink("to program", "program"), Kind::program, true},
        {tree.file("no program", elf), Kind::program, false},
        {tree.file("x.desktop", "[Desktop Entry]\n"), Kind::launcher, false},
        {executable("y.desktop", "[Desktop Entry]\n"), Kind::launcher, true},
        {application("taking-all").file, Kind::launcher, true},
    };
    for (const auto& row : rows) {
        const auto facts = workspace.examine(row.url);
        ASSERT_TRUE(facts) << row.url.path();
        EXPECT_EQ(facts->kind, row.kind) << row.url.path() << " " << facts->type;
        EXPECT_EQ(facts->mayRun, row.mayRun) << row.url.path();
    }
}

TEST_F(Workspace, RunsOnlyWhatIsMarkedAsExecutable) {
    const std::string script = "#!/bin/sh\npwd > \"$(dirname \"$0\")/ran\"\n";
    EXPECT_EQ(workspace.run(tree.file("plain.sh", script), {}).at(0).text.key, "open.error.notExecutable");
    EXPECT_EQ(workspace.run(executable("bad.sh", "#!/nothing/there\n"), {}).at(0).text.key,
              "open.error.failed");
    EXPECT_THAT(workspace.run(executable("good.sh", script), {}), IsEmpty());
    EXPECT_TRUE(waitUntil([&] { return contentsOf(tree.path("ran")) == tree.path() + "\n"; }));
    EXPECT_THAT(workspace.run(application("taking-all").file, {}), IsEmpty());
    EXPECT_THAT(started(4), StartsWith("all\n"));
}

TEST_F(Workspace, OpensATerminalInTheFolder) {
    const std::string path = std::getenv("PATH");
    const auto programs = tree.folder("bin");
    ::setenv("PATH", programs.path().c_str(), 1);
    const auto none = workspace.openTerminal(tree.url(), {});
    (void)executable("bin/konsole", "#!/bin/sh\necho wrong > ran\n");
    (void)executable("bin/x-terminal-emulator", "#!/bin/sh\npwd > ran\n");
    const auto opened = workspace.openTerminal(tree.url(), {});
    const auto refused = workspace.openTerminal(tree.url("gone"), {});
    ::setenv("PATH", path.c_str(), 1);
    EXPECT_EQ(none, (Text{"open.error.noTerminal"}));
    EXPECT_EQ(opened, std::nullopt);
    EXPECT_TRUE(waitUntil([&] { return contentsOf(tree.path("ran")) == tree.path() + "\n"; }));
    EXPECT_EQ(refused.value().key, "open.error.terminal");
}

} // namespace
} // namespace ombrel
