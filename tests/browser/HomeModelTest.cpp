#include "browser/HomeModel.h"

#include "browser/ServicesWorld.h"

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

namespace ombrel {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::runUntil;
using testing::ServicesWorld;
using testing::TempTree;
using Section = HomeModel::Section;

/// Answers every question with `choice`.
class Prompter final : public BrowserPrompter {
public:
    using BrowserPrompter::BrowserPrompter;
    void ask(const BrowserQuestion& question, Answer answer) override {
        asked.push_back(question);
        answer({.choice = choice});
    }
    void tell(const Text&) override {}
    void show(const OperationReport&) override {}

    BrowserAnswer::Choice choice = BrowserAnswer::Choice::decline;
    std::vector<BrowserQuestion> asked;
};

class Home : public ::testing::Test {
protected:
    [[nodiscard]] std::vector<std::string> pins() const {
        std::vector<std::string> titles;
        for (const auto& pin : model.pins())
            titles.push_back(pin.title.toStdString());
        return titles;
    }

    ServicesWorld world;
    TempTree tree;
    HomeModel model{*world.services, tree.url()};
};

TEST_F(Home, SaysWhereAPinnedFolderLies) {
    const auto place = tree.folder("Projects");
    tree.folder("Projects/Survey");
    const auto reports = tree.folder("Projects/Survey/Reports");
    world.services->settings().setKnownFolders(KnownFolders(tree.url()));
    world.services->settings().setPinnedFolders(
        {KnownFolder::desktop, reports, *FileURL::fromPath("/srv/data")});
    ASSERT_THAT(pins(), ElementsAre("Desktop", "Reports", "data"));
    EXPECT_EQ(model.pins()[0].whereabouts.toStdString(), "~/Desktop");
    EXPECT_EQ(model.pins()[1].whereabouts.toStdString(), "~/Projects/Survey");
    EXPECT_EQ(model.pins()[2].whereabouts.toStdString(), "/srv");
    world.grant(place);
    EXPECT_EQ(model.pins()[1].whereabouts.toStdString(), "Projects / Survey")
        << "seen from the location that it lies in";
}

TEST_F(Home, PinsFoldersWhereTheyAreDroppedAndMovesPins) {
    const auto a = tree.folder("a"), b = tree.folder("b"), c = tree.folder("c"), file = tree.file("file");
    model.pin({a, file, b}, 0);
    ASSERT_TRUE(runUntil([&] { return model.pins().size() == 2; }));
    EXPECT_THAT(pins(), ElementsAre("a", "b")) << "files are none";
    model.pin({c, b}, 0);
    ASSERT_TRUE(runUntil([&] { return model.pins().size() == 3; }));
    EXPECT_THAT(pins(), ElementsAre("b", "c", "a")) << "what is pinned already moves there, in its order";
    model.movePin(2, 0);
    EXPECT_THAT(pins(), ElementsAre("a", "b", "c"));
    model.movePin(0, 3);
    EXPECT_THAT(pins(), ElementsAre("b", "c", "a"));
    model.movePin(1, 1);
    model.movePin(1, 2);
    model.movePin(9, 0);
    EXPECT_THAT(pins(), ElementsAre("b", "c", "a"));
    model.unpin(c);
    EXPECT_THAT(pins(), ElementsAre("b", "a"));
}

TEST_F(Home, FollowsTheStateOfLocations) {
    const auto folder = tree.folder("place");
    std::vector<Section> changes;
    QObject::connect(&model, &HomeModel::changed, [&](Section section) { changes.push_back(section); });
    world.picker.answer = folder;
    std::vector<FileURL> allowed;
    QObject::connect(&model, &HomeModel::allowed, [&](const FileURL& url) { allowed.push_back(url); });
    model.addLocation();
    ASSERT_TRUE(runUntil([&] { return !allowed.empty(); }));
    EXPECT_THAT(allowed, ElementsAre(folder));
    ASSERT_EQ(model.locations().size(), 1U);
    EXPECT_TRUE(model.locations()[0].isActive());
    EXPECT_EQ(model.locations()[0].title.toStdString(), "place");
    EXPECT_THAT(changes, ::testing::Contains(Section::locations));

    world.scopes->refused.insert(folder.path());
    world.scopes->unreadable.insert(folder.path());
    world.services->access().activate(world.services->access().grants().front());
    ASSERT_TRUE(runUntil([&] { return model.locations()[0].needsPermission(); }));
    EXPECT_FALSE(model.locations()[0].reason.isEmpty());
    world.scopes->refused.clear();
    world.scopes->unreadable.clear();
    model.allowAgain(model.locations()[0].id);
    ASSERT_TRUE(runUntil([&] { return allowed.size() == 2; }));
    ASSERT_EQ(model.locations().size(), 1U) << "in place of the one that was lost";
    EXPECT_EQ(world.picker.requests.back().startingAt, folder);
}

TEST_F(Home, RemovesALocationOnlyWhenTheUserSaysSo) {
    world.grant(tree.folder("place"));
    const auto id = model.locations().front().id;
    model.removeLocation(id);
    EXPECT_EQ(model.locations().size(), 1U) << "nobody can be asked";
    Prompter prompter;
    model.setPrompter(&prompter);
    model.removeLocation(id);
    ASSERT_EQ(prompter.asked.size(), 1U);
    EXPECT_EQ(prompter.asked[0].items[0].url, tree.url("place"));
    EXPECT_EQ(model.locations().size(), 1U);
    prompter.choice = BrowserAnswer::Choice::accept;
    model.removeLocation(id);
    EXPECT_THAT(model.locations(), IsEmpty());
}

TEST_F(Home, DescribesVolumes) {
    world.services->start();
    world.mount("2 1 0:2 / / rw - ext4 /dev/nothing rw\n3 2 0:3 / /mnt/nas ro - nfs4 nas:/a rw\n");
    ASSERT_TRUE(runUntil([&] { return model.volumes().size() == 2; }));
    EXPECT_EQ(model.volumes()[0].title.toStdString(), "System");
    EXPECT_FALSE(model.volumes()[0].canBeEjected);
    EXPECT_EQ(model.volumes()[1].title.toStdString(), "nas");
    EXPECT_EQ(model.volumes()[1].nature.toStdString(), "NFS, network, read-only");
}

TEST(AVolume, IsNearlyFullWhenNineTenthsAreUsed) {
    const auto with = [](std::optional<std::int64_t> total, std::optional<std::int64_t> available) {
        return VolumePlace{.url = {}, .title = {}, .nature = {}, .total = total, .available = available};
    };
    EXPECT_FALSE(with(1000, 101).isNearlyFull());
    EXPECT_TRUE(with(1000, 100).isNearlyFull());
    EXPECT_EQ(with(1000, 250).used(), 0.75);
    EXPECT_EQ(with(1000, 2000).used(), 0.0) << "file systems may lie";
    EXPECT_EQ(with(0, 0).used(), std::nullopt);
    EXPECT_EQ(with(std::nullopt, 5).used(), std::nullopt);
    EXPECT_FALSE(with(std::nullopt, std::nullopt).isNearlyFull());
}

} // namespace
} // namespace ombrel
