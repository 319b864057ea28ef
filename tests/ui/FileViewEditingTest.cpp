#include "browser/FileActions.h"
#include "browser/ServicesWorld.h"
#include "ui/DetailsView.h"
#include "ui/RenameEditor.h"
#include "ui/ViewWorld.h"

#include <QDragMoveEvent>
#include <QMimeData>
#include <QStyleHints>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::Contains;
using ::testing::Not;

/// A details view whose pane can rename and take drops.
class EditingView : public ::testing::Test {
protected:
    EditingView() {
        tree.folder("Reports");
        for (const auto* name : {"a.txt", "b.txt", "photo.tar.gz"})
            tree.file(name, "12345");
        pane.setServices(*world.services);
        view.setSources({.settings = &world.services->settings(), .actions = &actions});
        view.resize(800, 400);
        view.show();
        pane.navigate(tree.url());
        EXPECT_TRUE(runUntilLoaded(pane));
        EXPECT_TRUE(runUntilQuiet());
    }
    RenameEditor& rename(const std::string& name) {
        view.beginRename(rowNamed(pane, name));
        EXPECT_NE(view.renameEditor(), nullptr);
        return *view.renameEditor();
    }
    bool isListed(const std::string& name) {
        return runUntil([&] {
            const auto names = namesOf(pane.items());
            return std::ranges::find(names, name) != names.end();
        });
    }

    ServicesWorld world;
    TempTree tree;
    BrowserModel pane{realListings()};
    FileActions actions{*world.services};
    DetailsView view{pane, quietTheme()};
};

TEST_F(EditingView, RenamesByTheStemAndKeepsTheItemSelected) {
    auto& editor = rename("photo.tar.gz");
    EXPECT_EQ(editor.selectedText(), QStringLiteral("photo"));
    QTest::keyClicks(&editor, QStringLiteral("sun"));
    QTest::keyClick(&editor, Qt::Key_Return);
    ASSERT_TRUE(isListed("sun.tar.gz"));
    EXPECT_EQ(view.renameEditor(), nullptr);
    EXPECT_TRUE(runUntil([&] { return selectedNames(pane) == std::vector<std::string>{"sun.tar.gz"}; }));
    EXPECT_TRUE(tree.exists("sun.tar.gz"));
}

TEST_F(EditingView, ScrollsForARenamedItemOnlyAsFarAsItTakes) {
    for (int i = 10; i < 60; ++i)
        tree.file("m" + std::to_string(i) + ".txt");
    pane.refresh();
    ASSERT_TRUE(isListed("m59.txt"));
    ASSERT_TRUE(runUntilQuiet());
    QTest::keyClicks(&rename("a.txt"), QStringLiteral("m12a"));
    QTest::keyClick(view.renameEditor(), Qt::Key_Return);
    ASSERT_TRUE(isListed("m12a.txt"));
    EXPECT_EQ(view.offset(), 0) << "its new place is on the screen too";
    ASSERT_TRUE(runUntil([&] { return selectedNames(pane) == std::vector<std::string>{"m12a.txt"}; }));
    QTest::keyClicks(&rename("m12a.txt"), QStringLiteral("z"));
    QTest::keyClick(view.renameEditor(), Qt::Key_Return);
    ASSERT_TRUE(isListed("z.txt"));
    EXPECT_TRUE(runUntil([&] { return view.visibleRows().contains(rowNamed(pane, "z.txt")); }));
}

TEST_F(EditingView, RefusesWhatIsNoNameAndGivesUpByEscape) {
    auto& editor = rename("a.txt");
    QTest::keyClicks(&editor, QStringLiteral("x/y"));
    EXPECT_EQ(editor.text(), QStringLiteral("xy.txt")) << "a slash is not taken";
    editor.setText(QStringLiteral("b.txt"));
    QTest::keyClick(&editor, Qt::Key_Return);
    ASSERT_TRUE(runUntil([&] { return !editor.isReadOnly(); }));
    EXPECT_EQ(view.renameEditor(), &editor) << "the name is taken";
    EXPECT_EQ(editor.selectedText(), QStringLiteral("b"));
    QTest::keyClick(&editor, Qt::Key_Escape);
    EXPECT_EQ(view.renameEditor(), nullptr);
    EXPECT_THAT(tree.names(), Contains("a.txt"));
}

