#include "browser/FolderTreeModel.h"

#include "browser/ModelWorld.h"
#include "browser/ServicesWorld.h"
#include "browser/SteppedListings.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace ombrel {
namespace {

using ::testing::ElementsAre;
using testing::realListings;
using testing::runUntil;
using testing::runUntilQuiet;
using testing::ServicesWorld;
using testing::SteppedListings;
using testing::TempTree;
using Kind = FolderTreeModel::Kind;
using By = FolderTreeModel::By;

class FolderTree : public ::testing::Test {
protected:
    explicit FolderTree(ListingFeed::Source source = realListings()) : listings(std::move(source)) { make(); }
    void make() {
        home = std::make_unique<HomeModel>(*world.services, tree.url());
        model = std::make_unique<FolderTreeModel>(*world.services, *home, listings);
    }
    /// The row that the titles lead to; invalid when one of them is missing.
    [[nodiscard]] QModelIndex at(const std::vector<std::string>& titles) const {
        QModelIndex found;
        for (const auto& title : titles) {
            QModelIndex next;
            for (int row = 0; row < model->rowCount(found) && !next.isValid(); ++row)
                if (model->entry(model->index(row, 0, found)).title.toStdString() == title)
                    next = model->index(row, 0, found);
            if (!next.isValid()) return {};
            found = next;
        }
        return found;
    }
    [[nodiscard]] std::vector<std::string> titlesBelow(const QModelIndex& parent) const {
        std::vector<std::string> titles;
        for (int row = 0; row < model->rowCount(parent); ++row)
            titles.push_back(model->entry(model->index(row, 0, parent)).title.toStdString());
        return titles;
    }
    [[nodiscard]] bool runUntilTitles(const std::vector<std::string>& row,
                                      const std::vector<std::string>& titles) {
        return runUntil([&] { return at(row).isValid() && titlesBelow(at(row)) == titles; });
    }
    [[nodiscard]] std::string currentPath() const {
        const auto entry = model->entry(model->current());
        return entry.url ? entry.url->path() : entry.title.toStdString();
    }

