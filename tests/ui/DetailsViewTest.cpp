#include "ui/DetailsView.h"

#include "ui/ViewWorld.h"

#include <QAccessible>
#include <QMouseEvent>
#include <QScrollBar>
#include <QSignalSpy>
#include <QWheelEvent>

#include <filesystem>
#include <functional>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::IsSupersetOf;
using ::testing::Not;
using Place = BrowserModel::Place;

class Details : public ViewWorld {
protected:
    explicit Details(int files = 40) {
        makeFiles(files);
        open(tree.url());
    }
};

// ---- Where things are

TEST_F(Details, RowsLieOneBelowTheOtherAndOnlyThoseOnTheScreenCount) {
    EXPECT_EQ(view.contentHeight(), 40 * 32 + 8);
    EXPECT_EQ(view.visibleRows().begin, 0U);
    EXPECT_NEAR(static_cast<double>(view.visibleRows().size()), view.viewport()->height() / 32.0, 1.5);
    EXPECT_EQ(view.rowAt(pointOn(3)), 3U);
    EXPECT_EQ(view.rowAt(QPoint(1, view.rowRect(3).center().y())), std::nullopt);
    view.scrollTo(100);
    EXPECT_EQ(view.rowRect(3).top(), 4 + 3 * 32 - 100);
    EXPECT_EQ(view.rowAt(pointOn(5)), 5U);
    view.scrollTo(1'000'000);
    EXPECT_EQ(view.visibleRows().end, 40U);
    EXPECT_EQ(view.offset(), view.contentHeight() - view.viewport()->height());
}

TEST_F(Details, TouchpadsScrollBothWaysByThePixel) {
    view.resize(500, 400);
    ASSERT_GT(view.horizontalScrollBar()->maximum(), 7);
    const QPoint at = view.viewport()->rect().center();
    QWheelEvent pan(at, view.viewport()->mapToGlobal(at), QPoint(-7, -33), QPoint(-56, -264), Qt::NoButton,
                    Qt::NoModifier, Qt::ScrollUpdate, false);
    QApplication::sendEvent(view.viewport(), &pan);
    EXPECT_EQ(view.horizontalScrollBar()->value(), 7);
    EXPECT_EQ(view.offset(), 33);
}

TEST_F(Details, ColumnsFillTheViewAndShareTheirEdges) {
    auto& header = view.header();
    EXPECT_EQ(header.totalWidth(), view.width() - 8 - 10);
    const int date = header.width(DetailsColumn::dateModified), name = header.width(DetailsColumn::name);
    header.resizeSection(static_cast<int>(DetailsColumn::name), name - 50);
    EXPECT_EQ(header.width(DetailsColumn::dateModified), date + 50);
    EXPECT_EQ(header.totalWidth(), view.width() - 8 - 10);
    header.resizeSection(static_cast<int>(DetailsColumn::dateModified), 10);
    EXPECT_EQ(header.width(DetailsColumn::dateModified), 90);

    // Rows go on under the scroll bar.
    EXPECT_EQ(view.rowRect(0).right(), view.width() - 4 - 1);

    view.resize(500, 400);
    EXPECT_EQ(header.width(DetailsColumn::name), 140);
    EXPECT_GT(view.horizontalScrollBar()->maximum(), 0);
    view.resize(900, 400);
    EXPECT_EQ(view.horizontalScrollBar()->maximum(), 0);
    header.resetColumns();
    EXPECT_EQ(header.width(DetailsColumn::dateModified), 168);
}

TEST_F(Details, NameAndBoxStayFirst) {
    auto& header = view.header();
    header.moveSection(3, 1);
    EXPECT_EQ(header.visualIndex(static_cast<int>(DetailsColumn::checkBox)), 0);
    EXPECT_EQ(header.visualIndex(static_cast<int>(DetailsColumn::name)), 1);
    header.moveSection(4, 2);
    EXPECT_EQ(header.visualIndex(static_cast<int>(DetailsColumn::size)), 2);
}

TEST_F(Details, FittedColumnIsAsWideAsItsTexts) {
    auto& header = view.header();
    Q_EMIT header.fitRequested(DetailsColumn::dateModified);
    const int text = view.fontMetrics().horizontalAdvance(view.facts(0).date);
    EXPECT_EQ(header.width(DetailsColumn::dateModified), std::max(90, text + 17));
}

