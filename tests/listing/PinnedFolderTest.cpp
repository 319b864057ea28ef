#include "listing/PinnedFolder.h"

#include <gmock/gmock.h>

namespace ombrel {
namespace {

const KnownFolders folders(*FileURL::fromPath("/home/me"));

TEST(KnownFolderTable, GivesEachItsPlaceAndTitle) {
    EXPECT_EQ(folders.url(KnownFolder::desktop).path(), "/home/me/Desktop");
    EXPECT_EQ(folders.url(KnownFolder::videos).path(), "/home/me/Movies");
    EXPECT_TRUE(folders.url(KnownFolder::music).isMarkedDirectory());
    for (const auto folder : allKnownFolders())
        EXPECT_EQ(titleKey(folder), "knownFolder." + std::string(rawValue(folder)));
    auto moved = folders;
    moved.set(KnownFolder::videos, *FileURL::fromPath("/media/films"));
    EXPECT_EQ(PinnedFolder(KnownFolder::videos).url(moved).path(), "/media/films");
}

TEST(PinnedFolderStored, GoesThereAndBack) {
    const std::pair<PinnedFolder, std::string> rows[] = {
        {KnownFolder::pictures, "known:pictures"},
        {FileURL(), "/"},
        {*FileURL::fromPath("/srv/d\xC3\xA9p\xC3\xB4t"), "/srv/d\xC3\xA9p\xC3\xB4t"},
        {*FileURL::fromPath("/srv/caf\xE9"), "file:///srv/caf%E9"},
    };
    for (const auto& [folder, text] : rows) {
        EXPECT_EQ(folder.stored(), text);
        EXPECT_EQ(PinnedFolder::fromStored(text), folder) << text;
    }
    for (const char* other :
         {"", "known:", "known:Desktop", "known:trash", "Desktop", "~/x", "https://x/y", "file:x"})
        EXPECT_FALSE(PinnedFolder::fromStored(other)) << other;
}

TEST(PinnedFolderTitle, IsTheNameOrThePathOfTheRoot) {
    EXPECT_EQ(PinnedFolder(*FileURL::fromPath("/srv/a\x80")).title(), "a\xEF\xBF\xBD");
    EXPECT_EQ(PinnedFolder(FileURL()).title(), "/");
}

} // namespace
} // namespace ombrel
