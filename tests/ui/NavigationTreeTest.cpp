#include "ui/NavigationTree.h"

#include "base/IsolatedName.h"
#include "ui/PlaceWorld.h"

#include <QAccessible>
#include <QScrollBar>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Tree : public PlaceWorld {
protected:
    Tree() : model(*services.services, *home, realListings()), view(model, theme, intents()) {
        constexpr int width = 232, height = 400;
        view.resize(width, height);
        view.show();
        QApplication::processEvents();
    }
    /// The row with a title, of those that are open.
    [[nodiscard]] QModelIndex row(const QString& title) const {
        for (QModelIndex index = model.index(0, 0); index.isValid(); index = view.indexBelow(index))
            if (model.entry(index).title == title) return index;
        return {};
    }
    [[nodiscard]] QModelIndex row(const char* title) const { return row(QString::fromUtf8(title)); }
    [[nodiscard]] bool runUntilRow(const char* title) {
        return runUntil([&] { return row(title).isValid() && view.visualRect(row(title)).isValid(); });
    }
    void click(QPoint at, Qt::MouseButton button = Qt::LeftButton,
               Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::mouseClick(view.viewport(), button, modifiers, at);
    }
    [[nodiscard]] QPoint textOf(const char* title) const { return view.partsOf(row(title)).text.center(); }
    [[nodiscard]] std::string currentTitle() const {
        return model.entry(view.currentIndex()).title.toStdString();
    }
    void key(Qt::Key which, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(&view, which, modifiers);
    }

    FolderTreeModel model;
    NavigationTree view;
};

TEST_F(Tree, GoesWhereItIsClicked) {
    click(textOf("b"));
    click(textOf("Home"));
    click(textOf("c"), Qt::MiddleButton);
    click(textOf("a"), Qt::LeftButton, Qt::ControlModifier);
    click(textOf("Quick access"));
    EXPECT_THAT(wanted, ElementsAre("open b", "home", "behind c", "tab a"));
    // A press that ends elsewhere is none.
    QTest::mousePress(view.viewport(), Qt::LeftButton, Qt::NoModifier, textOf("b"));
    QTest::mouseRelease(view.viewport(), Qt::LeftButton, Qt::NoModifier, textOf("c"));
    EXPECT_EQ(wanted.size(), 4U);
}

TEST_F(Tree, OpensAndClosesBranchesByTheArrowBeside) {
    click(view.partsOf(row("place")).chevron.center());
    ASSERT_TRUE(runUntilRow("inner"));
    EXPECT_EQ(view.partsOf(row("inner")).icon.left() - view.partsOf(row("place")).icon.left(), 16);
    // What has folders shows when it has been seen.
    ASSERT_TRUE(runUntil([&] { return model.hasChildren(row("inner")); }));
    click(view.partsOf(row("inner")).chevron.center());
    ASSERT_TRUE(runUntilRow("deep"));
    click(view.partsOf(row("place")).chevron.center());
    EXPECT_FALSE(row("inner").isValid());
    EXPECT_THAT(wanted, IsEmpty());
}

