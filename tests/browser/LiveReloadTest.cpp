// A pane that follows its folder without being asked to.
#include "browser/LiveReload.h"

#include "browser/BrowserModel.h"
#include "browser/ModelWorld.h"
#include "browser/SteppedListings.h"

#include <QSignalSpy>

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Place = BrowserModel::Place;
using Clock = std::chrono::steady_clock;

class Live : public ::testing::Test {
protected:
    Live() : model(realListings()) {
        tree.folder("shown");
        for (const auto* name : {"shown/b", "shown/c", "shown/d"})
            tree.file(name, name);
        model.navigate(tree.url("shown"));
        EXPECT_TRUE(runUntilLoaded(model));
    }
    [[nodiscard]] bool shows(const std::vector<std::string>& names) const {
        return runUntil([&] { return namesOf(model.items()) == names; });
    }
    [[nodiscard]] bool isInvalidated() const {
        return runUntil([&] { return model.listingState() == ListingState::Case::invalidated; });
    }

    TempTree tree;
    BrowserModel model;
};

TEST_F(Live, ShowsWhatOthersDoAndKeepsEverythingWithItsItem) {
    select(model, {"c", "d"});
    model.setRow(Place::current, rowNamed(model, "d"));
    model.setRow(Place::scroll, rowNamed(model, "c"));
    const QSignalSpy states(&model, &BrowserModel::listingStateChanged);
    tree.file("shown/a");
    ASSERT_TRUE(shows({"a", "b", "c", "d"}));
    ASSERT_EQ(::rename(tree.path("shown/c").c_str(), tree.path("shown/z").c_str()), 0);
    ASSERT_EQ(::unlink(tree.path("shown/b").c_str()), 0);
    ASSERT_TRUE(shows({"a", "d", "z"}));
    EXPECT_THAT(selectedNames(model), ElementsAre("d", "z"));
    EXPECT_EQ(nameAt(model, Place::current), "d");
    EXPECT_EQ(nameAt(model, Place::scroll), "z");
    tree.file("shown/a", "longer");
    ASSERT_TRUE(runUntil([&] { return model.items()[0].size().value() == 6; }));
    EXPECT_EQ(states.size(), 0) << "a silent reload does not flash";
}

TEST_F(Live, IsInvalidatedWhenTheFolderGoesAndComesBackWhenAsked) {
    select(model, {"c"});
    ASSERT_EQ(::rename(tree.path("shown").c_str(), tree.path("moved").c_str()), 0);
    ASSERT_TRUE(isInvalidated());
    EXPECT_THAT(namesOf(model.items()), IsEmpty());
    EXPECT_TRUE(model.selection().empty());
    EXPECT_EQ(model.row(Place::current), std::nullopt);
    EXPECT_EQ(model.currentURL(), tree.url("shown"));
    model.refresh();
    ASSERT_TRUE(runUntil(
        [&] { return model.listingState() == ListingState::failed(DirectoryError::Case::notFound); }));
    tree.folder("shown");
    model.refresh();
    ASSERT_TRUE(runUntilLoaded(model));
    tree.file("shown/new");
    EXPECT_TRUE(shows({"new"})) << "it is watched again";
    model.navigate(tree.url("moved"));
    EXPECT_TRUE(shows({"b", "c", "d"}));
}

TEST_F(Live, FollowsTheFolderThatIsShownAndNoOther) {
    model.navigate(tree.url());
    ASSERT_TRUE(runUntilLoaded(model));
    const auto generation = model.generation();
    tree.file("shown/deeper");
    tree.file("beside");
    ASSERT_TRUE(shows({"shown", "beside"}));
    EXPECT_EQ(model.generation(), generation + 1);
    model.navigateHome();
    tree.file("besides");
    EXPECT_TRUE(runUntilQuiet()) << "nothing is watched any more";
    EXPECT_EQ(model.listingState(), ListingState::Case::loaded);
    EXPECT_THAT(namesOf(model.items()), IsEmpty());
}

TEST_F(Live, WaitsWhileRowsAreHeld) {
    model.setHeld(true);
    const auto generation = model.generation();
    tree.file("shown/a");
    // A second watch that is told of the same change tells that this one has been told.
    BrowserModel witness(realListings());
    witness.navigate(tree.url("shown"));
    ASSERT_TRUE(runUntil([&] { return witness.items().size() == 4; }));
    tree.file("shown/e");
    ASSERT_TRUE(runUntil([&] { return witness.items().size() == 5; }));
    EXPECT_EQ(model.generation(), generation);
    model.setHeld(false);
    EXPECT_TRUE(shows({"a", "b", "c", "d", "e"}));
}

TEST(LiveListing, ReadsOnceMoreWhatChangedWhileItWasRead) {
    const TempTree tree;
    tree.file("first");
    tree.file("second");
    SteppedListings listings(1);
    BrowserModel model(listings.source());
    model.navigate(tree.url());
    listings.allow(1);
    ASSERT_TRUE(runUntil([&] { return model.items().size() == 1; }));
    const auto generation = model.generation();
    // The listing has been read by now and only waits to be handed out.
    tree.file("third");
    BrowserModel witness(realListings());
    witness.navigate(tree.url());
    ASSERT_TRUE(runUntilLoaded(witness));
    tree.file("fourth");
    ASSERT_TRUE(runUntil([&] { return witness.items().size() == 4; }));
    EXPECT_EQ(model.generation(), generation) << "what is under way is not cut short";
    EXPECT_EQ(model.listingState(), ListingState::Case::loading);
    listings.allowAll();
    ASSERT_TRUE(runUntil([&] { return model.items().size() == 4; }));
    EXPECT_EQ(model.generation(), generation + 1);
}

// ---- When it is time

TEST(ReloadTime, IsAtOnceForWhatIsReadAtOnce) {
    int reloads = 0;
    LiveReload live([&] { ++reloads; });
    live.listingBegan();
    live.noteChange();
    live.noteChange();
    EXPECT_EQ(reloads, 0);
    live.listingEnded();
    EXPECT_TRUE(runUntil([&] { return reloads == 1; }));
    live.listingBegan();
    live.listingEnded();
    live.listingEnded();
    live.forget();
    EXPECT_EQ(reloads, 1);
}

TEST(ReloadTime, IsAfterARestForWhatTakesLongToRead) {
    int reloads = 0;
    LiveReload live([&] { ++reloads; });
    const auto began = Clock::now();
    live.listingBegan();
    EXPECT_TRUE(runUntil([&] { return Clock::now() - began >= std::chrono::milliseconds(50); }));
    const auto took = Clock::now() - began;
    live.listingEnded();
    const auto ended = Clock::now();
    live.noteChange();
    EXPECT_EQ(reloads, 0);
    ASSERT_TRUE(runUntil([&] { return reloads == 1; }));
    EXPECT_GE(Clock::now() - ended, LiveReload::restPerListing * took);
}

} // namespace
} // namespace ombrel