    ServicesWorld world;
    TempTree tree;
    ListingFeed::Source listings;
    std::unique_ptr<HomeModel> home;
    std::unique_ptr<FolderTreeModel> model;
};

TEST_F(FolderTree, HasAHeadForEachSectionThatHasRows) {
    EXPECT_THAT(titlesBelow({}), ElementsAre("Home", "Quick access"));
    const auto projects = tree.folder("Projects");
    world.services->settings().setPinnedFolders({KnownFolder::music, projects});
    world.grant(projects);
    world.services->start();
    world.mount("2 1 0:2 / / rw - ext4 /dev/a rw\n3 2 0:3 / /mnt/nas rw - nfs4 nas:/a rw\n");
    ASSERT_TRUE(runUntil([&] { return !world.services->access().isBusy(); }));
    EXPECT_TRUE(runUntil([&] { return at({"nas"}).isValid(); }));
    // What was granted before the start is not in the store of this test.
    world.grant(projects);
    EXPECT_THAT(titlesBelow({}), ElementsAre("Home", "Quick access", "Music", "Projects", "Locations",
                                             "Projects", "Volumes", "System", "nas"));
    EXPECT_FALSE(model->flags(at({"Quick access"})) & Qt::ItemIsEnabled);
    EXPECT_EQ(model->entry(at({"Music"})).known, KnownFolder::music);
    EXPECT_EQ(model->entry(at({"nas"})).volume->kind, VolumePlace::Kind::network);
}

TEST_F(FolderTree, ReadsFoldersAloneInTheirOrderAndFollowsTheDisk) {
    const auto place = tree.folder("place");
    for (const char* name : {"place/b10", "place/b9", "place/a", "place/.hidden one"})
        tree.folder(name);
    tree.file("place/file");
    tree.symlink("place/link", "a");
    world.grant(place);
    model->open(at({"place"}));
    EXPECT_TRUE(runUntilTitles({"place"}, {"a", "b9", "b10", "link"}));
    model->open(at({"place", "b9"}));
    tree.folder("place/b9/inner");
    EXPECT_TRUE(runUntilTitles({"place", "b9"}, {"inner"}));
    const QPersistentModelIndex held(at({"place", "b9", "inner"}));
    tree.folder("place/aa");
    EXPECT_TRUE(runUntilTitles({"place"}, {"a", "aa", "b9", "b10", "link"}));
    EXPECT_TRUE(held.isValid()) << "a row that moves stays open, and what points to it stays with it";
    EXPECT_EQ(model->entry(held).title.toStdString(), "inner");

    ASSERT_EQ(std::rename(tree.path("place/b9").c_str(), tree.path("gone").c_str()), 0);
    EXPECT_TRUE(runUntilTitles({"place"}, {"a", "aa", "b10", "link"}));
    EXPECT_FALSE(held.isValid());

    world.services->settings().setShowHiddenFiles(true);
    EXPECT_TRUE(runUntilTitles({"place"}, {".hidden one", "a", "aa", "b10", "link"}));
}

TEST_F(FolderTree, SaysWhyABranchCannotBeReadAndReadsItWhenItCan) {
    world.services->settings().setPinnedFolders({tree.url("missing")});
    ASSERT_TRUE(model->hasChildren(at({"missing"}))) << "likely, as long as nobody has looked";
    model->open(at({"missing"}));
    EXPECT_TRUE(runUntilTitles({"missing"}, {"This folder does not exist."}));
    const auto notice = model->index(0, 0, at({"missing"}));
    EXPECT_FALSE(model->flags(notice) & Qt::ItemIsEnabled);
    EXPECT_EQ(model->entry(notice).kind, Kind::notice);
    model->open(notice);
    model->close(at({"missing"}), By::hand);
    tree.folder("missing");
    tree.folder("missing/now");
    model->open(at({"missing"}));
    EXPECT_TRUE(runUntilTitles({"missing"}, {"now"}));
}

TEST_F(FolderTree, ShowsAnArrowWhereThereAreFolders) {
    const auto place = tree.folder("place");
    for (const char* name : {"place/full", "place/full/sub", "place/empty", "place/files", "place/dots",
                             "place/dots/.sub", "place/listed", "place/listed/sub"})
        tree.folder(name);
    tree.file("place/files/file");
    tree.file("place/listed/.hidden", "sub\n");
    tree.folder("place/links");
    tree.symlink("place/links/to", "../full");
    world.grant(place);
    model->open(at({"place"}));
    ASSERT_TRUE(runUntilTitles({"place"}, {"dots", "empty", "files", "full", "links", "listed"}));
    QModelIndexList rows;
    for (int row = 0; row < 6; ++row)
        rows << model->index(row, 0, at({"place"}));
    model->look(rows);
    const auto withArrow = [&] {
        std::vector<std::string> names;
        for (const auto& row : rows)
            if (model->hasChildren(row)) names.push_back(model->entry(row).title.toStdString());
        return names;
    };
    EXPECT_TRUE(runUntil([&] { return withArrow() == std::vector<std::string>{"full", "links"}; }));
    // The pane sees at once what comes into the folder that it shows.
    model->follow(tree.url("place/empty"));
    ASSERT_TRUE(runUntil([&] { return model->current() == at({"place", "empty"}); }));
    model->tellOfFolders(tree.url("place/full"), false);
    model->tellOfFolders(tree.url("place/empty"), true);
    EXPECT_EQ(withArrow(), (std::vector<std::string>{"empty", "full", "links"}));
    model->tellOfFolders(tree.url("place/empty"), false);
    EXPECT_EQ(withArrow(), (std::vector<std::string>{"full", "links"}));
    // An opened folder knows for itself.
    model->open(at({"place", "empty"}));
    ASSERT_TRUE(runUntilQuiet());
    EXPECT_FALSE(model->hasChildren(at({"place", "empty"})));
}

TEST_F(FolderTree, OpensWhatTheShownFolderLiesIn) {
    const auto place = tree.folder("place");
    for (const char* name : {"place/a", "place/a/b", "place/a/b/c", "place/a/b/c/d"})
        tree.folder(name);
    world.grant(place);
    model->follow(std::nullopt);
    EXPECT_EQ(currentPath(), "Home");
    model->follow(tree.url("place/a/b/c"));
    EXPECT_TRUE(runUntil([&] { return currentPath() == tree.path("place/a/b/c") && !model->isSearching(); }));
    EXPECT_FALSE(model->isOpen(model->current())) << "only what it lies in";

    model->close(at({"place", "a"}), By::hand);
    EXPECT_EQ(currentPath(), tree.path("place/a")) << "as near as the user lets it";
    model->follow(tree.url("place/a/b/c/d"));
    ASSERT_TRUE(runUntilQuiet());
    EXPECT_EQ(currentPath(), tree.path("place/a"));
    model->open(at({"place", "a"}));
    EXPECT_TRUE(runUntil([&] { return currentPath() == tree.path("place/a/b/c/d"); }));
    model->follow(tree.url("elsewhere"));
    EXPECT_FALSE(model->current().isValid());
}

TEST_F(FolderTree, FollowsTheRowThatThePaneWasSentFrom) {
    const auto place = tree.folder("place");
    const auto inner = tree.folder("place/inner");
    tree.folder("place/inner/deep");
    world.grant(place);
    world.services->settings().setPinnedFolders({inner});
    model->follow(inner);
    EXPECT_EQ(model->entry(model->current()).kind, Kind::pin) << "a pinned folder is at home in quick access";
    model->open(at({"place"}));
    ASSERT_TRUE(runUntil([&] { return at({"place", "inner"}).isValid(); }));
    model->setOrigin(at({"place", "inner"}));
    model->follow(inner);
    EXPECT_EQ(model->current(), at({"place", "inner"}));
    model->follow(tree.url("place/inner/deep"));
    EXPECT_TRUE(runUntil([&] {
        return model->current() == at({"place", "inner", "deep"}) && at({"place", "inner", "deep"}).isValid();
    }));
    model->follow(place);
    model->follow(inner);
    EXPECT_EQ(model->entry(model->current()).kind, Kind::pin) << "until the pane has gone elsewhere";
}

TEST_F(FolderTree, WaitsForTheLocationsBeforeItOpensAVolume) {
    const auto place = tree.folder("place");
    const auto inner = tree.folder("place/inner");
    world.services->start();
    world.mount("2 1 0:2 / / rw - ext4 /dev/a rw\n");
    ASSERT_TRUE(runUntil([&] { return !world.services->access().isBusy() && at({"System"}).isValid(); }));
    world.store->add(place.path());
    world.services->access().restore();
    model->follow(inner);
    EXPECT_TRUE(model->isSearching());
    EXPECT_FALSE(model->isOpen(at({"System"})));
    ASSERT_TRUE(runUntil([&] { return !model->isSearching(); }));
    EXPECT_EQ(model->current(), at({"place", "inner"}));
    EXPECT_FALSE(model->isOpen(at({"System"})));

    world.scopes->refused.insert(place.path());
    world.scopes->unreadable.insert(place.path());
    world.services->access().restore();
    EXPECT_TRUE(runUntil([&] { return model->isOpen(at({"System"})); }))
        << "what is not allowed is no way to the folder";
}

TEST_F(FolderTree, OpensAgainWhatWasOpenBelowAClosedBranch) {
    const auto place = tree.folder("place");
    for (const char* name : {"place/a", "place/a/b", "place/a/b/c", "place/z"})
        tree.folder(name);
    world.grant(place);
    model->open(at({"place"}));
    ASSERT_TRUE(runUntilTitles({"place"}, {"a", "z"}));
    model->open(at({"place", "a"}));
    ASSERT_TRUE(runUntilTitles({"place", "a"}, {"b"}));
    model->open(at({"place", "a", "b"}));
    ASSERT_TRUE(runUntilTitles({"place", "a", "b"}, {"c"}));
    model->close(at({"place"}), By::hand);
    EXPECT_EQ(model->rowCount(at({"place"})), 0);
    model->open(at({"place"}));
    EXPECT_TRUE(runUntilTitles({"place", "a", "b"}, {"c"}));
    EXPECT_FALSE(model->isOpen(at({"place", "z"})));
}

TEST_F(FolderTree, ClosesALocationThatIsNotAllowedAnyMore) {
    const auto place = tree.folder("place");
    tree.folder("place/a");
    world.store->add(place.path());
    world.services->access().restore();
    ASSERT_TRUE(runUntil([&] { return at({"place"}).isValid() && model->hasChildren(at({"place"})); }));
    model->open(at({"place"}));
    ASSERT_TRUE(runUntilTitles({"place"}, {"a"}));
    const QPersistentModelIndex inner(at({"place", "a"}));
    world.scopes->refused.insert(place.path());
    world.scopes->unreadable.insert(place.path());
    world.services->access().activate(world.services->access().grants().front());
    ASSERT_TRUE(runUntil([&] { return home->locations().front().needsPermission(); }));
    EXPECT_FALSE(inner.isValid());
    EXPECT_FALSE(model->isOpen(at({"place"})));
    EXPECT_FALSE(model->hasChildren(at({"place"})));
    EXPECT_EQ(model->data(at({"place"}), Qt::AccessibleDescriptionRole).toString().toStdString(),
              "Needs permission");
    model->open(at({"place"}));
    EXPECT_FALSE(model->isOpen(at({"place"})));
}

TEST_F(FolderTree, StaysWholeUnderRandomUse) {
    const auto place = tree.folder("place");
    world.grant(place);
    model->open(at({"place"}));
    unsigned seed = 7;
    const auto random = [&seed](unsigned below) {
        return (seed = seed * 1103515245U + 12345U) / 65536U % below;
    };
    std::vector<QPersistentModelIndex> held;
    for (int step = 0; step < 150; ++step) {
        const std::string name = "place/" + std::to_string(random(8));
        const std::string inner = name + '/' + std::to_string(random(4));
        if (!tree.exists(name))
            tree.folder(name);
        else if (!tree.exists(inner))
            tree.folder(inner);
        else if (random(2) == 0)
            std::rename(tree.path(name).c_str(), tree.path("away" + std::to_string(step)).c_str());
        (void)runUntil([&] { return random(3) == 0; });
        std::vector<QModelIndex> rows;
        const std::function<void(const QModelIndex&)> collect = [&](const QModelIndex& parent) {
            for (int row = 0; row < model->rowCount(parent); ++row) {
                const auto index = model->index(row, 0, parent);
                ASSERT_EQ(model->parent(index), parent);
                rows.push_back(index);
                collect(index);
            }
        };
        collect({});
        const auto& chosen = rows[random(static_cast<unsigned>(rows.size()))];
        held.emplace_back(chosen);
        if (random(3) == 0)
            model->close(chosen, By::program);
        else
            model->open(chosen);
        for (const auto& index : held)
            if (index.isValid()) {
                ASSERT_LT(index.row(), model->rowCount(index.parent()));
            }
    }
    model->close(at({"place"}), By::program);
    model->open(at({"place"}));
    ASSERT_TRUE(runUntilTitles({"place"}, tree.names("place")));
}

/// Folders whose listings hang until they are told to go on.
class SlowFolderTree : public FolderTree {
protected:
    SlowFolderTree() : SlowFolderTree(std::make_shared<SteppedListings>(2)) {}
    explicit SlowFolderTree(std::shared_ptr<SteppedListings> slow)
        : FolderTree(slow->source()), stepped(std::move(slow)) {}

