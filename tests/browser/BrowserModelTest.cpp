#include "browser/BrowserModel.h"

#include "base/PathInput.h"
#include "base/Text.h"
#include "base/Worker.h"
#include "browser/ModelWorld.h"
#include "browser/SteppedListings.h"
#include "listing/SystemCall.h"

#include <QSignalSpy>

#include <gmock/gmock.h>

#include <atomic>
#include <cerrno>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Place = BrowserModel::Place;

// ---- Where it goes

class Navigation : public ::testing::Test {
protected:
    Navigation() : model(realListings()) {
        tree.folder("a");
        tree.folder("a/b");
        tree.folder("a/b/c");
        tree.file("a/one");
        tree.file("a/two");
        tree.folder("other");
    }
    void visit(std::string_view name) {
        model.navigate(tree.url(name));
        ASSERT_TRUE(runUntilLoaded(model));
    }
    [[nodiscard]] std::string shown() const {
        return model.currentURL() ? model.currentURL()->path().substr(tree.path().size()) : "home";
    }

    TempTree tree;
    BrowserModel model;
};

TEST_F(Navigation, FollowsATypedAddressOrSaysWhyNot) {
    EXPECT_EQ(model.navigateToTypedPath("docs"), Texts::localized("path.relativeWithoutBase"));
    EXPECT_FALSE(model.navigateToTypedPath(" " + tree.path("a") + "\n"));
    EXPECT_EQ(shown(), "/a");
    ASSERT_TRUE(runUntilLoaded(model));
    EXPECT_FALSE(model.navigateToTypedPath("b/../../other"));
    EXPECT_EQ(shown(), "/other");
    for (const auto& [text, key] :
         {std::pair("C:\\Users", "path.windowsPath"), std::pair("file:///%zz", "path.invalid")})
        EXPECT_EQ(model.navigateToTypedPath(text), Texts::localized(key));
    EXPECT_FALSE(model.navigateToTypedPath("  ")) << "about which there is nothing to say";
    EXPECT_EQ(shown(), "/other");
    model.goBack();
    EXPECT_EQ(shown(), "/a") << "what could not be followed left nothing in the history";
    EXPECT_FALSE(model.navigateToTypedPath("~"));
    EXPECT_EQ(model.currentURL(), PathInput::userHomeDirectory());
}

TEST_F(Navigation, GoesBackAndForwardAndForgetsWhatLayAheadOnANewWay) {
    EXPECT_FALSE(model.canGoBack() || model.canGoForward() || model.canGoUp());
    visit("a");
    visit("a/b");
    visit("other");
    model.goBack();
    EXPECT_EQ(shown(), "/a/b");
    model.goBack();
    EXPECT_EQ(shown(), "/a");
    EXPECT_TRUE(model.canGoForward());
    model.goForward();
    EXPECT_EQ(shown(), "/a/b");
    visit("a");
    EXPECT_FALSE(model.canGoForward());
    model.goBack();
    model.goBack();
    model.goBack();
    EXPECT_EQ(shown(), "home");
    EXPECT_FALSE(model.canGoBack());
    model.goBack();
    EXPECT_EQ(shown(), "home");
    EXPECT_EQ(model.listingState(), ListingState::Case::loaded);
}

TEST_F(Navigation, ToWhereItIsLoadsAgainAndKeepsTheWayForward) {
    visit("a");
    visit("other");
    model.goBack();
    const auto generation = model.generation();
    model.navigate(tree.url("a"));
    EXPECT_GT(model.generation(), generation);
    EXPECT_TRUE(model.canGoForward());
    EXPECT_TRUE(runUntilLoaded(model));
}

TEST_F(Navigation, UpSelectsTheFolderThatWasLeft) {
    visit("a/b");
    model.goUp();
    EXPECT_EQ(shown(), "/a");
    QSignalSpy reveals(&model, &BrowserModel::revealRequested);
    ASSERT_TRUE(runUntilLoaded(model));
    EXPECT_THAT(selectedNames(model), ElementsAre("b"));
    EXPECT_EQ(nameAt(model, Place::current), "b");
    EXPECT_EQ(reveals.size(), 1);
    model.goBack();
    EXPECT_EQ(shown(), "/a/b");

    model.navigate(FileURL());
    const auto generation = model.generation();
    model.goUp();
    EXPECT_EQ(model.generation(), generation);
}

