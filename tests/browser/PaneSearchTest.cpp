// A pane that shows what a search finds.
#include "browser/BrowserModel.h"
#include "browser/ModelWorld.h"
#include "browser/SearchMatches.h"

#include <QSignalSpy>

#include <gmock/gmock.h>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

/// Real searches whose batches are handed out one at a time when told.
class SteppedSearches {
public:
    [[nodiscard]] ListingFeed::SearchSource source() const {
        return [shared = shared_](const SearchRequest& request) {
            return SearchProvider::Stream("test-search", [shared, request](const auto& sink, auto stop) {
                std::vector<FileItemList> batches;
                auto ending = SearchProvider::walk(
                    request, [&](FileItemList batch) { batches.push_back(std::move(batch)); }, stop);
                for (auto& batch : batches) {
                    std::unique_lock lock(shared->mutex);
                    if (!shared->changed.wait(lock, stop, [&] { return shared->allowed > 0; }))
                        return SearchProvider::Ending(std::unexpected(Stopped<DirectoryError>::cancelled()));
                    --shared->allowed;
                    sink.yield(std::move(batch));
                }
                return ending;
            });
        };
    }
    void allow(int count) {
        const std::scoped_lock lock(shared_->mutex);
        shared_->allowed += count;
        shared_->changed.notify_all();
    }

private:
    struct Shared {
        std::mutex mutex; // guards what follows
        std::condition_variable_any changed;
        int allowed = 0;
    };
    std::shared_ptr<Shared> shared_ = std::make_shared<Shared>();
};

class PaneSearch : public ::testing::Test {
protected:
    PaneSearch() : model(realListings()) {
        tree.folder("in");
        tree.folder("in/deep");
        tree.folder("in/noted");
        tree.file("in/b note");
        tree.file("in/other");
        tree.file("in/deep/a note");
        tree.file("in/deep/.note");
        tree.file("in/noted/a note");
        model.navigate(tree.url("in"));
        EXPECT_TRUE(runUntilLoaded(model));
    }
    void search(const std::string& text) {
        model.search(text);
        EXPECT_TRUE(model.isSearching());
        ASSERT_TRUE(runUntilLoaded(model));
        EXPECT_FALSE(model.isSearching());
    }
    [[nodiscard]] std::vector<std::string> foundPaths() const {
        std::vector<std::string> paths;
        for (const FileItemView item : model.items())
            paths.push_back(item.url().path().substr(tree.path("in").size() + 1));
        return paths;
    }

    TempTree tree;
    BrowserModel model;
};

TEST_F(PaneSearch, ShowsWhatWasFoundSortedAndGoesBackToTheFolderWithItsSelection) {
    select(model, {"other"});
    search("NOTE");
    EXPECT_EQ(model.searchQuery(), "NOTE");
    EXPECT_EQ(model.currentURL(), tree.url("in"));
    EXPECT_EQ(model.title().toStdString(), "in");
    EXPECT_THAT(namesOf(model.items()), ElementsAre("noted", "a note", "a note", "b note"));
    EXPECT_THAT(foundPaths(), UnorderedElementsAre("noted", "deep/a note", "noted/a note", "b note"));
    for (const FileItemView item : model.items())
        EXPECT_TRUE(item.identity()) << item.url().path();

    search("deep");
    EXPECT_THAT(foundPaths(), ElementsAre("deep"));
    model.goBack();
    EXPECT_FALSE(model.showsSearch()) << "a search out of a search is no step of its own";
    ASSERT_TRUE(runUntilLoaded(model));
    EXPECT_THAT(selectedNames(model), ElementsAre("other"));

    model.goForward();
    EXPECT_EQ(model.searchQuery(), "deep");
    model.leaveSearch();
    EXPECT_EQ(model.location(), Location::folder(tree.url("in")));
    ASSERT_TRUE(runUntilLoaded(model));
    EXPECT_THAT(selectedNames(model), ElementsAre("other"));
}

TEST_F(PaneSearch, RemembersTheMatchOfAFolderAndNotItsNamesake) {
    search("a note");
    auto selection = model.selection();
    selection.change(foundPaths().front() == "deep/a note" ? 0 : 1, FileSelection::Change::add);
    model.setSelection(selection);
    model.navigate(tree.url("in/deep"));
    ASSERT_TRUE(runUntilLoaded(model));
    model.goBack();
    ASSERT_TRUE(runUntilLoaded(model));
    ASSERT_EQ(model.selection().count(), 1U);
    EXPECT_EQ(model.selection().items().front().url(), tree.url("in/deep/a note"));
    model.refresh();
    EXPECT_TRUE(model.isSearching());
    ASSERT_TRUE(runUntilLoaded(model));
    EXPECT_EQ(model.selection().items().front().url(), tree.url("in/deep/a note"));
}

