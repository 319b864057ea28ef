
#include "ui/BrowserWindow.h"

#include "base/IsolatedName.h"
#include "listing/SystemCall.h"
#include "support/FailingCalls.h"
#include "ui/GlyphButton.h"
#include "ui/Overlay.h"
#include "ui/StatusBar.h"
#include "ui/TextLabel.h"
#include "ui/WindowActions.h"
#include "ui/WindowWorld.h"

#include <QAction>
#include <QApplication>
#include <QDragEnterEvent>
#include <QHelpEvent>
#include <QInputMethodEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QScrollBar>
#include <QToolTip>
#include <QUrl>

#include <algorithm>
#include <cerrno>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::Contains;
using ::testing::ElementsAre;

class Window : public WindowWorld {
protected:
    [[nodiscard]] std::vector<std::string> status() const {
        std::vector<std::string> parts;
        for (const QString& part : window.statusBar().parts())
            parts.push_back(part.toStdString());
        return parts;
    }
    [[nodiscard]] std::vector<std::string> buttons() const {
        std::vector<std::string> texts;
        for (const auto* button : window.overlay().findChildren<QPushButton*>())
            texts.push_back(button->text().toStdString());
        return texts;
    }
    [[nodiscard]] std::string toolTip(const QString& name) const {
        QApplication::processEvents();
        for (const auto* button : window.findChildren<GlyphButton*>())
            if (button->accessibleName() == name) return button->toolTip().toStdString();
        return "no button";
    }
};

TEST_F(Window, IsNamedAfterItsFolderAndCountsItsItems) {
    open(tree.url("Projects"));
    EXPECT_EQ(window.windowTitle().toStdString(), "Projects");
    EXPECT_THAT(status(), ElementsAre("3 items"));
    select(window.model(), {"one.txt", "two.txt"});
    EXPECT_THAT(status(), ElementsAre("3 items", "2 items selected, 15 bytes"));
    select(window.model(), {"Reports"});
    EXPECT_THAT(status(), ElementsAre("3 items", "1 item selected"));
    EXPECT_TRUE(window.overlay().isHidden());
    window.model().navigate(FileURL());
    EXPECT_EQ(window.windowTitle().toStdString(), "/");
}

TEST_F(Window, EntersFoldersAndFindsBack) {
    open(tree.url("Projects"));
    auto& view = window.view();
    Q_EMIT view.openRequested(rowNamed(window.model(), "one.txt"));
    EXPECT_EQ(window.windowTitle().toStdString(), "Projects");
    Q_EMIT view.openRequested(rowNamed(window.model(), "Reports"));
    EXPECT_EQ(window.windowTitle().toStdString(), "Reports");
    press(Qt::Key_Backspace);
    EXPECT_EQ(window.windowTitle().toStdString(), "Projects");
    ASSERT_TRUE(runUntilLoaded(window.model()));
    EXPECT_THAT(selectedNames(window.model()), ElementsAre("Reports"));
    press(Qt::Key_Right, Qt::AltModifier);
    EXPECT_EQ(window.windowTitle().toStdString(), "Reports");
    press(Qt::Key_Up, Qt::AltModifier);
    press(Qt::Key_Up, Qt::AltModifier);
    EXPECT_EQ(window.model().currentURL(), tree.url());
    QTest::mouseClick(view.viewport(), Qt::BackButton);
    EXPECT_EQ(window.windowTitle().toStdString(), "Projects");
    QTest::mouseClick(view.viewport(), Qt::ForwardButton);
    EXPECT_EQ(window.model().currentURL(), tree.url());
}

