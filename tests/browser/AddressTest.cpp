#include "browser/AddressCompletion.h"
#include "browser/AddressCrumbs.h"
#include "browser/BrowserTabsModel.h"
#include "browser/CrumbChildren.h"
#include "browser/ModelWorld.h"
#include "browser/PaneMaker.h"
#include "browser/ServicesWorld.h"
#include "services/RecentAddresses.h"

#include <QSignalSpy>

#include <gmock/gmock.h>

#include <algorithm>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

FileURL url(std::string_view path) {
    return *FileURL::fromPath(path);
}

TEST(Crumbs, BeginAtTheNearestPlaceThatIsKnown) {
    const std::vector<AddressCrumb> starts{{url("/"), "System"},
                                           {url("/media/stick"), "Survey drive"},
                                           {url("/home/ann"), "ann"},
                                           {url("/home/ann/Desk/Projects"), "Projects"}};
    const auto crumbs = [&](std::string_view path) {
        std::string names;
        for (const AddressCrumb& crumb : AddressCrumbs::of(url(path), starts))
            names += (names.empty() ? "" : " > ") + crumb.name;
        return names;
    };
    EXPECT_EQ(crumbs("/home/ann/Desk/Projects/a/b"), "Projects > a > b");
    EXPECT_EQ(crumbs("/home/ann/Desk"), "ann > Desk");
    EXPECT_EQ(crumbs("/home/anna"), "System > home > anna");
    EXPECT_EQ(crumbs("/media/stick"), "Survey drive");
    EXPECT_EQ(crumbs("/"), "System");
    EXPECT_THAT(AddressCrumbs::of(url("/x/\xff"), {}),
                ElementsAre(AddressCrumb{url("/"), "/"}, AddressCrumb{url("/x"), "x"},
                            AddressCrumb{url("/x/\xff"), "\uFFFD"}));
}

TEST(Crumbs, AndTabsCallAVolumeAsTheTreeDoes) {
    ServicesWorld world;
    BrowserTabsModel tabs([&] { return makePane(*world.services); }, FileURL());
    EXPECT_EQ(tabs.activeTab().title().toStdString(), "/");
    QSignalSpy renamed(&tabs, &BrowserTabsModel::titleChanged);
    world.services->start();
    world.mount("2 1 0:2 / / rw - ext4 /dev/nothing rw\n");
    ASSERT_TRUE(runUntil([&] { return world.services->volumes().volumes().size() == 1; }));
    EXPECT_FALSE(renamed.isEmpty());
    EXPECT_EQ(tabs.activeTab().title().toStdString(), "System");
    const auto starts = AddressCrumbs::startsOf(*world.services, url("/home/ann"));
    EXPECT_EQ(AddressCrumbs::of(url("/usr"), starts).front().name, "System");
    EXPECT_EQ(AddressCrumbs::titleOf(url("/usr"), world.services.get()), "usr");
}

// ---- The list of a crumb

TEST(TheListOfACrumb, HoldsItsVisibleSubfolders) {
    TempTree tree;
    for (const auto* name : {"b10", "b9", "A", ".hidden"})
        tree.folder(name);
    tree.file("file");
    tree.symlink("link", "A");
    CrumbChildren children;
    children.read(tree.url("gone"), {}); // dropped for the next one
    children.read(tree.url(), {});
    EXPECT_EQ(children.state(), CrumbChildren::State::reading);
    ASSERT_TRUE(runUntil([&] { return children.state() != CrumbChildren::State::reading; }));
    EXPECT_THAT(namesOf(children.folders()), ElementsAre("A", "b9", "b10", "link"));
    children.read(tree.url("gone"), {});
    ASSERT_TRUE(runUntil([&] { return children.state() != CrumbChildren::State::reading; }));
    EXPECT_EQ(children.state(), CrumbChildren::State::failed);
    EXPECT_EQ(children.error().which(), DirectoryError::Case::notFound);
}

// ---- What completes an address

class Completion : public ::testing::Test {
protected:
    std::vector<std::string> suggestionsFor(const QString& text, std::optional<FileURL> base = std::nullopt) {
        completion.complete(text, base, {});
        EXPECT_TRUE(runUntilQuiet());
        std::vector<std::string> texts;
        for (const QString& suggestion : completion.suggestions())
            texts.push_back(suggestion.toStdString());
        return texts;
    }
    [[nodiscard]] QString typed(std::string_view below) const {
        return QString::fromStdString(tree.url().path() + "/" + std::string(below));
    }

    TempTree tree;
    AddressCompletion completion{tree.url()};
};

TEST_F(Completion, OffersTheFoldersThatBeginAsTyped) {
    for (const auto* name : {"Photos", "phone", "Reports", ".photos-cache"})
        tree.folder(name);
    tree.file("phantom.txt");
    const std::string at = tree.url().path() + "/";
    EXPECT_THAT(suggestionsFor(typed("ph")), ElementsAre(at + "phone", at + "Photos"));
    EXPECT_THAT(suggestionsFor(QStringLiteral("rep"), tree.url()), ElementsAre("Reports"));
    EXPECT_THAT(suggestionsFor(QStringLiteral("~/R")), ElementsAre("~/Reports"));
    EXPECT_THAT(suggestionsFor(typed(".")), ElementsAre(at + ".photos-cache"));
    EXPECT_THAT(suggestionsFor(QStringLiteral("rep")), IsEmpty());
    EXPECT_THAT(suggestionsFor(QStringLiteral("C:\\")), IsEmpty());
    EXPECT_THAT(suggestionsFor(typed("gone/x")), IsEmpty());
}

TEST_F(Completion, KeepsWhatStillBeginsSoWhileItReads) {
    for (const auto* name : {"Photos", "phone", "phone/case"})
        tree.folder(name);
    EXPECT_THAT(suggestionsFor(typed("ph")), SizeIs(2));
    completion.complete(typed("pho"), std::nullopt, {});
    EXPECT_EQ(completion.suggestions(), (QStringList{typed("phone"), typed("Photos")}));
    completion.complete(typed("phot"), std::nullopt, {});
    EXPECT_EQ(completion.suggestions(), QStringList{typed("Photos")});
    completion.complete(typed("phone/"), std::nullopt, {});
    EXPECT_TRUE(completion.suggestions().isEmpty());
    EXPECT_TRUE(runUntilQuiet());
    EXPECT_EQ(completion.suggestions(), QStringList{typed("phone/case")});
}

TEST_F(Completion, OffersFewAndOnlyWhatCanBeTyped) {
    for (int i = 0; i < 20; ++i)
        tree.folder("x" + std::to_string(i));
    tree.folder("y\xff");
    EXPECT_THAT(suggestionsFor(typed("x")), SizeIs(AddressCompletion::most));
    EXPECT_THAT(suggestionsFor(typed("y")), IsEmpty());
    EXPECT_THAT(suggestionsFor(typed("x19")), SizeIs(1));
    completion.cancel();
    EXPECT_TRUE(completion.suggestions().isEmpty());
}

TEST(RecentlyTypedAddresses, AreTenWithTheLastOneFirst) {
    RecentAddresses recent;
    for (int i = 0; i < 12; ++i)
        recent.add(url("/" + std::to_string(i)));
    recent.add(url("/5"));
    EXPECT_THAT(recent.places(), SizeIs(10));
    EXPECT_EQ(recent.places()[0], url("/5"));
    EXPECT_EQ(recent.places()[1], url("/11"));
    EXPECT_EQ(std::ranges::count(recent.places(), url("/5")), 1);
}

} // namespace
} // namespace ombrel