TEST_F(PaneSearch, ThatFindsNothingOrCannotBeginEndsAsSuch) {
    search("nowhere");
    EXPECT_THAT(namesOf(model.items()), IsEmpty());
    EXPECT_FALSE(model.hasReachedSearchLimit());
    model.search("");
    EXPECT_EQ(model.searchQuery(), "nowhere");
    model.navigate(tree.url("missing"));
    model.search("note");
    ASSERT_TRUE(runUntil([&] { return model.listingState() != ListingState::Case::loading; }));
    EXPECT_EQ(model.listingState(), ListingState::failed(DirectoryError::Case::notFound));
    EXPECT_FALSE(model.isSearching());
    model.navigateHome();
    model.search("note");
    EXPECT_TRUE(model.isHome()) << "there is nothing to search";
}

TEST_F(PaneSearch, LooksAgainForWhatTheFilterShowsNow) {
    search("note");
    model.setFilter({.showsHidden = true});
    ASSERT_TRUE(runUntilLoaded(model) && runUntilQuiet());
    EXPECT_EQ(model.items().size(), 5U);
    model.setFilter({});
    ASSERT_TRUE(runUntilQuiet());
    EXPECT_EQ(model.items().size(), 4U);
    FileSort descending;
    descending.ascending = false;
    model.setSort(descending);
    ASSERT_TRUE(runUntilQuiet());
    EXPECT_THAT(namesOf(model.items()), ElementsAre("noted", "b note", "a note", "a note"));
}

TEST(PaneSearchLimit, IsTold) {
    const TempTree tree;
    for (std::size_t i = 0; i < SearchProvider::resultLimit + 5; ++i)
        tree.file("x" + std::to_string(i));
    BrowserModel model(realListings());
    model.navigate(tree.url());
    model.search("x");
    ASSERT_TRUE(runUntilLoaded(model));
    EXPECT_TRUE(model.hasReachedSearchLimit());
    EXPECT_EQ(model.items().size(), SearchProvider::resultLimit);
    EXPECT_TRUE(std::ranges::is_sorted(model.items().order(), [&](ItemRef a, ItemRef b) {
        return model.sort().areInIncreasingOrder(model.items().view(a), model.items().view(b));
    }));
    model.leaveSearch();
    EXPECT_FALSE(model.hasReachedSearchLimit());
    ASSERT_TRUE(runUntilQuiet());
}

TEST(PaneSearchUnderWay, KeepsSelectionWhileItGrowsAndStopsWithWhatItHas) {
    const TempTree tree;
    for (int i = 0; i < 500; ++i)
        tree.file("x" + std::to_string(1000 + i));
    const SteppedSearches searches;
    auto steps = searches;
    BrowserModel model(realListings(), searches.source());
    model.navigate(tree.url());
    model.search("x");
    steps.allow(1);
    ASSERT_TRUE(runUntil([&] { return model.items().size() == 1; }));
    const std::string first(model.items()[0].name());
    select(model, {first});
    model.setRow(BrowserModel::Place::current, 0);
    steps.allow(1);
    ASSERT_TRUE(runUntil([&] { return model.items().size() > 100; }));
    EXPECT_TRUE(model.isSearching());
    EXPECT_THAT(selectedNames(model), ElementsAre(first));
    EXPECT_EQ(nameAt(model, BrowserModel::Place::current), first);

    const auto found = model.items().size();
    model.stopSearch();
    EXPECT_EQ(model.listingState(), ListingState::Case::loaded);
    EXPECT_FALSE(model.isSearching() || model.hasReachedSearchLimit());
    EXPECT_TRUE(model.showsSearch());
    ASSERT_TRUE(runUntilQuiet());
    steps.allow(10);
    EXPECT_EQ(model.items().size(), found);
    FileSort descending;
    descending.ascending = false;
    model.setSort(descending);
    ASSERT_TRUE(runUntilQuiet());
    EXPECT_EQ(model.listingState(), ListingState::Case::loaded);
    EXPECT_EQ(model.items().size(), found);
    EXPECT_TRUE(std::ranges::is_sorted(namesOf(model.items()), std::greater<>()));
    EXPECT_THAT(selectedNames(model), ElementsAre(first));
}

} // namespace
} // namespace ombrel