    std::shared_ptr<SteppedListings> stepped;
};

TEST_F(SlowFolderTree, SaysThatItReadsAndShowsWhatItHas) {
    const auto place = tree.folder("place");
    for (int i = 0; i < 8; ++i)
        tree.folder("place/" + std::to_string(i));
    world.grant(place);
    model->open(at({"place"}));
    EXPECT_EQ(model->rowCount(at({"place"})), 0) << "nothing flashes by";
    EXPECT_TRUE(runUntilTitles({"place"}, {"Loading…"}));
    stepped->allow(1);
    EXPECT_TRUE(runUntil([&] { return model->rowCount(at({"place"})) == 2; }));
    EXPECT_EQ(model->entry(model->index(0, 0, at({"place"}))).kind, Kind::folder);
    stepped->allowAll();
    EXPECT_TRUE(runUntil([&] { return model->rowCount(at({"place"})) == 8; }));
}

TEST_F(SlowFolderTree, IsNotHeldUpByFoldersThatDoNotAnswer) {
    std::vector<PinnedFolder> pins;
    for (int i = 0; i <= AppServices::mostTreeListings; ++i)
        pins.emplace_back(tree.folder("dead " + std::to_string(i)));
    world.services->settings().setPinnedFolders(pins);
    const auto title = [](int i) { return std::vector{"dead " + std::to_string(i)}; };
    for (int i = 0; i < AppServices::mostTreeListings; ++i)
        model->open(at(title(i)));
    ASSERT_TRUE(
        runUntil([&] { return world.services->treeLimiter()->running() == AppServices::mostTreeListings; }));
    model->open(at(title(AppServices::mostTreeListings)));
    ASSERT_TRUE(runUntil([&] { return world.services->treeLimiter()->waiting() == 1; }));
    model->close(at(title(0)), By::hand);
    EXPECT_TRUE(runUntil([&] { return world.services->treeLimiter()->waiting() == 0; }))
        << "a closed one gives its turn back";
    for (int i = 1; i <= AppServices::mostTreeListings; ++i)
        model->close(at(title(i)), By::hand);
    EXPECT_TRUE(runUntil([&] { return world.services->treeLimiter()->running() == 0; }));
    EXPECT_TRUE(runUntilQuiet()) << "and nothing is left behind";
}

} // namespace
} // namespace ombrel
