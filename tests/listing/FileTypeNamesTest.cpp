#include "listing/FileTypeNames.h"

#include "base/Text.h"
#include "support/TempTree.h"

#include <gmock/gmock.h>

#include <string>

namespace ombrel {
namespace {

using ::testing::Eq;
using testing::TempTree;

// No string table is connected in this program: a text is its key, with its arguments in parentheses.

std::string nameOf(const FileURL& url) {
    return FileTypeNames::name(FileItem::make(url.name(), url.parent(), 1));
}

TEST(FileTypeNames, NamesEachKind) {
    const TempTree tree;
    tree.file("plain");
    EXPECT_THAT(nameOf(tree.folder("photos.2020")), Eq("type.folder"));
    EXPECT_THAT(nameOf(tree.folder("Editor.app")), Eq("type.macApp"));
    EXPECT_THAT(nameOf(tree.folder("Bench.AppDir")), Eq("type.package.application"));
    EXPECT_THAT(nameOf(tree.fifo("pipe.txt")), Eq("kind.other"));
    EXPECT_THAT(nameOf(tree.url("missing.txt")), Eq("kind.other"));
    EXPECT_THAT(nameOf(tree.symlink("to-file.txt", "plain")), Eq("kind.symlink"));
    EXPECT_THAT(nameOf(tree.symlink("to-folder", "photos.2020")), Eq("type.folder"));
    EXPECT_THAT(nameOf(tree.symlink("dangling", "nowhere")), Eq("kind.symlinkBroken"));
    EXPECT_THAT(nameOf(tree.symlink("loop", "loop")), Eq("kind.symlinkLoop"));
    EXPECT_THAT(nameOf(tree.symlink("too-long", std::string(300, 'x'))), Eq("kind.symlinkInaccessible"));
}

TEST(FileTypeNames, NamesFilesByExtensionThenTypeThenEnding) {
    const TempTree tree;
    EXPECT_THAT(nameOf(tree.file("plain")), Eq("type.file"));
    EXPECT_THAT(nameOf(tree.file("Table.XLSX")), Eq("type.excel"));
    EXPECT_THAT(nameOf(tree.file("archive.tar.gz")), Eq("type.archive"));
    EXPECT_THAT(nameOf(tree.file("picture.png")), Eq("PNG image"));
    EXPECT_THAT(nameOf(tree.file("notes.qqz")), Eq("type.extFile(QQZ)"));
    EXPECT_THAT(nameOf(tree.file("notes.straße")), Eq("type.extFile(STRASSE)"));
    EXPECT_THAT(nameOf(tree.file("notes.a\xFF\nb")), Eq("type.extFile(A\uFFFD\uFFFDB)"));
    EXPECT_THAT(nameOf(tree.file(".profile")), Eq("type.file"));
}

TEST(FileTypeNames, KeepsTheFirstAnswerForAnExtension) {
    EXPECT_THAT(FileTypeNames::name("firstanswer", "image/png"), Eq("PNG image"));
    EXPECT_THAT(FileTypeNames::name("firstanswer", std::nullopt), Eq("PNG image"));
    EXPECT_THAT(FileTypeNames::name("otheranswer", "application/x-no-such-type"),
                Eq("type.extFile(OTHERANSWER)"));
    EXPECT_THAT(FileTypeNames::name("otheranswer", "image/png"), Eq("type.extFile(OTHERANSWER)"));
}

} // namespace
} // namespace ombrel
