#include "browser/DroppedFolders.h"

#include "browser/BrowserTabsModel.h"
#include "browser/ModelWorld.h"

#include <gmock/gmock.h>

namespace ombrel {
namespace {

using namespace testing;

TEST(DroppedFoldersOpen, AsTabsInTheirOrderWithoutFilesAmongThem) {
    TempTree tree;
    for (const auto* name : {"A", "B", "C"})
        tree.folder(name);
    tree.file("file");
    tree.symlink("link", "C");
    BrowserTabsModel tabs([] { return std::make_unique<BrowserModel>(realListings()); }, tree.url("A"));
    DroppedFolders::openAsTabs(&tabs, {tree.url("B"), tree.url("file"), tree.url("gone"), tree.url("link")});
    ASSERT_TRUE(runUntil([&] { return tabs.count() == 3; }));
    EXPECT_EQ(tabs.tab(1).currentURL(), tree.url("B"));
    EXPECT_EQ(tabs.tab(2).currentURL(), tree.url("link"));
    EXPECT_EQ(tabs.selectedIndex(), 1U);
}

} // namespace
} // namespace ombrel