TEST_F(Navigation, BackSelectsWhatWasSelectedOrElseTheWayDown) {
    visit("a");
    visit("a/b/c");
    model.goBack();
    ASSERT_TRUE(runUntilLoaded(model));
    EXPECT_THAT(selectedNames(model), ElementsAre("b"));

    select(model, {"two", "one"});
    visit("a/b/c");
    model.goBack();
    ASSERT_TRUE(runUntilLoaded(model));
    EXPECT_THAT(selectedNames(model), ElementsAre("one", "two"));

    auto everything = model.selection();
    everything.selectAll();
    model.setSelection(everything);
    visit("other");
    model.goBack();
    ASSERT_TRUE(runUntilLoaded(model));
    EXPECT_TRUE(model.selection().isEverything());
}

TEST_F(Navigation, AnswersWithTypedFailuresAndGoesOn) {
    const auto failureOf = [&](const FileURL& url) {
        model.navigate(url);
        EXPECT_TRUE(runUntil([&] { return model.listingState() != ListingState::Case::loading; }));
        return model.listingState();
    };
    using Case = DirectoryError::Case;
    EXPECT_EQ(failureOf(tree.url("missing")), ListingState::failed(Case::notFound));
    EXPECT_EQ(failureOf(tree.url("a/one")), ListingState::failed(Case::notADirectory));
    tree.symlink("loop", "loop");
    EXPECT_EQ(failureOf(tree.url("loop")), ListingState::failed(DirectoryError::io(ELOOP)));
    EXPECT_THAT(namesOf(model.items()), IsEmpty());

    model.goBack();
    model.goBack();
    model.goBack();
    EXPECT_EQ(shown(), "home");
    visit("a");
    EXPECT_THAT(namesOf(model.items()), ElementsAre("b", "one", "two"));
}

TEST_F(Navigation, AThousandInABurstLeaveTheLastAndNoWorker) {
    for (int round = 0; round < 500; ++round) {
        model.navigate(tree.url("a"));
        model.navigate(tree.url("other"));
    }
    model.navigate(tree.url("a"));
    ASSERT_TRUE(runUntilLoaded(model));
    EXPECT_THAT(namesOf(model.items()), ElementsAre("b", "one", "two"));
    EXPECT_TRUE(runUntilQuiet());
    EXPECT_EQ(shown(), "/a");
    EXPECT_THAT(namesOf(model.items()), ElementsAre("b", "one", "two"));
}

// ---- Failures that need the kernel's help

class FailingCall : public SystemCall::Interceptor {
public:
    FailingCall(SystemCall::Kind kind, int errorNumber, int after = 0)
        : kind_(kind), errorNumber_(errorNumber), left_(after) {
        SystemCall::intercept(this);
    }
    ~FailingCall() override { SystemCall::intercept(nullptr); }
    std::optional<SystemCall::Fault> before(SystemCall::Kind kind) override {
        if (kind != kind_ || left_-- > 0) return std::nullopt;
        return SystemCall::Fault{errorNumber_, false};
    }

private:
    const SystemCall::Kind kind_;
    const int errorNumber_;
    std::atomic<int> left_;
};

TEST_F(Navigation, MeetsRefusalsOfTheSystem) {
    const auto failureUnder = [&](SystemCall::Kind kind, int errorNumber, int after) {
        const FailingCall failing(kind, errorNumber, after);
        model.navigate(tree.url("a"));
        EXPECT_TRUE(runUntil([&] { return model.listingState() != ListingState::Case::loading; }));
        EXPECT_TRUE(runUntilQuiet());
        return model.listingState();
    };
    using Case = DirectoryError::Case;
    using Kind = SystemCall::Kind;
    EXPECT_EQ(failureUnder(Kind::openDirectory, EACCES, 0), ListingState::failed(Case::permissionDenied));
    EXPECT_EQ(failureUnder(Kind::openDirectory, ENXIO, 0), ListingState::failed(Case::volumeUnavailable));
    EXPECT_EQ(failureUnder(Kind::readDirectory, EIO, 2), ListingState::failed(Case::volumeUnavailable));
    model.refresh();
    ASSERT_TRUE(runUntilLoaded(model));
    EXPECT_THAT(namesOf(model.items()), ElementsAre("b", "one", "two"));
}

// ---- Listings that grow

class Growing : public ::testing::Test {
protected:
    Growing() : listings(2), model(listings.source()) {
        for (const auto* name : {"c", "f", "a", "e", "b", "d", "g"})
            tree.file(name, name);
    }
    void openAndGrowTo(std::size_t count) {
        if (!model.currentURL()) model.navigate(tree.url());
        while (model.items().size() < count) {
            const auto before = model.items().size();
            listings.allow(1);
            ASSERT_TRUE(runUntil([&] { return model.items().size() > before; }));
        }
    }
    void finish() {
        listings.allowAll();
        ASSERT_TRUE(runUntilLoaded(model));
    }
    void toggle(std::size_t row) {
        auto selection = model.selection();
        selection.change(row, FileSelection::Change::flip);
        model.setSelection(std::move(selection));
    }