TEST_F(Window, ShowsTheActiveTabAndClosesWithTheLast) {
    open(tree.url("Projects"));
    select(window.model(), {"one.txt"});
    press(Qt::Key_T, Qt::ControlModifier);
    EXPECT_EQ(window.tabs().count(), 2U);
    EXPECT_TRUE(window.model().selection().empty());
    open(tree.url("Projects/Reports"));
    EXPECT_EQ(title(), "Reports");
    EXPECT_THAT(status(), ElementsAre("0 items"));
    EXPECT_TRUE(window.view().isVisible());
    press(Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_EQ(title(), "Projects");
    EXPECT_THAT(status(), ElementsAre("3 items", "1 item selected, 5 bytes"));
    EXPECT_TRUE(window.view().hasFocus());
    QApplication::processEvents();
    EXPECT_TRUE(window.actions().of(FileCommand::open)->isEnabled());

    press(Qt::Key_1, Qt::ControlModifier);
    press(Qt::Key_W, Qt::ControlModifier);
    QApplication::processEvents();
    EXPECT_EQ(title(), "Reports");
    EXPECT_TRUE(window.view().hasFocus());
    EXPECT_FALSE(window.actions().of(FileCommand::open)->isEnabled());
    window.tabs().activeTab().requestCloseTab();
    EXPECT_FALSE(window.isVisible());
}

// ---- Keys

TEST_F(Window, FollowsThePresetOfTheSettings) {
    open(tree.url("Projects"));
    select(window.model(), {"Reports"});
    EXPECT_EQ(toolTip(QStringLiteral("Up")),
              "Up to “\u2068" + std::string(tree.url().name()) + "\u2069” (Alt+↑)");
    EXPECT_EQ(toolTip(QStringLiteral("Refresh")), "Refresh (F5)");
    EXPECT_EQ(toolTip(QStringLiteral("Back")), "Back");
    press(Qt::Key_Down, Qt::ControlModifier);
    EXPECT_EQ(title(), "Projects");
    press(Qt::Key_Home);
    press(Qt::Key_Return);
    EXPECT_EQ(title(), "Reports");
    press(Qt::Key_Backspace);
    ASSERT_TRUE(runUntilLoaded(window.model()));

    settings.setKeyPreset(KeyPreset::mac);
    EXPECT_EQ(toolTip(QStringLiteral("Up")),
              "Up to “\u2068" + std::string(tree.url().name()) + "\u2069” (Ctrl+↑)");
    EXPECT_EQ(toolTip(QStringLiteral("Refresh")), "Refresh");
    press(Qt::Key_Return);
    press(Qt::Key_Backspace);
    EXPECT_EQ(title(), "Projects");
    press(Qt::Key_Down, Qt::ControlModifier);
    EXPECT_EQ(title(), "Reports");
    press(Qt::Key_BracketLeft, Qt::MetaModifier);
    EXPECT_EQ(title(), "Projects");
    ASSERT_TRUE(runUntilLoaded(window.model()));
    press(Qt::Key_A, Qt::ControlModifier);
    EXPECT_TRUE(window.model().selection().isEverything());
    ASSERT_TRUE(runUntilQuiet());
}

TEST_F(Window, TakesItsKeysWhereverTheFocusIsExceptWhereTextIsEdited) {
    open(tree.url("Projects"));
    open(tree.url("Projects/Reports"));
    auto* const button = window.findChild<GlyphButton*>();
    button->setFocus();
    press(Qt::Key_Backspace, Qt::NoModifier, button);
    EXPECT_EQ(title(), "Projects");
    press(Qt::Key_Delete, Qt::NoModifier, button);

    QLineEdit field(&window);
    field.show();
    field.setText(QStringLiteral("text"));
    field.setFocus();
    press(Qt::Key_Backspace, Qt::NoModifier, &field);
    EXPECT_EQ(field.text().toStdString(), "tex");
    press(Qt::Key_F5, Qt::NoModifier, &field);
    press(Qt::Key_Right, Qt::AltModifier, &field);
    EXPECT_EQ(title(), "Projects") << "the field does not want it, and nobody else may have it";
    window.view().setFocus();
    press(Qt::Key_Right, Qt::AltModifier);
    EXPECT_EQ(title(), "Reports");

    button->setFocus();
    QInputMethodEvent composing(QStringLiteral("あ"), {});
    QApplication::sendEvent(button, &composing);
    press(Qt::Key_Backspace, Qt::NoModifier, button);
    EXPECT_EQ(title(), "Reports");
    QInputMethodEvent composed(QString(), {});
    QApplication::sendEvent(button, &composed);
    press(Qt::Key_Backspace, Qt::NoModifier, button);
    EXPECT_EQ(title(), "Projects");
    QWidget dialog(&window, Qt::Dialog);
    press(Qt::Key_Right, Qt::AltModifier, &dialog);
    EXPECT_EQ(title(), "Projects");
}

TEST_F(Window, GivesCommandsThatAreBoundToItAndRepeatsNoneThatChangesThings) {
    open(tree.url("Projects"));
    int windows = 0, folders = 0;
    window.commands().bind(FileCommand::newWindow, {.perform = [&](BrowserModel&) { ++windows; }});
    window.commands().bind(FileCommand::newFolder, {.perform = [&](BrowserModel&) { ++folders; }});
    press(Qt::Key_N, Qt::ControlModifier);
    press(Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier);
    for (int i = 0; i < 3; ++i) {
        QKeyEvent held(QEvent::KeyPress, Qt::Key_N, Qt::ControlModifier, QString(), true);
        QApplication::sendEvent(&window.view(), &held);
        EXPECT_TRUE(held.isAccepted());
    }
    EXPECT_EQ(windows, 1);
    EXPECT_EQ(folders, 1);
    press(Qt::Key_W, Qt::ControlModifier);
    EXPECT_FALSE(window.isVisible());
}

TEST_F(Window, SaysWhyAFolderIsNotShownAndWhatToDo) {
    const auto& overlay = window.overlay();
    open(tree.url("gone"));
    EXPECT_EQ(overlay.title().toStdString(), "This folder can’t be shown");
    EXPECT_EQ(overlay.message().toStdString(), "This folder does not exist.");
    EXPECT_THAT(buttons(), ElementsAre("Try again", "Go to the folder above"));
    EXPECT_THAT(status(), ElementsAre("Can’t show this folder"));
    tree.folder("gone");
    QTest::mouseClick(overlay.findChildren<QPushButton*>().constFirst(), Qt::LeftButton);
    ASSERT_TRUE(runUntilLoaded(window.model()));
    EXPECT_EQ(overlay.title().toStdString(), "This folder is empty");
    EXPECT_THAT(status(), ElementsAre("0 items"));

    open(tree.url("Projects/one.txt"));
    EXPECT_EQ(overlay.message().toStdString(), "This is not a folder.");
    open(tree.url("Projects"));
    EXPECT_TRUE(overlay.isHidden());
}

TEST_F(Window, InvitesADropIntoAnEmptyFolder) {
    open(tree.url("Projects/Reports"));
    const QPoint inTheMiddle = window.view().viewport()->rect().center();
    const auto drag = [&](const char* folder) {
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(QString::fromStdString(tree.path(folder)))});
        QDragEnterEvent enter(inTheMiddle, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(window.view().viewport(), &enter);
    };
    const int height = window.overlay().findChildren<QLabel*>().constFirst()->y();
    drag("Projects/one.txt");
    QApplication::processEvents();
    EXPECT_EQ(window.overlay().message().toStdString(), "Drop items here");
    EXPECT_THAT(status(), ElementsAre("Copy to " + isolated("Reports")));
    EXPECT_EQ(window.overlay().findChildren<QLabel*>().constFirst()->y(), height) << "nothing moves";
    QDragLeaveEvent leave;
    QApplication::sendEvent(window.view().viewport(), &leave);
    EXPECT_TRUE(window.overlay().message().isEmpty());
    EXPECT_THAT(status(), ElementsAre("0 items"));
    drag("Projects");
    EXPECT_TRUE(window.overlay().message().isEmpty()) << "into itself";
}

