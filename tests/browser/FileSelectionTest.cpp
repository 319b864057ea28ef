#include "browser/FileSelection.h"

#include "listing/DirectoryProvider.h"
#include "listing/SystemCall.h"
#include "support/TempTree.h"

#include <gmock/gmock.h>

#include <string>

namespace ombrel {
namespace {

using ::testing::ElementsAre;
using Change = FileSelection::Change;

class Selecting : public ::testing::Test {
protected:
    Selecting() {
        for (const auto* name : {"a", "b", "c", "d", "e"})
            tree.file(name);
        const SystemCall::Allowed allowed;
        list = DirectoryProvider().load({.url = tree.url(), .generation = 1, .sort = {}})->items();
        selection = FileSelection(list, std::make_shared<const ItemSet>(ItemSet::of(list)));
    }
    [[nodiscard]] std::string selected() const {
        std::string names;
        for (const auto& item : selection.items())
            names += item.name();
        return names;
    }

    testing::TempTree tree;
    FileItemList list;
    FileSelection selection;
};

TEST_F(Selecting, RangesAddRemoveAndFlip) {
    selection.change(RowRange::between(3, 1), Change::add);
    EXPECT_EQ(selected(), "bcd");
    selection.change(RowRange{2, 5}, Change::flip);
    EXPECT_EQ(selected(), "be");
    selection.change(4, Change::remove);
    selection.change(0, Change::remove);
    selection.change(RowRange{3, 3}, Change::add);
    EXPECT_EQ(selected(), "b");
    EXPECT_EQ(selection.count(), 1U);
    EXPECT_EQ(selection.firstRow(), 1U);
}

TEST_F(Selecting, EverythingAndItsOpposite) {
    selection.change(2, Change::add);
    selection.change(RowRange{0, 5}, Change::flip);
    EXPECT_EQ(selected(), "abde");
    selection.selectAll();
    EXPECT_TRUE(selection.isEverything());
    selection.change(RowRange{0, 5}, Change::flip);
    EXPECT_TRUE(selection.empty());
    EXPECT_FALSE(FileSelection().isEverything());
    EXPECT_EQ(FileSelection().firstRow(), std::nullopt);
}

TEST_F(Selecting, HoldsOnlyWhatTheListHolds) {
    const FileItemList part(list.blocks(), {list.order()[4], list.order()[2]});
    selection.selectAll();
    selection = FileSelection(part, std::make_shared<const ItemSet>(ItemSet::of(part)), selection.set());
    EXPECT_EQ(selected(), "ec");
    selection.select(ItemSet::of(list));
    EXPECT_EQ(selected(), "ec");
}

TEST(ItemSetMembers, FarApartAreCountedOnce) {
    ItemSet set;
    set.insert(5);
    set.insert(5);
    set.insert(1'000'000);
    set.erase(2'000'000);
    EXPECT_EQ(set.count(), 2U);
    EXPECT_TRUE(set.contains(1'000'000));
    EXPECT_FALSE(set.contains(2'000'000));
    ItemSet other;
    other.insert(5);
    other |= set;
    EXPECT_EQ(other, set);
    other -= set;
    EXPECT_EQ(other, ItemSet());
    std::vector<ItemRef> members;
    set.forEach([&](ItemRef ref) { members.push_back(ref); });
    EXPECT_THAT(members, ElementsAre(5U, 1'000'000U));
}

} // namespace
} // namespace ombrel
