// What a pane selects by itself once it is listed, and what its services make it do.
#include "browser/BrowserModel.h"
#include "browser/ModelWorld.h"
#include "browser/ServicesWorld.h"
#include "browser/SteppedListings.h"

#include <QSignalSpy>

#include <gmock/gmock.h>
#include <unistd.h>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Place = BrowserModel::Place;

class PaneSelection : public ::testing::Test {
protected:
    PaneSelection() : model(realListings()) {
        for (const auto* name : {"b", "c", "d"})
            tree.file(name);
        model.navigate(tree.url());
        EXPECT_TRUE(runUntilLoaded(model));
    }
    [[nodiscard]] bool selects(const std::vector<std::string>& names) const {
        return runUntil([&] { return selectedNames(model) == names; });
    }

    TempTree tree;
    BrowserModel model;
};

TEST_F(PaneSelection, SelectsAndRevealsWhatIsThere) {
    select(model, {"b"});
    const QSignalSpy reveals(&model, &BrowserModel::revealRequested);
    model.selectWhenListed({tree.url("d"), tree.url("c"), tree.url("c"), tree.url("elsewhere/x")});
    EXPECT_THAT(selectedNames(model), ElementsAre("c", "d"));
    EXPECT_EQ(nameAt(model, Place::current), "c");
    EXPECT_EQ(nameAt(model, Place::anchor), "c");
    EXPECT_EQ(reveals.size(), 1);
    select(model, {"b"});
    model.refresh();
    ASSERT_TRUE(runUntilQuiet());
    EXPECT_THAT(selectedNames(model), ElementsAre("b")) << "it was done once";
}

TEST_F(PaneSelection, SelectsWhatTheFolderGetsLaterAllOfItOneAfterAnother) {
    model.selectWhenListed({tree.url("new 1"), tree.url("new 2")});
    EXPECT_TRUE(model.selection().empty());
    tree.file("new 1");
    EXPECT_TRUE(selects({"new 1"}));
    tree.file("new 2");
    EXPECT_TRUE(selects({"new 1", "new 2"}));
}

TEST_F(PaneSelection, LeavesASelectionAloneThatTheUserMadeSinceUnlessItInsists) {
    select(model, {"b"});
    model.selectWhenListed({tree.url("new")});
    select(model, {"c"});
    tree.file("new");
    ASSERT_TRUE(runUntil([&] { return model.items().size() == 4; }));
    EXPECT_THAT(selectedNames(model), ElementsAre("c"));

    model.selectWhenListed({tree.url("newer")}, BrowserModel::Insistence::insists);
    select(model, {"d"});
    tree.file("newer");
    EXPECT_TRUE(selects({"newer"}));

    model.selectWhenListed({tree.url("newest")});
    model.navigate(tree.url());
    tree.file("newest");
    ASSERT_TRUE(runUntil([&] { return model.items().size() == 6; }));
    EXPECT_TRUE(model.selection().empty()) << "the wish went with the place";
}

TEST_F(PaneSelection, FindsItemsOfALargeFolderOnAWorker) {
    for (int i = 0; i < 3000; ++i)
        tree.file("x" + std::to_string(10000 + i));
    ASSERT_TRUE(runUntil([&] { return model.items().size() == 3003; }));
    ASSERT_TRUE(runUntilQuiet());
    model.selectWhenListed({tree.url("x12999")});
    EXPECT_TRUE(selects({"x12999"}));
    EXPECT_EQ(model.row(Place::current), 3002U);
}

TEST_F(PaneSelection, IsStillRestoredAfterARefreshWhileTheFolderWasRead) {
    SteppedListings listings(1);
    BrowserModel slow(listings.source());
    slow.go(Location::folder(tree.url()), true, {tree.url("d")});
    listings.allow(1);
    ASSERT_TRUE(runUntil([&] { return slow.items().size() == 1; }));
    slow.refresh();
    EXPECT_EQ(slow.listingState(), ListingState::Case::loading);
    listings.allowAll();
    ASSERT_TRUE(runUntilLoaded(slow));
    EXPECT_THAT(selectedNames(slow), ElementsAre("d"));
}

// ---- With services

class ServedPane : public PaneSelection {
protected:
    ServedPane() {
        world.services->start();
        model.setServices(*world.services);
    }
    ~ServedPane() override { model.navigateHome(); }

    ServicesWorld world;
};

TEST_F(ServedPane, LosesWhatLayOnAVolumeThatWentAndFindsItAgain) {
    using Event = VolumeMonitor::Event;
    const auto stick = tree.folder("stick"), folder = tree.folder("stick/a");
    tree.folder("stick2");
    tree.file("stick/a/one");
    model.navigate(folder);
    ASSERT_TRUE(runUntilLoaded(model));
    select(model, {"one"});
    for (const FileURL& other : {tree.url("stick2"), tree.url("sti"), tree.url("stick/a/one"), FileURL()})
        model.handleVolumeEvent({Event::Kind::unmounted, other});
    model.handleVolumeEvent({Event::Kind::renamed, stick});
    EXPECT_EQ(model.listingState(), ListingState::Case::loaded);

    const auto unavailable = ListingState::failed(DirectoryError::Case::volumeUnavailable);
    model.handleVolumeEvent({Event::Kind::unmounted, stick});
    EXPECT_EQ(model.listingState(), unavailable);
    EXPECT_THAT(namesOf(model.items()), IsEmpty());
    EXPECT_TRUE(model.selection().empty());
    EXPECT_EQ(model.currentURL(), folder);
    EXPECT_TRUE(model.canGoBack());
    model.handleVolumeEvent({Event::Kind::mounted, stick});
    ASSERT_TRUE(runUntilLoaded(model));
    EXPECT_THAT(namesOf(model.items()), ElementsAre("one"));
}

TEST_F(ServedPane, HearsOfVolumesFromItsServices) {
    const std::string root = "1 0 0:1 / / rw - ext4 /dev/sda rw\n",
                      disk = "2 1 0:2 / /mnt/ombrel-gone rw - ext4 /dev/sdb rw\n";
    world.mounts->tell(root + disk);
    model.navigate(*FileURL::fromPath("/mnt/ombrel-gone/a"));
    ASSERT_TRUE(runUntil(
        [&] { return model.listingState() == ListingState::failed(DirectoryError::Case::notFound); }));
    world.mounts->tell(root);
    EXPECT_TRUE(runUntil([&] {
        return model.listingState() == ListingState::failed(DirectoryError::Case::volumeUnavailable);
    }));
}

TEST_F(ServedPane, ReadsTheFolderAgainOnceAccessWasAllowed) {
    const auto folder = tree.url("later");
    model.navigate(folder);
    const auto notFound = ListingState::failed(DirectoryError::Case::notFound);
    ASSERT_TRUE(runUntil([&] { return model.listingState() == notFound; }));
    tree.folder("later");
    tree.file("later/one");
    model.requestAccess();
    EXPECT_EQ(world.picker.requests.back().startingAt, folder);
    ASSERT_TRUE(runUntilQuiet());
    EXPECT_EQ(model.listingState(), notFound) << "the user picked nothing";
    world.picker.answer = folder;
    model.requestAccess();
    ASSERT_TRUE(runUntilLoaded(model));
    EXPECT_THAT(namesOf(model.items()), ElementsAre("one"));
}

} // namespace
} // namespace ombrel