TEST_F(Tree, IsWalkedByKeys) {
    view.setCurrentIndex(row("Home"));
    key(Qt::Key_Down);
    EXPECT_EQ(currentTitle(), "a") << "heads are skipped";
    key(Qt::Key_End);
    EXPECT_EQ(currentTitle(), "place");
    key(Qt::Key_Right);
    ASSERT_TRUE(runUntilRow("inner"));
    key(Qt::Key_Right);
    EXPECT_EQ(currentTitle(), "inner");
    key(Qt::Key_Left);
    EXPECT_EQ(currentTitle(), "place");
    key(Qt::Key_Left);
    EXPECT_FALSE(row("inner").isValid());
    key(Qt::Key_Asterisk);
    EXPECT_FALSE(model.isOpen(row("place")));
    key(Qt::Key_B);
    EXPECT_EQ(currentTitle(), "b") << "typing jumps";
    key(Qt::Key_Return);
    key(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_THAT(wanted, ElementsAre("open b", "tab b"));
    QKeyEvent rename(QEvent::KeyPress, Qt::Key_F2, Qt::NoModifier);
    QApplication::sendEvent(&view, &rename);
    EXPECT_FALSE(rename.isAccepted()) << "is the window's";
}

TEST_F(Tree, OffersToAllowALocationAgain) {
    EXPECT_TRUE(view.partsOf(row("place")).button.isEmpty());
    forbidPlace();
    QApplication::processEvents();
    click(view.partsOf(row("place")).button.center());
    ASSERT_EQ(services.picker.requests.size(), 1U);
    EXPECT_EQ(services.picker.requests[0].startingAt, tree.url("place"));
    click(textOf("place"));
    EXPECT_EQ(services.picker.requests.size(), 2U);
    EXPECT_THAT(wanted, IsEmpty());
}

TEST_F(Tree, ShowsTheNamesOfDeepFolders) {
    std::string path = "place";
    for (int i = 0; i < 20; ++i)
        tree.folder(path += "/d" + std::to_string(i));
    model.follow(tree.url(path));
    ASSERT_TRUE(runUntil([&] { return model.entry(model.current()).title == QLatin1String("d19"); }));
    const auto parts = view.partsOf(model.current());
    EXPECT_TRUE(parts.row.contains(parts.text));
    EXPECT_GT(parts.text.width(), parts.row.width() / 4);
}

TEST_F(Tree, ScrollsToTheShownFolderOnlyWhenItIsOutOfSight) {
    for (int i = 100; i < 160; ++i)
        tree.folder("place/inner/" + std::to_string(i));
    model.follow(tree.url("place/inner/159"));
    ASSERT_TRUE(runUntil([&] { return model.entry(model.current()).title == QLatin1String("159"); }));
    const auto isInSight = [&] {
        const QRect shown = view.visualRect(model.current());
        // Qt scrolls to all of a row but its last line of pixels.
        return shown.top() >= 0 && shown.bottom() <= view.viewport()->height();
    };
    ASSERT_TRUE(runUntil(isInSight));
    const int before = view.verticalScrollBar()->value();
    model.follow(tree.url("place/inner/158"));
    QApplication::processEvents();
    EXPECT_EQ(model.entry(model.current()).title, QLatin1String("158"));
    EXPECT_EQ(view.verticalScrollBar()->value(), before);
    // Who comes by the keyboard sees where it is.
    view.setCurrentIndex(model.current());
    view.verticalScrollBar()->setValue(0);
    ASSERT_FALSE(isInSight());
    QFocusEvent focus(QEvent::FocusIn, Qt::TabFocusReason);
    QApplication::sendEvent(&view, &focus);
    EXPECT_TRUE(isInSight());
    model.follow(std::nullopt);
    QApplication::processEvents();
    EXPECT_EQ(view.verticalScrollBar()->value(), 0);
}

TEST_F(Tree, PinsBetweenPinsAndMovesThem) {
    const auto other = PinDrag::dataOf(tree.url("place/other"), std::nullopt);
    const QRect b = view.visualRect(row("b"));
    dragOver(view, *other, b.topLeft() + QPoint(60, 2));
    EXPECT_TRUE(isAccepted);
    EXPECT_FALSE(view.insertionLine().isEmpty());
    drop(view, *other, b.topLeft() + QPoint(60, 2));
    ASSERT_TRUE(runUntil([&] { return home->pins().size() == 4; }));
    EXPECT_THAT(pins(), ElementsAre("a", "other", "b", "c"));
    QApplication::processEvents();
    drop(view, *PinDrag::dataOf(tree.url("a"), 0), view.visualRect(row("c")).bottomLeft() + QPoint(60, -2));
    EXPECT_THAT(pins(), ElementsAre("other", "b", "c", "a"));
    EXPECT_TRUE(view.insertionLine().isEmpty());
    EXPECT_THAT(wanted, IsEmpty()) << "nothing on the disk was moved";
}

TEST_F(Tree, TakesItemsIntoFoldersAndOpensUnderADrag) {
    const auto items = PinDrag::dataOf(tree.url("place/other"), std::nullopt);
    drop(view, *items, textOf("b"));
    ASSERT_TRUE(runUntil([&] { return tree.exists("b/other"); }));
    EXPECT_TRUE(tree.exists("place/other")) << "other programs' offers are copied first";
    dragOver(view, *items, textOf("c"), Qt::ShiftModifier);
    EXPECT_EQ(drops.effect().toStdString(), "Move to " + isolated("c"));
    drop(view, *items, textOf("c"), Qt::ShiftModifier);
    EXPECT_TRUE(drops.effect().isEmpty());
    ASSERT_TRUE(runUntil([&] { return tree.exists("c/other") && !tree.exists("place/other"); }));
    dragOver(view, *items, textOf("place"));
    EXPECT_TRUE(runUntilRow("inner"));
    EXPECT_THAT(wanted, IsEmpty());
}

TEST_F(Tree, RefusesDropsAndSaysWhy) {
    const auto place = PinDrag::dataOf(tree.url("place"), std::nullopt);
    dragOver(view, *place, textOf("Home"));
    EXPECT_FALSE(isAccepted);
    EXPECT_TRUE(hasEntered) << "the rest of the way is heard of";
    EXPECT_TRUE(drops.effect().isEmpty());
    dragOver(view, *place, textOf("place"));
    EXPECT_FALSE(isAccepted);
    EXPECT_EQ(drops.effect().toStdString(), "Can’t move a folder into itself");
    drop(view, *place, textOf("place"));
    EXPECT_TRUE(services.services->center().jobs().empty());
    QMimeData text;
    text.setText(QStringLiteral("no file"));
    dragOver(view, text, textOf("b"));
    EXPECT_FALSE(hasEntered);
}

TEST_F(Tree, ScrollsUnderADragAtItsEdge) {
    view.resize(view.width(), 100);
    QApplication::processEvents();
    const auto items = PinDrag::dataOf(tree.url("place/other"), std::nullopt);
    dragOver(view, *items, {100, view.viewport()->height() - 5});
    EXPECT_TRUE(
        runUntil([&] { return view.verticalScrollBar()->value() == view.verticalScrollBar()->maximum(); }));
    QDragLeaveEvent leave;
    QApplication::sendEvent(view.viewport(), &leave);
    view.verticalScrollBar()->setValue(0);
    QTest::qWait(100);
    EXPECT_EQ(view.verticalScrollBar()->value(), 0);
}

TEST_F(Tree, LeavesSpaceAboveItsFirstRow) {
    EXPECT_EQ(view.viewport()->mapTo(&view, view.visualRect(row("Home")).topLeft()).y(), 8);
}

TEST_F(Tree, SpeaksItsRows) {
    forbidPlace();
    auto* const spoken = QAccessible::queryAccessibleInterface(&view);
    ASSERT_NE(spoken, nullptr);
    EXPECT_EQ(spoken->role(), QAccessible::Tree);
    EXPECT_EQ(spoken->text(QAccessible::Name).toStdString(), "Folders");
    auto* const last = spoken->child(spoken->childCount() - 1);
    ASSERT_NE(last, nullptr);
    EXPECT_EQ(last->role(), QAccessible::TreeItem);
    EXPECT_EQ(last->text(QAccessible::Name).toStdString(), "place");
    EXPECT_EQ(last->text(QAccessible::Description).toStdString(), "Needs permission");
}

} // namespace
} // namespace ombrel
