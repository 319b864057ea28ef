#include "listing/TypeDatabase.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

namespace ombrel {
namespace {

using ::testing::Each;
using ::testing::Eq;
using ::testing::IsEmpty;
using ::testing::Ne;
using ::testing::StartsWith;

std::string_view fileIdentifier(std::string_view extension) {
    return TypeDatabase::identifier(TypeDatabase::fileType(extension));
}

TEST(TypeDatabase, NamesTheFixedTypes) {
    EXPECT_THAT(TypeDatabase::identifier(TypeDatabase::folder()), Eq("inode/directory"));
    EXPECT_THAT(TypeDatabase::identifier(TypeDatabase::data()), Eq("application/octet-stream"));
    EXPECT_THAT(TypeDatabase::identifier(TypeDatabase::symbolicLink()), Eq("inode/symlink"));
    EXPECT_THAT(TypeDatabase::identifier(0), IsEmpty());
    EXPECT_THAT(TypeDatabase::identifier(4'000'000'000), IsEmpty());
}

TEST(TypeDatabase, NumbersIdentifiersOnce) {
    const TypeIndex made = TypeDatabase::index("application/x-made-for-a-test");
    EXPECT_THAT(TypeDatabase::index("application/x-made-for-a-test"), Eq(made));
    EXPECT_THAT(TypeDatabase::identifier(made), Eq("application/x-made-for-a-test"));
    EXPECT_THAT(TypeDatabase::index("inode/directory"), Eq(TypeDatabase::folder()));
    EXPECT_THAT(TypeDatabase::index(""), Eq(0U));
}

TEST(TypeDatabase, FindsTheTypesOfFiles) {
    EXPECT_THAT(fileIdentifier("pdf"), Eq("application/pdf"));
    EXPECT_THAT(fileIdentifier("PDF"), Eq("application/pdf"));
    EXPECT_THAT(fileIdentifier("html"), Eq("text/html")) << "several patterns match, one has more weight";
    EXPECT_THAT(fileIdentifier("flatpakrepo"), Eq("application/vnd.flatpak.repo"))
        << "longer than eight bytes";
    EXPECT_THAT(fileIdentifier("FLATPAKREPO"), Eq("application/vnd.flatpak.repo"));
}

TEST(TypeDatabase, KnowsNoTypeForWhatItWouldOnlyGuess) {
    const std::string longest(64, 'q'), tooLong(65, 'q'), huge(100'000, 'q');
    for (const std::string_view extension :
         {"", "nosuchtype", "12", "\xFF\xFE", "p\xC3", "*", "[a-z]", "pd\nf"})
        EXPECT_THAT(TypeDatabase::fileType(extension), Eq(0U)) << extension;
    for (const std::string& extension : {longest, tooLong, huge})
        EXPECT_THAT(TypeDatabase::fileType(extension), Eq(0U));
}

TEST(TypeDatabase, AnswersManyExtensionsThatShareItsCaches) {
    for (int round = 0; round < 2; ++round)
        for (int number = 0; number < 70'000; ++number)
            ASSERT_THAT(TypeDatabase::fileType("q" + std::to_string(number)), Eq(0U));
    EXPECT_THAT(fileIdentifier("png"), Eq("image/png"));
    EXPECT_THAT(fileIdentifier("flatpakref"), Eq("application/vnd.flatpak.ref"));
}

TEST(TypeDatabase, DecidesPackagesByItsTable) {
    for (const char* extension : {"app", "App", "AppDir", "rtfd", "prefPane", "xcworkspace", "pages"})
        EXPECT_THAT(TypeDatabase::packageType(extension), Ne(0U)) << extension;
    for (const char* extension : {"", "ap", "apps", "txt", "d", "2020", "zzz"})
        EXPECT_THAT(TypeDatabase::packageType(extension), Eq(0U)) << extension;
    const TypeIndex application = TypeDatabase::packageType("app");
    EXPECT_TRUE(TypeDatabase::conforms(application, "inode/directory"));
    EXPECT_TRUE(TypeDatabase::isApplication(application));
    EXPECT_FALSE(TypeDatabase::isApplication(TypeDatabase::packageType("pages")));
    EXPECT_THAT(TypeDatabase::description(application), Eq("type.package.application"))
        << "the key: no table is connected";
}

TEST(TypeDatabase, FollowsTheSubclassTree) {
    EXPECT_TRUE(TypeDatabase::conforms(TypeDatabase::fileType("csh"), "application/x-shellscript"));
    EXPECT_TRUE(TypeDatabase::conforms(TypeDatabase::fileType("py"), "text/plain"));
    EXPECT_TRUE(TypeDatabase::conforms(TypeDatabase::fileType("png"), "application/octet-stream"));
    EXPECT_FALSE(TypeDatabase::conforms(TypeDatabase::fileType("png"), "text/plain"));
    EXPECT_FALSE(TypeDatabase::conforms(0, "application/octet-stream"));
}

TEST(TypeDatabase, TellsWhatRuns) {
    const auto classes = [](const char* extension) {
        const TypeIndex type = TypeDatabase::fileType(extension);
        return std::string(TypeDatabase::isExecutable(type) ? "x" : "") +
               (TypeDatabase::isScript(type) ? "s" : "") + (TypeDatabase::isApplication(type) ? "a" : "");
    };
    for (const char* extension : {"exe", "so", "jar", "class", "pyc", "appimage"})
        EXPECT_THAT(classes(extension), StartsWith("x")) << extension;
    for (const char* extension : {"sh", "csh", "py", "pl", "rb", "js", "mjs", "php", "lua", "vbs"})
        EXPECT_THAT(classes(extension), ::testing::HasSubstr("s")) << extension;
    for (const char* extension : {"desktop", "appimage", "msi", "deb", "rpm", "flatpakref", "jnlp", "apk"})
        EXPECT_THAT(classes(extension), ::testing::EndsWith("a")) << extension;
    for (const char* extension :
         {"pdf", "txt", "json", "geojson", "png", "mp4", "zip", "tar", "html", "o", "c", "svg", "nosuchtype"})
        EXPECT_THAT(classes(extension), IsEmpty()) << extension;
}

TEST(TypeDatabase, DescribesTypesInSentenceCase) {
    EXPECT_THAT(TypeDatabase::description(TypeDatabase::fileType("sh")), Eq("Shell script"));
    EXPECT_THAT(TypeDatabase::description(TypeDatabase::fileType("rst")), Eq("reStructuredText document"));
    EXPECT_THAT(TypeDatabase::description(TypeDatabase::fileType("xlsm")), StartsWith("Excel"));
    EXPECT_THAT(TypeDatabase::description(TypeDatabase::index("application/x-made-for-a-test")), IsEmpty());
    EXPECT_THAT(TypeDatabase::description(TypeDatabase::data()), IsEmpty());
    EXPECT_THAT(TypeDatabase::description(0), IsEmpty());
}

TEST(TypeDatabase, GivesAllThreadsTheSameNumbers) {
    const std::vector<std::string> known = {"svg", "epub", "flac", "torrent", "metalink", "flatpakrepo"};
    std::array<std::vector<TypeIndex>, 4> answers;
    {
        std::vector<std::jthread> threads;
        for (auto& mine : answers)
            threads.emplace_back([&mine, &known] {
                for (const auto& extension : known)
                    mine.push_back(TypeDatabase::fileType(extension));
            });
    }
    EXPECT_THAT(answers, Each(Eq(answers[0])));
    EXPECT_THAT(answers[0], Each(Ne(0U)));
}

// Run in a process of its own, which reads its database afresh.
TEST(TypeDatabaseDeathTest, WorksWithoutADatabase) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto works = [] {
        ::setenv("XDG_DATA_DIRS", "/nonexistent", 1);
        ::setenv("XDG_DATA_HOME", "/nonexistent", 1);
        const bool knowsNothing =
            TypeDatabase::fileType("pdf") == 0 && TypeDatabase::fileType("flatpakrepo") == 0;
        const TypeIndex script = TypeDatabase::index("application/x-shellscript");
        return knowsNothing && TypeDatabase::packageType("app") != 0 && TypeDatabase::isScript(script) &&
               !TypeDatabase::isExecutable(script) && TypeDatabase::description(script).empty();
    };
    EXPECT_EXIT(::_exit(works() ? 0 : 1), ::testing::ExitedWithCode(0), "");
}

} // namespace
} // namespace ombrel