    TempTree tree;
    SteppedListings listings;
    BrowserModel model;
};

TEST_F(Growing, KeepsSelectionAndMarkedRowsWithTheirItems) {
    openAndGrowTo(2);
    EXPECT_EQ(model.listingState(), ListingState::Case::loading);
    toggle(1);
    model.setRow(Place::current, 1);
    model.setRow(Place::anchor, 0);
    model.setRow(Place::scroll, 1);
    const auto selected = selectedNames(model);
    const auto first = nameAt(model, Place::anchor), second = nameAt(model, Place::current);
    while (model.listingState() == ListingState::Case::loading) {
        listings.allow(1);
        const auto before = model.items().size();
        ASSERT_TRUE(runUntil([&] {
            return model.items().size() > before || model.listingState() == ListingState::Case::loaded;
        }));
        EXPECT_EQ(selectedNames(model), selected);
        EXPECT_EQ(nameAt(model, Place::anchor), first);
        EXPECT_EQ(nameAt(model, Place::current), second);
        EXPECT_EQ(nameAt(model, Place::scroll), second);
    }
    EXPECT_THAT(namesOf(model.items()), ElementsAre("a", "b", "c", "d", "e", "f", "g"));
}

TEST_F(Growing, IsSortedAnewWhileItGrows) {
    openAndGrowTo(6);
    FileSort descending;
    descending.ascending = false;
    model.setSort(descending);
    ASSERT_TRUE(runUntil([&] { return std::ranges::is_sorted(namesOf(model.items()), std::greater<>()); }));
    EXPECT_EQ(model.listingState(), ListingState::Case::loading);
    finish();
    EXPECT_THAT(namesOf(model.items()), ElementsAre("g", "f", "e", "d", "c", "b", "a"));
}

TEST_F(Growing, DropsWhatComesForAnEarlierFolder) {
    tree.folder("sub");
    tree.file("sub/only");
    openAndGrowTo(2);
    const auto generation = model.generation();
    model.navigate(tree.url("sub"));
    EXPECT_THAT(namesOf(model.items()), IsEmpty());
    finish();
    ASSERT_TRUE(runUntilQuiet());
    EXPECT_THAT(namesOf(model.items()), ElementsAre("only"));
    EXPECT_EQ(model.generation(), generation + 1);
}

TEST_F(Growing, ThatFailsPartWayKeepsWhatItHad) {
    listings.failWith(DirectoryError::io(EBADMSG));
    openAndGrowTo(6);
    listings.allowAll();
    ASSERT_TRUE(
        runUntil([&] { return model.listingState() == ListingState::failed(DirectoryError::io(EBADMSG)); }));
    EXPECT_EQ(model.items().size(), 6U);
}

TEST_F(Growing, SelectionOfTheUserWinsOverTheRememberedOne) {
    model.go(Location::folder(tree.url()), true, {tree.url("g")});
    openAndGrowTo(2);
    toggle(0);
    const auto own = selectedNames(model);
    finish();
    EXPECT_EQ(selectedNames(model), own);
}

TEST_F(Growing, StepsThatNobodyWaitsForAreSkipped) {
    QSignalSpy changes(&model, &BrowserModel::itemsChanged);
    listings.allowAll();
    model.navigate(tree.url());
    ASSERT_TRUE(Worker::waitUntilNoneRuns(std::chrono::seconds(20)));
    changes.clear();
    ASSERT_TRUE(runUntilLoaded(model));
    EXPECT_EQ(changes.size(), 1);
    EXPECT_EQ(model.items().size(), 7U);
}

// ---- Reloads, sorts and filters

class Showing : public ::testing::Test {
protected:
    Showing() : model(realListings()) {
        for (const auto* name : {"b", "c", "d", "e", "f"})
            tree.file(name, name);
        tree.file(".hidden-one");
        tree.file("Thumbs.db");
        model.navigate(tree.url());
        EXPECT_TRUE(runUntilLoaded(model));
    }
    void refresh() {
        model.refresh();
        EXPECT_EQ(model.listingState(), ListingState::Case::loaded);
        ASSERT_TRUE(runUntilQuiet());
    }

    TempTree tree;
    BrowserModel model;
};

TEST_F(Showing, ReloadKeepsEverythingWithItsName) {
    select(model, {"c", "e"});
    model.setRow(Place::current, rowNamed(model, "e"));
    model.setRow(Place::anchor, rowNamed(model, "c"));
    tree.file("a");
    tree.file("ca");
    refresh();
    EXPECT_THAT(namesOf(model.items()), ElementsAre("a", "b", "c", "ca", "d", "e", "f"));
    EXPECT_THAT(selectedNames(model), ElementsAre("c", "e"));
    EXPECT_EQ(nameAt(model, Place::current), "e");
    EXPECT_EQ(nameAt(model, Place::anchor), "c");
}

