#include "ui/IconsView.h"

#include "ui/ViewWorld.h"

#include <QMouseEvent>
#include <QSignalSpy>
#include <QWheelEvent>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using Place = BrowserModel::Place;

class Icons : public ::testing::Test {
protected:
    Icons() {
        for (int i = 0; i < 33; ++i)
            tree.file("file " + std::to_string(1000 + i));
        view.resize(800, 400);
        view.show();
        model.navigate(tree.url());
        EXPECT_TRUE(runUntilLoaded(model));
    }
    void key(int which, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(&view, static_cast<Qt::Key>(which), modifiers);
    }
    [[nodiscard]] std::size_t current() const { return model.row(Place::current).value_or(999); }
    void dragTo(QPoint to) {
        QMouseEvent move(QEvent::MouseMove, to, view.viewport()->mapToGlobal(to), Qt::NoButton,
                         Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(view.viewport(), &move);
    }

    const Theme& theme = quietTheme();
    TempTree tree;
    BrowserModel model{realListings()};
    IconsView view{model, theme};
};

TEST_F(Icons, SpreadEvenlyAndTheLastLineStaysInItsColumns) {
    // 790 pixels beside the scroll bar hold six cells of 124 with 6 between them.
    ASSERT_EQ(view.columns(), 6);
    EXPECT_EQ(view.rowRect(0).size(), QSize(124, 152));
    const int pitch = view.rowRect(1).left() - view.rowRect(0).left();
    for (std::size_t column = 2; column < 6; ++column)
        EXPECT_NEAR(view.rowRect(column).left() - view.rowRect(column - 1).left(), pitch, 1);
    EXPECT_EQ(view.rowRect(32).left(), view.rowRect(2).left());
    EXPECT_EQ(view.rowRect(6).top() - view.rowRect(0).top(), 158);
    EXPECT_EQ(view.contentHeight(), 6 * 158 - 6 + 24);
    EXPECT_EQ(view.visibleRows(), (RowRange{0, 18}));
    EXPECT_EQ(view.rowAt(view.rowRect(8).center()), 8U);
    EXPECT_EQ(view.rowAt(view.rowRect(8).topLeft() - QPoint(0, 3)), std::nullopt);
}

TEST_F(Icons, EverySizeIsAsTheTableHasIt) {
    struct Expected {
        IconSize size;
        QSize cell;
    };
    for (const auto& each : {Expected{IconSize::small, {88, 76}}, Expected{IconSize::medium, {104, 100}},
                             Expected{IconSize::extraLarge, {236, 252}}}) {
        view.setIconSize(each.size);
        EXPECT_EQ(view.rowRect(0).size(), each.cell);
        EXPECT_EQ(view.columns(), view.viewport()->width() / (each.cell.width() + 6));
    }
}

TEST_F(Icons, ArrowsGoWhereTheyPointAndStopAtTheEdges) {
    key(Qt::Key_Home);
    key(Qt::Key_Left);
    key(Qt::Key_Up);
    EXPECT_EQ(current(), 0U);
    for (int i = 0; i < 9; ++i)
        key(Qt::Key_Right);
    EXPECT_EQ(current(), 5U);
    for (int i = 0; i < 4; ++i)
        key(Qt::Key_Down);
    EXPECT_EQ(current(), 29U);
    key(Qt::Key_Down);
    EXPECT_EQ(current(), 32U) << "the last line ends before that column";
    key(Qt::Key_Down);
    key(Qt::Key_Right);
    EXPECT_EQ(current(), 32U);
    EXPECT_TRUE(view.visibleRows().contains(32));
    key(Qt::Key_Left, Qt::ShiftModifier);
    EXPECT_EQ(selectedNames(model).size(), 2U);
}

TEST_F(Icons, BandTakesTheCellsItTouches) {
    const QPoint start = view.rowRect(0).topLeft() - QPoint(2, 2);
    const QPoint end = view.rowRect(7).topLeft() + QPoint(4, 4);
    QTest::mousePress(view.viewport(), Qt::LeftButton, Qt::NoModifier, start);
    dragTo((start + end) / 2);
    dragTo(end);
    QTest::mouseRelease(view.viewport(), Qt::LeftButton, Qt::NoModifier, end);
    EXPECT_THAT(selectedNames(model), ElementsAre("file 1000", "file 1001", "file 1006", "file 1007"));
}

TEST_F(Icons, ControlAndTheWheelAskForOtherSizesAndTheItemStaysUnderThePointer) {
    QSignalSpy asked(&view, &FileView::zoomRequested);
    view.scrollTo(300);
    const QPoint at = view.viewport()->rect().center();
    QWheelEvent wheel(at, view.viewport()->mapToGlobal(at), QPoint(), QPoint(0, 120), Qt::NoButton,
                      Qt::ControlModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(view.viewport(), &wheel);
    ASSERT_EQ(asked.size(), 1);
    EXPECT_EQ(asked[0][0].toInt(), 1);
    const auto anchor = view.anchorAt(asked[0][1].toPoint());
    ASSERT_TRUE(anchor);
    view.setIconSize(IconSize::extraLarge, anchor);
    EXPECT_EQ(view.rowRect(anchor->row).center().y(), anchor->y);
}

TEST_F(Icons, NarrowerViewKeepsWhatTheUserLooksAt) {
    key(Qt::Key_End);
    const int y = view.rowRect(32).center().y();
    view.resize(400, 400);
    EXPECT_LT(view.columns(), 6);
    EXPECT_TRUE(view.visibleRows().contains(32));
    EXPECT_NEAR(view.rowRect(32).center().y(), y, 24);
}

TEST(NameLinesOfCells, KeepTheEndingOfALongName) {
    quietTheme();
    NameLines lines;
    lines.setRoom(QApplication::font(), 110);
    const auto name = QStringLiteral("A rather long name of a photograph that nobody shortened.jpeg");
    const QStringList& two = lines.of(name, 2);
    ASSERT_EQ(two.size(), 2);
    EXPECT_TRUE(two.back().endsWith(QLatin1String(".jpeg"))) << two.back().toStdString();
    EXPECT_TRUE(two.back().contains(QChar(0x2026)));
    const QString whole = lines.whole(name).join(QLatin1Char(' '));
    EXPECT_EQ(whole, name);
    EXPECT_EQ(lines.of(QStringLiteral("short.txt"), 2).size(), 1);
}

} // namespace
} // namespace ombrel
