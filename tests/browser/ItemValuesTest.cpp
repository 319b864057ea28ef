#include "browser/ContentsCount.h"
#include "browser/DetailsValues.h"
#include "browser/ItemProperties.h"
#include "browser/ModelWorld.h"
#include "browser/QuickLookContent.h"

#include <QImage>

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <functional>
#include <future>

namespace ombrel {
namespace {

using testing::runUntil;
using testing::runUntilLoaded;
using testing::runUntilQuiet;
using testing::select;
using testing::TempTree;
using Kind = QuickLookContent::Kind;

class PaneOverItems : public ::testing::Test {
protected:
    ~PaneOverItems() override { (void)runUntilQuiet(); }
    void show(const std::vector<std::string>& selected) {
        pane.navigate(tree.url());
        ASSERT_TRUE(runUntilLoaded(pane));
        select(pane, selected);
    }
    FileURL picture(std::string_view name, int width, int height) const {
        const auto url = tree.file(name);
        QImage image(width, height, QImage::Format_RGB32);
        image.fill(Qt::darkGreen);
        EXPECT_TRUE(image.save(QString::fromStdString(url.path()), "PNG"));
        return url;
    }
    FileItem item(std::string_view name) const { return pane.items().item(testing::rowNamed(pane, name)); }

    TempTree tree;
    BrowserModel pane{testing::realListings()};
};

// ---- The details pane

class Details : public PaneOverItems {
protected:
    void watch() {
        values.setActive(true);
        values.follow(pane);
    }
    [[nodiscard]] bool until(const std::function<bool(const DetailsValues::Content&)>& is) const {
        return runUntil([&] { return is(values.content()); });
    }
    DetailsValues values{std::chrono::milliseconds(120)};
};

TEST_F(Details, SayWhatIsKnownOfOneItemAndWhatWasReadAfterThat) {
    picture("photo.png", 40, 30);
    tree.symlink("link", "no\nwhere");
    show({"photo.png"});
    watch();
    EXPECT_EQ(values.content().count, 1U); // at once, without the disk
    EXPECT_EQ(values.content().facts.url, tree.url("photo.png"));
    EXPECT_TRUE(values.content().facts.size.has_value());
    ASSERT_TRUE(until([](const auto& content) { return content.facts.dimensions.has_value(); }));
    EXPECT_EQ(values.content().facts.dimensions, (ItemValues::Dimensions{40, 30}));
    select(pane, {"link"});
    ASSERT_TRUE(until([](const auto& content) { return content.facts.linkTarget.has_value(); }));
    EXPECT_EQ(values.content().facts.linkTarget, "no\nwhere");
    EXPECT_FALSE(values.content().facts.dimensions);
}

TEST_F(Details, AreOfTheFolderItselfWithoutASelection) {
    tree.file("one");
    tree.file(".hidden");
    tree.folder("two");
    show({});
    watch();
    ASSERT_TRUE(until([](const auto& content) { return content.items.has_value(); }));
    EXPECT_EQ(values.content().items, 2);
    EXPECT_EQ(values.content().facts.url, tree.url());
    pane.navigateHome();
    ASSERT_TRUE(until([](const auto& content) { return content.count == 0; }));
}

TEST_F(Details, AddUpSeveralItemsWithAllTheyHold) {
    tree.fileOfSize("a", 100);
    tree.folder("folder");
    tree.folder("folder/deep");
    tree.fileOfSize("folder/deep/b", 1000);
    tree.file("c");
    tree.file("d");
    show({"a", "folder", "c", "d"});
    watch();
    ASSERT_TRUE(until([](const auto& content) { return content.isTotalKnown; }));
    EXPECT_EQ(values.content().count, 4U);
    EXPECT_EQ(values.content().previews.size(), DetailsValues::mostPreviews);
    EXPECT_EQ(values.content().totalSize, 1100);
    EXPECT_EQ(values.content().common.folder, tree.url());
    EXPECT_TRUE(values.content().common.type.empty());
    select(pane, {"c", "d"});
    ASSERT_TRUE(until([](const auto& content) { return content.count == 2; }));
    EXPECT_FALSE(values.content().common.type.empty());
    EXPECT_EQ(values.content().common.firstModified,
              std::min(item("c").modificationDate().value(), item("d").modificationDate().value()));
}

TEST_F(Details, KeepTheOldContentUntilASelectionIsQuietAndReadNothingWhileOff) {
    for (char name = 'a'; name <= 'j'; ++name)
        tree.file(std::string(1, name));
    show({"a"});
    watch();
    ASSERT_TRUE(runUntilQuiet());
    int changes = 0;
    QObject::connect(&values, &DetailsValues::changed, &values, [&] { ++changes; });
    for (char name = 'b'; name <= 'j'; ++name)
        select(pane, {std::string(1, name)});
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(values.content().facts.url.name(), "a");
    ASSERT_TRUE(until([](const auto& content) { return content.facts.url.name() == "j"; }));
    ASSERT_TRUE(runUntilQuiet());
    values.setActive(false);
    select(pane, {"a"});
    ASSERT_TRUE(runUntilQuiet());
    EXPECT_EQ(values.content().facts.url.name(), "j");
    values.setActive(true);
    EXPECT_EQ(values.content().facts.url.name(), "a");
}

TEST_F(Details, StayWhenOtherItemsComeAndFollowTheirOwn) {
    tree.fileOfSize("a", 100);
    show({"a"});
    watch();
    ASSERT_TRUE(runUntil([&] { return values.isSettled(); }));
    int changes = 0;
    QObject::connect(&values, &DetailsValues::changed, &values, [&] { ++changes; });
    tree.file("b");
    ASSERT_TRUE(runUntil([&] { return pane.items().size() == 2 && values.isSettled(); }));
    EXPECT_EQ(changes, 0);
    tree.fileOfSize("a", 300);
    EXPECT_TRUE(until([](const auto& content) { return content.facts.size == 300; }));
}

// ---- Properties

TEST_F(PaneOverItems, CountsContentsWithoutFollowingLinks) {
    tree.folder("folder");
    tree.folder("folder/deep");
    tree.fileOfSize("folder/deep/a", 10);
    tree.fileOfSize("folder/b", 5);
    tree.symlink("folder/up", "..");
    tree.fifo("folder/pipe");
    const auto all = std::async(std::launch::async, [&] {
                         return Contents::of({tree.url("folder"), tree.url("gone")}, {});
                     }).get();
    EXPECT_EQ(all, (Contents{.files = 4, .folders = 1, .bytes = 15, .unreadable = 1, .isComplete = true}));
    std::stop_source stop;
    stop.request_stop();
    const auto none = std::async(std::launch::async, [&] {
                          return Contents::of({tree.url("folder")}, stop.get_token());
                      }).get();
    EXPECT_FALSE(none.isComplete);
}

TEST_F(PaneOverItems, ReadsThePropertiesOfOneItemAndOfSeveral) {
    tree.folder("folder");
    tree.fileOfSize("folder/a", 2000);
    const auto file = tree.fileOfSize("file.txt", 100);
    ::chmod(file.path().c_str(), 0640);
    show({"file.txt"});
    const ItemProperties gone(tree.url("gone"));
    ASSERT_TRUE(runUntil([&] { return gone.isRead(); }));
    EXPECT_EQ(gone.facts().problem, POSIXFailure{ENOENT});
    const ItemProperties one(pane.selection());
    ASSERT_TRUE(runUntil([&] { return one.isRead(); }));
    EXPECT_EQ(one.facts().size, 100);
    EXPECT_EQ(one.facts().permissions, 0640U);
    EXPECT_EQ(one.facts().owner, "root");
    EXPECT_TRUE(one.facts().opened.has_value());
    EXPECT_FALSE(one.contents().isCounting());
    select(pane, {"file.txt", "folder"});
    const ItemProperties both(pane.selection());
    ASSERT_TRUE(runUntil([&] { return both.contents().contents().isComplete; }));
    EXPECT_EQ(both.count(), 2U);
    EXPECT_EQ(both.commonFolder(), tree.url());
    EXPECT_EQ(both.contents().contents().bytes, 2100);
}

TEST_F(PaneOverItems, KnowsWhichPropertiesAreOfTheSameThings) {
    tree.file("a");
    tree.file("b");
    show({"a", "b"});
    const ItemProperties::Subject both = pane.selection();
    const auto* const before = pane.items().blocks().get();
    pane.refresh();
    ASSERT_TRUE(runUntil([&] { return pane.items().blocks().get() != before; }));
    EXPECT_TRUE(ItemProperties::areSame(both, pane.selection()));
    select(pane, {"a"});
    EXPECT_FALSE(ItemProperties::areSame(both, pane.selection()));
    EXPECT_TRUE(ItemProperties::areSame(pane.selection(), tree.url("a")));
    VolumeInfo volume;
    EXPECT_FALSE(ItemProperties::areSame(volume, FileURL()));
    EXPECT_TRUE(ItemProperties::areSame(volume, volume));
}

// ---- Quick look

class Look : public PaneOverItems {
protected:
    bool look(std::string_view name) {
        show({});
        content.look(item(name), QSize(64, 64));
        return runUntil(
            [&] { return content.isSettled() && content.item() && content.item()->name() == name; });
    }
    QuickLookContent content;
};

TEST_F(Look, ShowsImagesAsLargeAsTheyFitAndTextsAndIconsOfTheRest) {
    picture("large.png", 200, 100);
    picture("small.png", 10, 10);
    tree.file("broken.png", "no picture");
    tree.file("notes.txt", "caf\xc3\xa9");
    tree.file("old.txt", "caf\xe9");
    tree.file("README", "words");
    tree.file("data.bin", std::string("\0\1\2", 3));
    tree.file("empty.txt");
    tree.folder("folder");
    ASSERT_TRUE(look("large.png"));
    EXPECT_EQ(content.kind(), Kind::image);
    EXPECT_EQ(content.image().size(), QSize(64, 32));
    ASSERT_TRUE(look("small.png"));
    EXPECT_EQ(content.image().size(), QSize(10, 10));
    for (const auto* text : {"notes.txt", "old.txt"}) {
        ASSERT_TRUE(look(text));
        EXPECT_EQ(content.kind(), Kind::text);
        EXPECT_EQ(content.text().toStdString(), "caf\xc3\xa9");
    }
    ASSERT_TRUE(look("README"));
    EXPECT_EQ(content.kind(), Kind::text);
    for (const auto* other : {"broken.png", "data.bin", "empty.txt", "folder"}) {
        ASSERT_TRUE(look(other));
        EXPECT_EQ(content.kind(), Kind::icon) << other;
        EXPECT_EQ(content.values().url, tree.url(other));
    }
}

TEST_F(Look, ReadsTheBeginningOfALongTextAndCutsNoCharacter) {
    std::string text = "x";
    while (text.size() < QuickLookContent::mostText + 10)
        text += "\xc3\xa9";
    tree.file("long.txt", text);
    ASSERT_TRUE(look("long.txt"));
    EXPECT_TRUE(content.isCut());
    EXPECT_EQ(content.text().size() - content.text().count(QLatin1Char('\n')),
              static_cast<qsizetype>(1 + (QuickLookContent::mostText - 1) / 2));
    EXPECT_FALSE(content.text().contains(QChar::ReplacementCharacter));
}

TEST_F(Look, DropsWhatWasReadOfTheItemBefore) {
    tree.file("a.txt", "a");
    tree.file("b.txt", "b");
    show({});
    content.look(item("a.txt"), QSize(64, 64));
    content.look(item("b.txt"), QSize(64, 64));
    ASSERT_TRUE(runUntilQuiet());
    EXPECT_EQ(content.text(), QStringLiteral("b"));
    content.look(item("a.txt"), QSize(64, 64));
    content.stop();
    ASSERT_TRUE(runUntilQuiet());
    EXPECT_EQ(content.text(), QStringLiteral("b"));
}

TEST(QuickLookText, IsReadByItsMark) {
    EXPECT_EQ(QuickLookContent::decoded(std::string_view("\xff\xfe"
                                                         "h\0i\0",
                                                         6)),
              QStringLiteral("hi"));
    EXPECT_EQ(QuickLookContent::decoded("\xef\xbb\xbf"
                                        "hi"),
              QStringLiteral("hi"));
    EXPECT_EQ(QuickLookContent::decoded(std::string_view("a\0b", 3)), std::nullopt);
}

} // namespace
} // namespace ombrel