TEST_F(Details, FittingALongTextLeavesTheOtherColumnsTheirPlace) {
    tree.file(std::string(200, 'a'));
    open(tree.url());
    ASSERT_TRUE(runUntilQuiet());
    auto& header = view.header();
    header.resizeSection(static_cast<int>(DetailsColumn::dateModified), 120); // the type takes the rest
    Q_EMIT header.fitRequested(DetailsColumn::name);
    EXPECT_EQ(header.width(DetailsColumn::dateModified), 120);
    EXPECT_EQ(header.width(DetailsColumn::type), 136);
    EXPECT_EQ(header.width(DetailsColumn::size), 92);
    EXPECT_EQ(view.horizontalScrollBar()->maximum(), 0);
    header.fit(DetailsColumn::type, 5000);
    EXPECT_GE(header.width(DetailsColumn::name), 140);
    EXPECT_EQ(view.horizontalScrollBar()->maximum(), 0);
}

// ---- Sorting by the header

class SortedDetails : public ViewWorld {
protected:
    SortedDetails() {
        tree.folder("folder");
        tree.file("a.txt", "123");
        tree.file("b.pdf", "1");
        tree.file("c.csv", "12");
        open(tree.url());
    }
    QPoint placeOf(DetailsColumn column) {
        auto& header = view.header();
        return {header.sectionViewportPosition(static_cast<int>(column)) + header.width(column) / 2, 16};
    }
    void clickHeader(DetailsColumn column) {
        QTest::mouseClick(view.header().viewport(), Qt::LeftButton, Qt::NoModifier, placeOf(column));
        ASSERT_TRUE(runUntilQuiet());
    }
};

TEST_F(SortedDetails, ClicksSortAndReverseAndFoldersStayFirst) {
    clickHeader(DetailsColumn::name);
    EXPECT_THAT(namesOf(model.items()), ElementsAre("folder", "c.csv", "b.pdf", "a.txt"));
    clickHeader(DetailsColumn::size);
    EXPECT_TRUE(model.sort().ascending);
    EXPECT_THAT(namesOf(model.items()), ElementsAre("folder", "b.pdf", "c.csv", "a.txt"));
    clickHeader(DetailsColumn::size);
    EXPECT_THAT(namesOf(model.items()), ElementsAre("folder", "a.txt", "c.csv", "b.pdf"));
    clickHeader(DetailsColumn::dateModified);
    EXPECT_EQ(model.sort().key, FileSort::Key::modificationDate);
    EXPECT_FALSE(model.sort().ascending);
    clickHeader(DetailsColumn::type);
    EXPECT_TRUE(model.sort().ascending);
    EXPECT_EQ(model.sort().key, FileSort::Key::kind);
}