TEST_F(Window, KnowsRefusalsApart) {
    const auto overlayUnder = [&](int errorNumber) {
        {
            const FailingCalls refusing(SystemCall::Kind::openDirectory, errorNumber);
            open(tree.url("Projects"));
            EXPECT_TRUE(runUntilQuiet());
        }
        return window.overlay().title().toStdString() + " | " + window.overlay().message().toStdString();
    };
    EXPECT_EQ(overlayUnder(EACCES),
              "Ombrel can’t open this folder yet | You don’t have permission to see what is in "
              "“\u2068Projects\u2069”. Allow access to this folder, or ask its owner to share it with "
              "you.");
    EXPECT_THAT(buttons(), ElementsAre("Allow access…", "Try again"));
    // The longest of them needs two lines and gets them.
    for (const auto* label : window.overlay().findChildren<QLabel*>())
        EXPECT_GE(label->height(), label->heightForWidth(label->width()));
    EXPECT_EQ(overlayUnder(ENXIO),
              "This volume is not connected | Connect it again and the folder will come back.");
    EXPECT_THAT(buttons(), ElementsAre("Try again", "Go to Home"));
    EXPECT_THAT(overlayUnder(EMFILE), ::testing::HasSubstr("The folder could not be read: "));
}

TEST_F(Window, LeavesASearchThatFoundNothing) {
    open(tree.url("Projects"));
    window.model().search("one");
    ASSERT_TRUE(runUntilLoaded(window.model()));
    EXPECT_TRUE(window.overlay().isHidden());
    window.model().search("nothing like it");
    ASSERT_TRUE(runUntil([&] { return window.overlay().isVisible(); }));
    EXPECT_EQ(window.overlay().title().toStdString(), "No items match “\u2068nothing like it\u2069”");
    EXPECT_THAT(buttons(), ElementsAre("Clear search"));
    EXPECT_FALSE(window.view().horizontalScrollBar()->isVisible());
    QTest::mouseClick(window.overlay().findChildren<QPushButton*>().constLast(), Qt::LeftButton);
    ASSERT_TRUE(runUntilLoaded(window.model()));
    EXPECT_THAT(status(), ElementsAre("3 items"));
    EXPECT_TRUE(window.overlay().isHidden());
}

