#include "listing/FileSort.h"

#include "listing/DirectoryProvider.h"
#include "support/TempTree.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace ombrel {
namespace {

using ::testing::ElementsAre;
using testing::TempTree;

class Sorted : public ::testing::Test {
protected:
    std::vector<std::string> by(FileSort sort) const {
        std::vector<std::string> names;
        const auto snapshot = DirectoryProvider().load({.url = tree.url(), .sort = sort});
        for (const auto item : snapshot->items())
            names.emplace_back(item.name());
        return names;
    }
    TempTree tree;
};

TEST_F(Sorted, ByNameCountsDigitsAndPutsFoldersFirstBothWays) {
    tree.folder("z");
    tree.folder("y");
    tree.symlink("x", "y");
    for (const auto* name : {"file10", "file2", "a", "A"})
        tree.file(name);
    EXPECT_THAT(by({}), ElementsAre("x", "y", "z", "A", "a", "file2", "file10"));
    EXPECT_THAT(by({.ascending = false}), ElementsAre("z", "y", "x", "file10", "file2", "a", "A"));
    EXPECT_THAT(by({.foldersFirst = false}), ElementsAre("A", "a", "file2", "file10", "x", "y", "z"));
}

TEST_F(Sorted, BySizeLeavesWhatHasNoneAtTheEndBothWays) {
    tree.folder("folder");
    tree.fifo("fifo");
    tree.fileOfSize("big", 300);
    tree.fileOfSize("small", 2);
    tree.fileOfSize("also small", 2);
    const FileSort up{FileSort::Key::size, true, false}, down{FileSort::Key::size, false, false};
    EXPECT_THAT(by(up), ElementsAre("also small", "small", "big", "fifo", "folder"));
    EXPECT_THAT(by(down), ElementsAre("big", "small", "also small", "folder", "fifo"));
}

TEST_F(Sorted, MergesListsOfDifferentFolders) {
    const TempTree other;
    for (const auto* name : {"a", "c", "e"})
        tree.file(name);
    for (const auto* name : {"b", "d", "f", "g"})
        other.file(name);
    const auto first = DirectoryProvider().load({.url = tree.url()}),
               second = DirectoryProvider().load({.url = other.url()});
    const auto merged = FileSort().merge(first->items(), second->items());
    std::vector<std::string> paths;
    for (const auto item : merged)
        paths.push_back(item.url().path());
    EXPECT_THAT(paths, ElementsAre(tree.path("a"), other.path("b"), tree.path("c"), other.path("d"),
                                   tree.path("e"), other.path("f"), other.path("g")));
    EXPECT_EQ(FileSort().merge({}, first->items()).size(), 3U);
    EXPECT_EQ(FileSort().merge(first->items(), {}).size(), 3U);
}

} // namespace
} // namespace ombrel