TEST_F(SortedDetails, TwoQuickClicksAreTwoClicks) {
    clickHeader(DetailsColumn::size);
    // As a display server tells of a second press that comes soon.
    const QPointF at = placeOf(DetailsColumn::size);
    for (const auto type : {QEvent::MouseButtonDblClick, QEvent::MouseButtonRelease}) {
        QMouseEvent event(type, at, view.header().viewport()->mapToGlobal(at), Qt::LeftButton,
                          type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(view.header().viewport(), &event);
    }
    ASSERT_TRUE(runUntilQuiet());
    EXPECT_FALSE(model.sort().ascending);
    EXPECT_THAT(namesOf(model.items()), ElementsAre("folder", "a.txt", "c.csv", "b.pdf"));
}

TEST_F(SortedDetails, BoxOfTheHeaderTakesAllOrNone) {
    clickHeader(DetailsColumn::checkBox);
    EXPECT_TRUE(model.selection().isEverything());
    clickHeader(DetailsColumn::checkBox);
    EXPECT_TRUE(model.selection().empty());
}

// ---- Keys

TEST_F(Details, KeysMoveAndSelect) {
    key(Qt::Key_Down);
    EXPECT_THAT(selectedRows(), ElementsAre(0U));
    key(Qt::Key_Down);
    key(Qt::Key_Down, Qt::ShiftModifier);
    key(Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_THAT(selectedRows(), ElementsAre(1U, 2U, 3U));
    key(Qt::Key_Up, Qt::ShiftModifier);
    EXPECT_THAT(selectedRows(), ElementsAre(1U, 2U));
    key(Qt::Key_Down, Qt::ControlModifier);
    key(Qt::Key_Down, Qt::ControlModifier);
    EXPECT_EQ(current(), 4U);
    EXPECT_THAT(selectedRows(), ElementsAre(1U, 2U));
    key(Qt::Key_Space, Qt::ControlModifier);
    EXPECT_THAT(selectedRows(), ElementsAre(1U, 2U, 4U));
    key(Qt::Key_Down, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_THAT(selectedRows(), ElementsAre(1U, 2U, 4U, 5U));
    key(Qt::Key_A, Qt::ControlModifier);
    EXPECT_TRUE(model.selection().isEverything());
}

TEST_F(Details, HomeEndAndPagesBringTheirRowIntoSight) {
    key(Qt::Key_End);
    EXPECT_EQ(current(), 39U);
    EXPECT_EQ(view.visibleRows().end, 40U);
    EXPECT_EQ(view.offset(), view.contentHeight() - view.viewport()->height());
    key(Qt::Key_PageUp);
    EXPECT_LT(current(), 35U);
    EXPECT_TRUE(view.visibleRows().contains(*current()));
    key(Qt::Key_Home, Qt::ShiftModifier);
    EXPECT_EQ(view.offset(), 0);
    EXPECT_EQ(selectedRows().size(), *model.row(Place::anchor) + 1);
}

TEST_F(Details, DoubleClickOpens) {
    QSignalSpy opened(&view, &FileView::openRequested);
    QTest::mouseDClick(view.viewport(), Qt::LeftButton, Qt::NoModifier, pointOn(3));
    ASSERT_EQ(opened.size(), 1);
    EXPECT_EQ(opened.takeFirst().constFirst().value<std::size_t>(), 3U);
}

TEST_F(Details, KeysOfCommandsGoBeforeItsOwn) {
    std::vector<FileCommand> given;
    for (const auto command : {FileCommand::open, FileCommand::rename, FileCommand::quickLook,
                               FileCommand::cancelCut, FileCommand::moveToTrash})
        commands.bind(command, {.perform = [&given, command](BrowserModel&) { given.push_back(command); }});
    key(Qt::Key_Return);
    key(Qt::Key_Delete);
    EXPECT_THAT(given, IsEmpty()) << "nothing is selected";
    key(Qt::Key_End);
    key(Qt::Key_Enter, Qt::KeypadModifier);
    key(Qt::Key_Delete, Qt::KeypadModifier);
    EXPECT_THAT(std::exchange(given, {}), ElementsAre(FileCommand::open, FileCommand::moveToTrash));
    QTest::keyClicks(&view, QStringLiteral("file 10"));
    EXPECT_THAT(given, IsEmpty()) << "spaces belong to what is typed";
    key(Qt::Key_Escape);
    EXPECT_THAT(given, IsEmpty()) << "the typing ends first";
    key(Qt::Key_Escape);
    key(Qt::Key_Space);
    EXPECT_THAT(std::exchange(given, {}), ElementsAre(FileCommand::cancelCut, FileCommand::quickLook));

    preset = KeyPreset::mac;
    const auto row = current();
    key(Qt::Key_Return);
    key(Qt::Key_Down, Qt::MetaModifier);
    key(Qt::Key_Down, Qt::ControlModifier);
    key(Qt::Key_Backspace, Qt::ControlModifier);
    key(Qt::Key_Delete);
    EXPECT_THAT(given, ElementsAre(FileCommand::rename, FileCommand::open, FileCommand::open,
                                   FileCommand::moveToTrash));
    EXPECT_EQ(current(), row);
}

TEST_F(Details, ControlMovesOnlyTheCurrentRowOnLongWaysToo) {
    click(3);
    key(Qt::Key_End, Qt::ControlModifier);
    EXPECT_EQ(current(), 39U);
    EXPECT_THAT(selectedRows(), ElementsAre(3U));
    key(Qt::Key_Home, Qt::AltModifier);
    EXPECT_EQ(current(), 39U);
}

class Typing : public ViewWorld {
protected:
    Typing() {
        for (const auto* name : {"Alpha", "beta", "Bravo", "Ångström", "étude", "echo", "10 x"})
            tree.file(name);
        open(tree.url());
    }
    std::string typed(const QString& text) {
        QTest::keyClicks(&view, text);
        EXPECT_TRUE(runUntilQuiet());
        return nameAt(model, Place::current);
    }
};

TEST_F(Typing, JumpsToTheNextNameThatBeginsSo) {
    EXPECT_EQ(typed(QStringLiteral("br")), "Bravo");
    EXPECT_THAT(selectedNames(model), ElementsAre("Bravo"));
    ASSERT_TRUE(runUntil([&] { return view.typeAhead().text().isEmpty(); }));
    EXPECT_EQ(typed(QStringLiteral("an")), "Ångström");
    ASSERT_TRUE(runUntil([&] { return view.typeAhead().text().isEmpty(); }));
    EXPECT_EQ(typed(QStringLiteral("10 ")), "10 x");
    EXPECT_EQ(typed(QStringLiteral("zzz")), "10 x");
}

TEST_F(Typing, OneLetterAgainAndAgainStepsThrough) {
    EXPECT_EQ(typed(QStringLiteral("e")), "echo");
    EXPECT_EQ(typed(QStringLiteral("e")), "étude");
    EXPECT_EQ(typed(QStringLiteral("e")), "echo");
}

// ---- The mouse

TEST_F(Details, ClicksSelectAsTheModifiersSay) {
    click(2);
    EXPECT_THAT(selectedRows(), ElementsAre(2U));
    click(5, Qt::ControlModifier);
    EXPECT_THAT(selectedRows(), ElementsAre(2U, 5U));
    click(7, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_THAT(selectedRows(), ElementsAre(2U, 5U, 6U, 7U));
    click(3, Qt::ShiftModifier);
    EXPECT_THAT(selectedRows(), ElementsAre(3U, 4U, 5U));
    QTest::mousePress(view.viewport(), Qt::LeftButton, Qt::NoModifier, pointOn(4));
    EXPECT_THAT(selectedRows(), ElementsAre(3U, 4U, 5U));
    QTest::mouseRelease(view.viewport(), Qt::LeftButton, Qt::NoModifier, pointOn(4));
    EXPECT_THAT(selectedRows(), ElementsAre(4U));
    QTest::mousePress(view.viewport(), Qt::LeftButton, Qt::ControlModifier, pointOn(4));
    EXPECT_THAT(selectedRows(), ElementsAre(4U)) << "it may be dragged";
    QTest::mouseRelease(view.viewport(), Qt::LeftButton, Qt::ControlModifier, pointOn(4));
    EXPECT_THAT(selectedRows(), IsEmpty());
    QTest::mouseClick(view.viewport(), Qt::RightButton, Qt::NoModifier, pointOn(6));
    EXPECT_THAT(selectedRows(), ElementsAre(6U));
}

TEST_F(Details, BoxesToggleTheirOwnRowOnly) {
    click(1);
    QTest::mouseClick(view.viewport(), Qt::LeftButton, Qt::NoModifier, middleOf(4, DetailsColumn::checkBox));
    EXPECT_THAT(selectedRows(), ElementsAre(1U, 4U));
    QTest::mouseClick(view.viewport(), Qt::LeftButton, Qt::NoModifier, middleOf(1, DetailsColumn::checkBox));
    EXPECT_THAT(selectedRows(), ElementsAre(4U));
}

TEST_F(Details, BandTakesEveryRowItTouchesAndGivesBackWhatItLeaves) {
    const QPoint start = middleOf(2, DetailsColumn::name);
    drag(start, middleOf(5, DetailsColumn::name));
    EXPECT_THAT(selectedRows(), ElementsAre(2U, 3U, 4U, 5U));
    dragTo(middleOf(3, DetailsColumn::name));
    EXPECT_THAT(selectedRows(), ElementsAre(2U, 3U));
    QTest::mouseRelease(view.viewport(), Qt::LeftButton, Qt::NoModifier, middleOf(3, DetailsColumn::name));
    drag(middleOf(3, DetailsColumn::name), middleOf(4, DetailsColumn::name), Qt::ControlModifier);
    QTest::mouseRelease(view.viewport(), Qt::LeftButton, Qt::ControlModifier,
                        middleOf(4, DetailsColumn::name));
    EXPECT_THAT(selectedRows(), ElementsAre(2U, 4U));
}

TEST_F(Details, GesturesStayWithTheirItemsWhenTheFolderIsReadAnew) {
    const auto change = [&](const std::function<void()>& how, std::size_t count) {
        how();
        ASSERT_TRUE(runUntil([&] { return model.items().size() == count; }));
    };
    click(1);
    drag(middleOf(5, DetailsColumn::name), middleOf(6, DetailsColumn::name), Qt::ControlModifier);
    model.setHeld(false); // as after a while
    change([&] { tree.file("a new one"); }, 41);
    dragTo(middleOf(8, DetailsColumn::name), Qt::ControlModifier);
    QTest::mouseRelease(view.viewport(), Qt::LeftButton, Qt::ControlModifier,
                        middleOf(8, DetailsColumn::name));
    EXPECT_THAT(selectedNames(model), Contains("file 1001"));
    EXPECT_THAT(selectedNames(model), Not(Contains("file 1000")));
    EXPECT_THAT(selectedNames(model), IsSupersetOf({"file 1005", "file 1007"}));

    model.setSelection([&] {
        auto all = model.selection();
        all.selectAll();
        return all;
    }());
    const std::size_t row = view.visibleRows().end - 2;
    const QPoint last = pointOn(row);
    const std::string name(model.items()[row].name());
    QTest::mousePress(view.viewport(), Qt::LeftButton, Qt::NoModifier, last);
    change([&] { std::filesystem::remove(tree.path("a new one")); }, 40);
    QTest::mouseRelease(view.viewport(), Qt::LeftButton, Qt::NoModifier, last);
    EXPECT_THAT(selectedNames(model), ElementsAre(name));
}

TEST_F(Details, BandFromARowsContentIsNone) {
    drag(pointOn(2), pointOn(5));
    EXPECT_THAT(selectedRows(), ElementsAre(2U));
}

// ---- Holding still

class GrowingDetails : public ViewWorld {
protected:
    GrowingDetails() : GrowingDetails(SteppedListings(100)) {}
    explicit GrowingDetails(const SteppedListings& stepped) : ViewWorld(stepped.source()), listings(stepped) {
        // In what order a folder is read is its own affair: batches hold names from everywhere.
        makeFiles(800);
        model.navigate(tree.url());
        grow();
    }
    void grow() {
        const auto before = model.items().size();
        listings.allow(1);
        ASSERT_TRUE(runUntil([&] { return model.items().size() > before; }));
    }
    SteppedListings listings;
};

TEST_F(GrowingDetails, StayAtTheirTopUntilTheyAreTouched) {
    const std::string first(model.items()[0].name());
    while (model.items().size() < 700) {
        grow();
        EXPECT_EQ(view.offset(), 0);
    }
    EXPECT_TRUE(selectedRows().empty());
}

TEST_F(GrowingDetails, KeepTheCurrentRowWhereItIs) {
    key(Qt::Key_Down);
    for (int i = 0; i < 20; ++i)
        key(Qt::Key_Down);
    const std::string name = nameAt(model, Place::current);
    const QRect place = view.rowRect(*current());
    while (model.items().size() < 700) {
        grow();
        EXPECT_EQ(nameAt(model, Place::current), name);
        EXPECT_EQ(view.rowRect(*current()), place);
        EXPECT_THAT(selectedNames(model), ElementsAre(name));
    }
}

TEST_F(GrowingDetails, KeepTheFirstWholeRowWhereTheUserScrolledTo) {
    view.verticalScrollBar()->setValue(1007);
    const std::size_t row = view.visibleRows().begin + 1;
    const std::string name(model.items()[row].name());
    const QRect place = view.rowRect(row);
    while (model.items().size() < 700) {
        grow();
        EXPECT_EQ(view.rowRect(rowNamed(model, name)), place);
    }
}

TEST_F(GrowingDetails, WaitForABandToEnd) {
    const auto count = model.items().size();
    drag(middleOf(2, DetailsColumn::name), middleOf(4, DetailsColumn::name));
    listings.allowAll();
    ASSERT_TRUE(runUntilQuiet());
    EXPECT_EQ(model.items().size(), count);
    QTest::mouseRelease(view.viewport(), Qt::LeftButton, Qt::NoModifier, middleOf(4, DetailsColumn::name));
    EXPECT_EQ(model.items().size(), 800U);
    EXPECT_EQ(model.listingState(), ListingState::Case::loaded);
    EXPECT_EQ(model.selection().count(), 3U);
}

TEST_F(Details, SortingStaysWithAVisibleCurrentRowAndElseGoesToTheTop) {
    FileSort sort;
    sort.ascending = false;
    click(3);
    const QRect place = view.rowRect(3);
    model.setSort(sort);
    ASSERT_TRUE(runUntilQuiet());
    EXPECT_EQ(current(), 36U);
    EXPECT_EQ(view.rowRect(36).top(), std::max(place.top(), view.viewport()->height() - 4 - 4 * 32));
    view.scrollTo(0);
    model.setSort(FileSort());
    ASSERT_TRUE(runUntilQuiet());
    EXPECT_EQ(view.offset(), 0);
}

// ---- What it says

TEST_F(Details, ReadsARowOutWholly) {
    ASSERT_TRUE(runUntil([&] {
        const bool isKnown = !view.facts(0).type.isEmpty();
        return isKnown;
    }));
    EXPECT_EQ(view.spokenText(0).toStdString(),
              "file 1000, File, " + view.facts(0).date.toStdString() + ", 0 bytes");
}

TEST_F(Details, IsAListOfItsRowsToAssistivePrograms) {
    auto* const list = QAccessible::queryAccessibleInterface(&view);
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->role(), QAccessible::List);
    EXPECT_EQ(list->text(QAccessible::Name).toStdString(), "Files");
    ASSERT_GE(list->childCount(), 40);
    auto* const row = list->child(3);
    ASSERT_NE(row, nullptr);
    EXPECT_EQ(row->role(), QAccessible::ListItem);
    EXPECT_EQ(row->text(QAccessible::Name), view.spokenText(3));
    EXPECT_EQ(list->indexOfChild(row), 3);
    EXPECT_EQ(list->childAt(row->rect().center().x(), row->rect().center().y()), row);
    EXPECT_FALSE(row->state().selected);
    row->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_TRUE(row->state().selected);
    EXPECT_THAT(selectedRows(), ElementsAre(3U));
    EXPECT_FALSE(row->state().offscreen);
    EXPECT_TRUE(list->child(39)->state().offscreen);
    QSignalSpy opened(&view, &FileView::openRequested);
    row->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(opened.size(), 1);
    model.navigate(FileURL());
    EXPECT_FALSE(row->isValid());
}

TEST_F(Details, TellsAssistiveProgramsOfWhatLiesOverItsRows) {
    auto* const list = QAccessible::queryAccessibleInterface(&view);
    QWidget over(view.viewport());
    over.setGeometry(0, 0, view.viewport()->width(), 100);
    over.show();
    std::vector<const QObject*> behindTheRows;
    for (int i = 40; i < list->childCount(); ++i) {
        ASSERT_NE(list->child(i), nullptr);
        EXPECT_EQ(list->indexOfChild(list->child(i)), i);
        behindTheRows.push_back(list->child(i)->object());
    }
    EXPECT_THAT(behindTheRows, ::testing::IsSupersetOf({static_cast<const QObject*>(view.viewport()),
                                                        static_cast<const QObject*>(&view.header())}));
    EXPECT_EQ(list->child(list->childCount()), nullptr);
    const QPoint at = over.mapToGlobal(over.rect().center());
    auto* const hit = list->childAt(at.x(), at.y());
    ASSERT_NE(hit, nullptr);
    EXPECT_EQ(hit->object(), view.viewport());
    EXPECT_EQ(hit->childAt(at.x(), at.y())->object(), &over);
}

TEST_F(Details, DrawsWhatIsThere) {
    const QImage picture = view.grab().toImage();
    click(2);
    const QImage selected = view.grab().toImage();
    EXPECT_NE(picture, selected);
    const QPoint inRow = view.viewport()->mapTo(&view, QPoint(300, view.rowRect(2).top() + 4));
    EXPECT_EQ(picture.pixelColor(inRow), theme.color(ThemeColor::surface));
    const QColor drawn = selected.pixelColor(inRow);
    EXPECT_TRUE(drawn == theme.color(ThemeColor::selectionInactive) ||
                drawn == theme.color(ThemeColor::selection) ||
                drawn == theme.color(ThemeColor::selectionHover))
        << drawn.name().toStdString();
}

} // namespace
} // namespace ombrel