TEST_F(Window, OpensFoldersBehindByAMiddleClick) {
    open(tree.url("Projects"));
    const auto clickOn = [this](std::size_t row) {
        QTest::mouseClick(window.view().viewport(), Qt::MiddleButton, Qt::NoModifier,
                          window.view().rowRect(row).center());
    };
    ASSERT_EQ(window.model().items()[0].name(), "Reports");
    clickOn(1);
    EXPECT_EQ(window.tabs().count(), 1U) << "a file is no folder";
    clickOn(0);
    ASSERT_EQ(window.tabs().count(), 2U);
    EXPECT_EQ(window.tabs().selectedIndex(), 0U);
    EXPECT_EQ(window.tabs().tab(1).currentURL()->path(), tree.url("Projects/Reports").path());
}

TEST_F(Window, TellsOfEntriesThatCouldNotBeRead) {
    // Some look is at an entry; the watch over the folder takes a look too.
    for (int call = 1; call < 12; ++call) {
        const FailingCalls failing(SystemCall::Kind::status, EIO, call, 1);
        open(tree.url("Projects"));
        ASSERT_TRUE(runUntilQuiet());
        if (window.model().unreadableCount() == 1) break;
    }
    EXPECT_THAT(status(), Contains("1 item could not be read"));
    const auto& items = window.model().items();
    std::size_t row = 0;
    while (!items[row].readError())
        ++row;
    EXPECT_TRUE(window.view().facts(row).date.isEmpty());
    EXPECT_EQ(window.view().facts(row).badge, IconBadge::lock);
    EXPECT_THAT(window.view().spokenText(row).toStdString(), ::testing::HasSubstr(", Input/output error"));

    const auto labels = window.statusBar().findChildren<ElidedLabel*>();
    const auto label =
        std::ranges::find(labels, QStringLiteral("1 item could not be read"), &ElidedLabel::text);
    ASSERT_NE(label, labels.end());
    QHelpEvent help(QEvent::ToolTip, {1, 1}, (*label)->mapToGlobal(QPoint(1, 1)));
    QApplication::sendEvent(*label, &help);
    EXPECT_EQ((*label)->toolTip().toStdString(),
              "\u2068" + std::string(items[row].name()) + "\u2069 – Input/output error");
}

TEST_F(Window, ShowsNamesThatLookLikeMarkupAsTheyStandInTooltips) {
    QToolTip::showText({100, 100}, QStringLiteral("<b>bold</b>"), &window);
    const auto all = QApplication::allWidgets();
    const auto tip = std::ranges::find_if(all, [](QWidget* widget) { return widget->inherits("QTipLabel"); });
    ASSERT_NE(tip, all.end());
    const auto* const label = static_cast<QLabel*>(*tip);
    EXPECT_EQ(label->textFormat(), Qt::PlainText);
    EXPECT_GE(label->width(), label->fontMetrics().horizontalAdvance(QStringLiteral("<b>bold</b>")));
    QToolTip::hideText();
}

} // namespace
} // namespace ombrel
