#include "listing/FileVisibility.h"

#include "support/TempTree.h"

#include <gmock/gmock.h>

#include <string>

namespace ombrel {
namespace {

using FileVisibility::nameHidingKnownExtension;
using ::testing::Eq;
using ::testing::Optional;
using testing::TempTree;

TEST(FileVisibility, ProtectsTheNamesThatSystemsLeaveBehind) {
    for (const char* name :
         {"._report.pdf", "._", ".DS_Store", "Thumbs.db", "Icon\r", ".HFS+ Private Directory Data\r",
          "desktop.ini", "Desktop.ini", "$RECYCLE.BIN", "$Recycle.Bin", "swapfile.sys"})
        EXPECT_TRUE(FileVisibility::isProtectedSystemItem(name)) << name;
    for (const char* name :
         {"", ".", "_", "thumbs.db", "Icon", "DESKTOP.INI", ".ds_store", "_.x", ".Trash-1000", "report.pdf"})
        EXPECT_FALSE(FileVisibility::isProtectedSystemItem(name)) << name;
}

TEST(FileVisibility, HidesTheEndingsOfKnownDocuments) {
    EXPECT_THAT(nameHidingKnownExtension("report.pdf"), Eq("report"));
    EXPECT_THAT(nameHidingKnownExtension("REPORT.PDF"), Eq("REPORT"));
    EXPECT_THAT(nameHidingKnownExtension("archive.tar.gz"), Eq("archive.tar"));
    EXPECT_THAT(nameHidingKnownExtension("page.html"), Eq("page"));
    EXPECT_THAT(nameHidingKnownExtension("data.json"), Eq("data"));
    EXPECT_THAT(nameHidingKnownExtension("\xFF.txt"), Eq("\xFF"));
}

TEST(FileVisibility, ShowsWholeNamesOfWhatRunsAndOfWhatHasNoKnownEnding) {
    for (const char* name :
         {"setup.exe", "run.sh",    "RUN.SH",   "x.app",  "a.desktop",       "a.so",         "a.AppImage",
          "a.deb",     "a.php",     "a.url",    "notes.", ".bashrc",         ".png",         "..pdf",
          "a..pdf",    "notes.qqz", "Makefile", "",       "v1. Final draft", "photo.jpg.exe"})
        EXPECT_THAT(nameHidingKnownExtension(name), Eq(name));
}

TEST(FileVisibility, LeavesFoldersAloneAndTellsWhatItHid) {
    const TempTree tree;
    tree.folder("photos.pdf");
    tree.symlink("album.pdf", "photos.pdf");
    tree.file("report.pdf");
    tree.symlink("link.pdf", "report.pdf");
    const auto shown = [&](std::string_view name) {
        return std::string(nameHidingKnownExtension(FileItem::make(name, tree.url(), 1)));
    };
    EXPECT_THAT(shown("photos.pdf"), Eq("photos.pdf"));
    EXPECT_THAT(shown("album.pdf"), Eq("album.pdf"));
    EXPECT_THAT(shown("report.pdf"), Eq("report"));
    EXPECT_THAT(shown("link.pdf"), Eq("link"));

    const auto item = FileItem::make("report.pdf", tree.url(), 1);
    EXPECT_THAT(FileVisibility::hiddenExtension(item, "report"), Optional(Eq("pdf")));
    EXPECT_THAT(FileVisibility::hiddenExtension(item, "report.pdf"), Eq(std::nullopt));
}

} // namespace
} // namespace ombrel