TEST_F(EditingView, GoesOnToTheNextItemByTab) {
    auto& first = rename("a.txt");
    QTest::keyClicks(&first, QStringLiteral("zebra"));
    QTest::keyClick(&first, Qt::Key_Tab);
    ASSERT_TRUE(runUntil([&] { return view.renameEditor() && view.renameEditor() != &first; }));
    auto& second = *view.renameEditor();
    EXPECT_EQ(second.text(), QStringLiteral("b.txt"));
    QTest::keyClick(&second, Qt::Key_Backtab);
    QTest::keyClick(view.renameEditor(), Qt::Key_Escape);
    ASSERT_TRUE(isListed("zebra.txt"));
    EXPECT_THAT(namesOf(pane.items()), Not(Contains("a.txt")));
}

TEST_F(EditingView, RenamesAfterASlowSecondClickOnTheName) {
    auto* const hints = QGuiApplication::styleHints();
    const int before = hints->mouseDoubleClickInterval();
    hints->setMouseDoubleClickInterval(50);
    view.activateWindow();
    view.setFocus();
    ASSERT_TRUE(runUntil([&] { return view.hasFocus(); }));
    const QRect name = view.namePlace(1).name;
    const QPoint at(name.left() + 10, name.center().y());
    QTest::mouseClick(view.viewport(), Qt::LeftButton, Qt::NoModifier, at);
    EXPECT_EQ(view.renameEditor(), nullptr);
    QTest::mouseClick(view.viewport(), Qt::LeftButton, Qt::NoModifier, at);
    EXPECT_TRUE(runUntil([&] { return view.renameEditor() != nullptr; }));
    hints->setMouseDoubleClickInterval(before);
}

class DropOnView : public EditingView {
protected:
    DropOnView() {
        elsewhere.file("new.txt", "abc");
        data.setData(QStringLiteral("text/uri-list"),
                     QByteArray::fromStdString(elsewhere.url("new.txt").uri() + "\r\n"));
    }
    void drag(QEvent::Type type, QPoint at, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        const Qt::DropActions actionsOffered = Qt::CopyAction | Qt::MoveAction;
        if (type == QEvent::DragEnter) {
            QDragEnterEvent event(at, actionsOffered, &data, Qt::LeftButton, modifiers);
            QApplication::sendEvent(view.viewport(), &event);
        } else if (type == QEvent::DragMove) {
            QDragMoveEvent event(at, actionsOffered, &data, Qt::LeftButton, modifiers);
            QApplication::sendEvent(view.viewport(), &event);
        } else {
            QDropEvent event(at, actionsOffered, &data, Qt::NoButton, modifiers);
            QApplication::sendEvent(view.viewport(), &event);
        }
    }

    TempTree elsewhere;
    QMimeData data;
};

TEST_F(DropOnView, SaysWhatItWouldDoAndDoesIt) {
    const QPoint folder = view.rowRect(rowNamed(pane, "Reports")).center();
    drag(QEvent::DragEnter, folder);
    EXPECT_EQ(view.drop().targetRow(), rowNamed(pane, "Reports"));
    EXPECT_TRUE(view.drop().effect().contains(QLatin1String("Reports")))
        << view.drop().effect().toStdString();
    const QString copying = view.drop().effect();
    drag(QEvent::DragMove, folder, Qt::ShiftModifier);
    EXPECT_NE(view.drop().effect(), copying) << "a move is another thing";
    drag(QEvent::DragMove, view.rowRect(rowNamed(pane, "b.txt")).center());
    EXPECT_EQ(view.drop().targetRow(), std::nullopt) << "into the folder that is shown";
    drag(QEvent::DragMove, folder);
    drag(QEvent::Drop, folder);
    EXPECT_TRUE(view.drop().effect().isEmpty());
    EXPECT_TRUE(runUntil([&] { return tree.exists("Reports/new.txt"); }));
    EXPECT_TRUE(elsewhere.exists("new.txt"));
}

TEST_F(DropOnView, OpensTheFolderItRestsOn) {
    drag(QEvent::DragEnter, view.rowRect(rowNamed(pane, "Reports")).center());
    EXPECT_TRUE(runUntil([&] { return pane.currentURL() == tree.url("Reports"); }));
    QDragLeaveEvent leave;
    QApplication::sendEvent(view.viewport(), &leave);
    EXPECT_TRUE(view.drop().effect().isEmpty());
}

} // namespace
} // namespace ombrel
