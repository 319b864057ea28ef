#include "base/FileURL.h"

#include <gmock/gmock.h>

#include <string>

namespace ombrel {
namespace {

std::string pathOf(std::string_view text) {
    const auto url = FileURL::fromPath(text);
    return url ? url->path() : "refused";
}

TEST(FileURLFromPath, KeepsBytesAndDropsWhatMeansNothing) {
    EXPECT_EQ(pathOf("/"), "/");
    EXPECT_EQ(pathOf("//a///b/./c/"), "/a/b/c");
    EXPECT_EQ(pathOf("/a/../b"), "/a/../b");
    EXPECT_EQ(pathOf("/\xFF\xFE name\n"), "/\xFF\xFE name\n");
    EXPECT_EQ(pathOf("relative"), "refused");
    EXPECT_EQ(pathOf(""), "refused");
    EXPECT_EQ(pathOf(std::string_view("/a\0b", 4)), "refused");
    EXPECT_TRUE(FileURL::fromPath("/a/")->isMarkedDirectory());
    EXPECT_FALSE(FileURL::fromPath("/a")->isMarkedDirectory());
}

TEST(FileURLEquality, IgnoresTheDirectoryMark) {
    const auto plain = *FileURL::fromPath("/a/b"), marked = *FileURL::fromPath("/a/b/");
    EXPECT_EQ(plain, marked);
    EXPECT_EQ(std::hash<FileURL>{}(plain), std::hash<FileURL>{}(marked));
}

TEST(FileURLComponents, OfTheRootAndOfOthers) {
    const FileURL root;
    EXPECT_EQ(root.name(), "");
    EXPECT_EQ(root.parent(), root);
    const auto child = root.appending("x");
    EXPECT_EQ(child.path(), "/x");
    EXPECT_EQ(child.parent(), root);
    EXPECT_EQ(child.appending("y").name(), "y");
    EXPECT_TRUE(child.isWithin(root));
    EXPECT_TRUE(child.appending("y").isWithin(child));
    EXPECT_FALSE(FileURL::fromPath("/xy")->isWithin(child));
    EXPECT_EQ(root.title(), "/");
    EXPECT_EQ(child.title(), child.name());
    EXPECT_EQ(root.pathBelow(root), "");
    EXPECT_EQ(child.pathBelow(child), "");
    EXPECT_EQ(child.appending("y").pathBelow(root), child.path().substr(1) + "/y");
    EXPECT_EQ(child.appending("y").appending("z").pathBelow(child), "y/z");
}

TEST(FileURLStandardized, TakesParentsAwayByTextAlone) {
    struct Row {
        std::string_view path, standardized;
    };
    constexpr Row rows[] = {
        {"/a/b", "/a/b"},
        {"/a/b/../c", "/a/c"},
        {"/a/b/../../c", "/c"},
        {"/a/..", "/"},
        {"/..", "/"},
        {"/../../a", "/a"},
        {"/a/b/..", "/a"},
        {"/a/..b/c..", "/a/..b/c.."},
        {"/a/.../b", "/a/.../b"},
        {"/", "/"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(FileURL::fromPath(row.path)->standardized().path(), row.standardized) << row.path;
    EXPECT_TRUE(FileURL::fromPath("/a/b/..")->standardized().isMarkedDirectory());
    EXPECT_TRUE(FileURL::fromPath("/a/../b/")->standardized().isMarkedDirectory());
    EXPECT_FALSE(FileURL::fromPath("/a/../b")->standardized().isMarkedDirectory());
}

TEST(FileURI, GoesThereAndBackForEveryByte) {
    std::string name;
    for (int byte = 1; byte < 256; ++byte)
        if (byte != '/') name.push_back(static_cast<char>(byte));
    const auto url = FileURL().appending(name, FileURL::Mark::directory);
    const auto back = FileURL::fromURI(url.uri());
    ASSERT_TRUE(back);
    EXPECT_EQ(back->path(), url.path());
    EXPECT_TRUE(back->isMarkedDirectory());
}

TEST(FileURI, HasTheFormThatThumbnailsAreHashedBy) {
    EXPECT_EQ(FileURL::fromPath("/a b;c?d#e%f/\xC3\xA9&=:@+$,!~*'()")->uri(),
              "file:///a%20b%3Bc%3Fd%23e%25f/%C3%A9&=:@+$,!~*'()");
}

TEST(FileURI, IsReadInEveryUsualForm) {
    for (const auto* text : {"file:/a", "file:///a", "FILE://localhost/a", "file://LOCALHOST/%61"})
        EXPECT_EQ(FileURL::fromURI(text)->path(), "/a") << text;
    const auto fault = [](std::string_view text) { return FileURL::fromURI(text).error(); };
    EXPECT_EQ(fault("http://a/b"), FileURL::Fault::notAFileURI);
    EXPECT_EQ(fault("file"), FileURL::Fault::notAFileURI);
    EXPECT_EQ(fault("file://elsewhere.example/a"), FileURL::Fault::foreignHost);
    EXPECT_EQ(fault("file:///a%2"), FileURL::Fault::badEscape);
    EXPECT_EQ(fault("file:///a%zz"), FileURL::Fault::badEscape);
    EXPECT_EQ(fault("file:///a%00"), FileURL::Fault::badEscape);
    EXPECT_EQ(fault("file:///a?query"), FileURL::Fault::badEscape);
    EXPECT_EQ(fault("file:relative"), FileURL::Fault::notAbsolute);
}

} // namespace
} // namespace ombrel
