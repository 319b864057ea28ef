#include "ui/HomeView.h"

#include "base/IsolatedName.h"
#include "ui/DropLabel.h"
#include "ui/PlaceWorld.h"

#include <QAccessible>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Section = HomeModel::Section;
using Part = HomeItem::Part;

HomeItem tile(std::size_t index) {
    return {Section::quickAccess, Part::entry, index};
}
HomeItem location(std::size_t index) {
    return {Section::locations, Part::entry, index};
}
HomeItem head(Section section) {
    return {section, Part::head, 0};
}
constexpr HomeItem addLocation{Section::locations, Part::addLocation, 0};

class HomePage : public PlaceWorld {
protected:
    HomePage() : view(*home, theme, intents()) {
        constexpr int width = 600, height = 500; // two tiles in a line
        view.resize(width, height);
        view.show();
        QApplication::processEvents();
    }
    void click(const HomeItem& item, Qt::MouseButton button = Qt::LeftButton) {
        QTest::mouseClick(view.viewport(), button, Qt::NoModifier, view.rectOf(item).center());
    }
    void key(Qt::Key which, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(&view, which, modifiers);
    }

    HomeView view;
};

TEST_F(HomePage, HasOneToFourTilesInALineAndFillsIt) {
    for (const auto& [width, columns] :
         {std::pair(300, 1), {506, 2}, {640, 2}, {900, 3}, {1280, 4}, {1800, 4}}) {
        const HomeLayout layout(*home, theme, width);
        int inFirstLine = 0;
        for (std::size_t i = 0; i < home->pins().size(); ++i)
            if (layout.rectOf(tile(i)).top() == layout.rectOf(tile(0)).top()) ++inFirstLine;
        EXPECT_EQ(inFirstLine, std::min(columns, 3)) << width;
        EXPECT_GE(layout.rectOf(tile(0)).width(), 220) << width;
        const auto last = static_cast<std::size_t>(std::min(columns, 3) - 1);
        if (columns <= 3) {
            EXPECT_EQ(layout.rectOf(tile(last)).right(), width - 28 - 1) << width;
        }
    }
}

TEST_F(HomePage, SelectsByOneClickAndOpensByTwo) {
    click(tile(1));
    EXPECT_TRUE(view.isSelected(tile(1)));
    EXPECT_THAT(wanted, IsEmpty());
    QTest::mouseDClick(view.viewport(), Qt::LeftButton, Qt::NoModifier, view.rectOf(tile(1)).center());
    click(tile(2), Qt::MiddleButton);
    QTest::mouseDClick(view.viewport(), Qt::LeftButton, Qt::NoModifier, view.rectOf(location(0)).center());
    EXPECT_THAT(wanted, ElementsAre("open b", "behind c", "open place"));
}