TEST_F(Showing, ReloadFollowsARenameAndNotALink) {
    select(model, {"c", "d"});
    model.setRow(Place::current, rowNamed(model, "c"));
    ASSERT_EQ(::rename(tree.path("c").c_str(), tree.path("zz").c_str()), 0);
    ASSERT_EQ(::link(tree.path("d").c_str(), tree.path("d2").c_str()), 0);
    ASSERT_EQ(::rename(tree.path("d").c_str(), tree.path("d3").c_str()), 0);
    refresh();
    EXPECT_THAT(selectedNames(model), ElementsAre("zz"));
    EXPECT_EQ(nameAt(model, Place::current), "zz");
}

TEST_F(Showing, WhatVanishesLeavesTheSelectionAndTheCurrentRowGoesToTheNeighbour) {
    select(model, {"c", "d", "e"});
    model.setRow(Place::current, rowNamed(model, "c"));
    ASSERT_EQ(::unlink(tree.path("c").c_str()), 0);
    ASSERT_EQ(::unlink(tree.path("d").c_str()), 0);
    refresh();
    EXPECT_THAT(selectedNames(model), ElementsAre("e"));
    EXPECT_EQ(nameAt(model, Place::current), "e");
    ASSERT_EQ(::unlink(tree.path("e").c_str()), 0);
    ASSERT_EQ(::unlink(tree.path("f").c_str()), 0);
    refresh();
    EXPECT_EQ(nameAt(model, Place::current), "b");
    ASSERT_EQ(::unlink(tree.path("b").c_str()), 0);
    refresh();
    EXPECT_EQ(nameAt(model, Place::current), "none");
}

TEST_F(Showing, ReloadOfARemovedFolderFailsAndRecovers) {
    const FileURL folder = tree.folder("sub");
    model.navigate(folder);
    ASSERT_TRUE(runUntilLoaded(model));
    ASSERT_EQ(::rmdir(folder.path().c_str()), 0);
    ASSERT_TRUE(runUntil([&] { return model.listingState() == ListingState::Case::invalidated; }));
    model.refresh();
    ASSERT_TRUE(runUntilQuiet());
    EXPECT_EQ(model.listingState(), ListingState::failed(DirectoryError::Case::notFound));
    tree.folder("sub");
    model.refresh();
    EXPECT_TRUE(runUntilLoaded(model));
}

TEST_F(Showing, SortsInTheBackgroundAndKeepsTheSelection) {
    select(model, {"b", "f"});
    model.setRow(Place::current, rowNamed(model, "f"));
    QSignalSpy selections(&model, &BrowserModel::selectionChanged);
    FileSort sort;
    sort.ascending = false;
    model.setSort(sort);
    EXPECT_EQ(model.items()[0].name(), "b");
    ASSERT_TRUE(runUntilQuiet());
    EXPECT_THAT(namesOf(model.items()), ElementsAre("f", "e", "d", "c", "b"));
    EXPECT_THAT(selectedNames(model), ElementsAre("f", "b"));
    EXPECT_EQ(model.row(Place::current), 0U);
    EXPECT_EQ(selections.size(), 0);
}

TEST_F(Showing, TheLastOfManyWishesIsWhatIsShown) {
    FileSort sort;
    for (int round = 0; round < 21; ++round) {
        sort.ascending = !sort.ascending;
        model.setSort(sort);
    }
    ASSERT_TRUE(runUntilQuiet());
    EXPECT_THAT(namesOf(model.items()), ElementsAre("f", "e", "d", "c", "b"));
    model.refresh();
    model.setSort(FileSort());
    ASSERT_TRUE(runUntilQuiet());
    EXPECT_THAT(namesOf(model.items()), ElementsAre("b", "c", "d", "e", "f"));
}

TEST_F(Showing, HidesAndShowsWhatTheFilterSays) {
    model.setFilter({.showsHidden = true, .showsProtected = true});
    ASSERT_TRUE(runUntilQuiet());
    EXPECT_THAT(namesOf(model.items()), ElementsAre(".hidden-one", "b", "c", "d", "e", "f", "Thumbs.db"));
    select(model, {".hidden-one", "c"});
    model.setRow(Place::current, rowNamed(model, "Thumbs.db"));
    model.setFilter({});
    ASSERT_TRUE(runUntilQuiet());
    EXPECT_THAT(selectedNames(model), ElementsAre("c"));
    EXPECT_EQ(nameAt(model, Place::current), "f");
    EXPECT_EQ(model.allItems().size(), 7U);
}

} // namespace
} // namespace ombrel