TEST_F(HomePage, IsWalkedByArrowsInsideAndBetweenSections) {
    const auto walk = [&](std::initializer_list<Qt::Key> keys) {
        for (const auto each : keys)
            key(each);
        return *view.current();
    };
    view.setCurrent(tile(0));
    EXPECT_EQ(walk({Qt::Key_Right}), tile(1));
    EXPECT_EQ(walk({Qt::Key_Right}), tile(2)) << "on to the next line";
    EXPECT_EQ(walk({Qt::Key_Up}), tile(0));
    EXPECT_EQ(walk({Qt::Key_Down, Qt::Key_Down}), head(Section::locations));
    EXPECT_EQ(walk({Qt::Key_Down}), location(0));
    EXPECT_EQ(walk({Qt::Key_Down}), addLocation);
    EXPECT_EQ(walk({Qt::Key_Right}), addLocation) << "sideways stays inside";
    EXPECT_EQ(walk({Qt::Key_End}), head(Section::volumes));
    EXPECT_EQ(walk({Qt::Key_Home}), head(Section::quickAccess));
    view.setCurrent(location(0));
    key(Qt::Key_Return);
    key(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_THAT(wanted, ElementsAre("open place", "tab place"));
}

TEST_F(HomePage, PutsSectionsAway) {
    const int before = view.homeLayout().height();
    click(head(Section::quickAccess));
    EXPECT_TRUE(home->isFolded(Section::quickAccess));
    HomeModel other(*services.services, tree.url());
    EXPECT_TRUE(other.isFolded(Section::quickAccess)) << "in the next window too";
    EXPECT_FALSE(other.isFolded(Section::volumes));
    EXPECT_TRUE(view.rectOf(tile(0)).isEmpty());
    EXPECT_LT(view.homeLayout().height(), before);
    key(Qt::Key_Right);
    EXPECT_FALSE(home->isFolded(Section::quickAccess));
    EXPECT_FALSE(other.isFolded(Section::quickAccess));
    view.setCurrent(tile(2));
    home->setFolded(Section::quickAccess, true);
    EXPECT_EQ(view.current(), head(Section::quickAccess)) << "the keyboard stays in the section";
}

TEST_F(HomePage, AllowsALocationAgainAndAddsOne) {
    forbidPlace();
    key(Qt::Key_Home);
    view.setCurrent(location(0));
    key(Qt::Key_Return);
    EXPECT_EQ(services.picker.requests.size(), 1U);
    const QRect row = view.rectOf(location(0));
    QTest::mouseClick(view.viewport(), Qt::LeftButton, Qt::NoModifier, {row.right() - 40, row.center().y()});
    EXPECT_EQ(services.picker.requests.size(), 2U);
    EXPECT_EQ(services.picker.requests[1].startingAt, tree.url("place"));
    services.picker.answer = tree.url("a");
    click(addLocation);
    EXPECT_TRUE(runUntil([&] { return home->locations().size() == 2; }));
    EXPECT_EQ(services.picker.requests.back().startingAt, std::nullopt);
}

TEST_F(HomePage, PinsBetweenTilesAndTakesItemsIntoThem) {
    const auto other = PinDrag::dataOf(tree.url("place/other"), std::nullopt);
    const QRect second = view.rectOf(tile(1));
    dragOver(view, *other, {second.left() + 3, second.center().y()});
    EXPECT_TRUE(isAccepted);
    EXPECT_FALSE(view.insertionLine().isEmpty());
    drop(view, *other, {second.left() + 3, second.center().y()});
    ASSERT_TRUE(runUntil([&] { return home->pins().size() == 4; }));
    EXPECT_THAT(pins(), ElementsAre("a", "other", "b", "c"));
    const QRect last = view.rectOf(tile(3));
    drop(view, *PinDrag::dataOf(tree.url("a"), 0), {last.right() - 10, last.center().y()});
    EXPECT_THAT(pins(), ElementsAre("other", "b", "c", "a"));
    dragOver(view, *other, view.rectOf(tile(1)).center());
    const auto* const label = view.findChild<DropLabel*>();
    ASSERT_NE(label, nullptr);
    EXPECT_EQ(label->text().toStdString(), "Copy to " + isolated("b"));
    EXPECT_TRUE(label->isVisible());
    drop(view, *other, view.rectOf(tile(1)).center());
    EXPECT_FALSE(label->isVisible());
    EXPECT_TRUE(runUntil([&] { return tree.exists("b/other"); }));
    EXPECT_THAT(wanted, IsEmpty());
    dragOver(view, *other, view.rectOf(location(0)).center());
    EXPECT_TRUE(runUntil([&] { return !wanted.empty(); }));
    EXPECT_THAT(wanted, ElementsAre("open place")) << "where it rests";
}

TEST_F(HomePage, SpeaksWhatItShows) {
    forbidPlace();
    auto* const page = QAccessible::queryAccessibleInterface(&view);
    ASSERT_NE(page, nullptr);
    std::vector<std::string> names;
    for (int i = 0; i < page->childCount(); ++i)
        names.push_back(page->child(i)->text(QAccessible::Name).toStdString());
    EXPECT_THAT(names, ElementsAre("Quick access, 3 folders", "a, ~", "b, ~", "c, ~", "Locations, 1 folder",
                                   "place, " + tree.path("place") + ", Needs permission", "Add a folder…",
                                   "Volumes, 0 volumes"));
    EXPECT_EQ(page->child(1)->role(), QAccessible::ListItem);
    page->child(2)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_THAT(wanted, ElementsAre("open b"));
}

} // namespace
} // namespace ombrel
