// What stands around the file view: command bar, menus, the sides, the way of the keyboard, the chip for
// jobs.
#include "services/OperationWorld.h"
#include "ui/BarButton.h"
#include "ui/CommandBar.h"
#include "ui/ContextMenu.h"
#include "ui/GlyphButton.h"
#include "ui/JobChip.h"
#include "ui/NavigationRow.h"
#include "ui/NavigationTree.h"
#include "ui/PaneSplitter.h"
#include "ui/SearchField.h"
#include "ui/StatusBar.h"
#include "ui/TabStrip.h"
#include "ui/TextLabel.h"
#include "ui/WindowActions.h"
#include "ui/WindowMenus.h"
#include "ui/WindowWorld.h"

#include <QAction>
#include <QContextMenuEvent>
#include <QMenu>
#include <QSplitterHandle>
#include <QTimer>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsSupersetOf;
using ::testing::Not;
using Side = PaneSplitter::Side;
using Kind = WindowMenus::Kind;

/// The entries from the top, a line as "-", those that cannot be chosen in brackets, without shortcuts.
std::vector<std::string> entries(const QMenu& menu) {
    std::vector<std::string> found;
    for (const QAction* action : menu.actions()) {
        if (!action->isVisible()) continue;
        const std::string text = action->text().section(QLatin1Char('\t'), 0, 0).toStdString();
        found.push_back(action->isSeparator() ? "-" : action->isEnabled() ? text : "(" + text + ")");
    }
    return found;
}

class WindowFrame : public WindowWorld {
protected:
    void bindAll(std::initializer_list<FileCommand> commands) {
        for (const FileCommand command : commands)
            window.commands().bind(command,
                                   {.perform = [this, command](BrowserModel&) { done.push_back(command); }});
        window.actions().refresh();
    }
    /// Somebody does them, but not now.
    void bindNone(std::initializer_list<FileCommand> commands) {
        for (const FileCommand command : commands)
            window.commands().bind(command, {.perform = [](BrowserModel&) {},
                                             .isEnabled = [](const BrowserModel&) { return false; }});
        window.actions().refresh();
    }
    [[nodiscard]] std::vector<std::string> menu(Kind kind) {
        QMenu filled;
        window.menus().fill(kind, filled);
        return entries(filled);
    }
    void choose(Kind kind, const char* text) {
        QMenu filled;
        window.menus().fill(kind, filled);
        for (QAction* action : filled.actions())
            if (action->text().section(QLatin1Char('\t'), 0, 0).toStdString() == text)
                return action->trigger();
        FAIL() << "no " << text;
    }
    [[nodiscard]] std::vector<std::string> contextMenu() {
        QMenu filled;
        window.contextMenu().fill(filled, window.model());
        return entries(filled);
    }
    [[nodiscard]] static std::vector<BarButton*> shownButtons(const QWidget& bar) {
        std::vector<BarButton*> shown;
        for (auto* button : bar.findChildren<BarButton*>())
            if (button->isVisibleTo(&bar)) shown.push_back(button);
        return shown;
    }

    std::vector<FileCommand> done;
};

TEST_F(WindowFrame, GivesUpLabelsAndThenGroupsWhenThereIsLittleRoom) {
    CommandBar bar(quietTheme(), window.actions(), window.menus());
    bar.show();
    std::vector<std::string> stages;
    for (int width = 900; width > 60; --width) {
        bar.resize(width, bar.sizeHint().height());
        std::string stage;
        int right = 0;
        for (auto* button : shownButtons(bar)) {
            const bool isLabelled = button->width() == button->widthWhen(BarButton::Labelled::yes);
            const QString name = button->accessibleName();
            if (isLabelled) stage += name.front().toUpper().toLatin1();
            if (name == QLatin1String("New") || name == QLatin1String("Cut") || name == QLatin1String("Sort"))
                stage += '*';
            if (button->geometry().left() < right && stages.size() < 8)
                ADD_FAILURE() << name.toStdString() << " overlaps at " << width;
            right = button->geometry().right() + 1;
        }
        if (stages.empty() || stages.back() != stage) stages.push_back(stage);
    }
    EXPECT_THAT(stages, ElementsAre("N**S*VD", "N**S*V", "N**S*", "N***", "***", "**", "*", ""));
    bindAll({FileCommand::newFolder});
    bindNone({FileCommand::cut, FileCommand::copy, FileCommand::undo});
    const auto more = menu(Kind::more);
    EXPECT_THAT(std::vector(more.begin(), more.begin() + 3), ElementsAre("New", "(Cut)", "(Copy)"));
    EXPECT_THAT(more, IsSupersetOf({"Sort", "View", "(Undo)"}));
}

TEST_F(WindowFrame, FollowsTheSelectionInItsButtons) {
    open(tree.url("Projects"));
    bindAll({FileCommand::cut, FileCommand::copy, FileCommand::rename, FileCommand::moveToTrash,
             FileCommand::newFolder});
    bindNone({FileCommand::paste});
    const auto* const bar = window.findChild<CommandBar*>();
    const auto enabled = [bar] {
        QApplication::processEvents();
        std::vector<std::string> names;
        for (const auto* button : shownButtons(*bar))
            if (button->isEnabled()) names.push_back(button->accessibleName().toStdString());
        return names;
    };
    EXPECT_THAT(enabled(), ElementsAre("New", "Sort", "View", "More", "Details"));
    select(window.model(), {"one.txt"});
    EXPECT_THAT(enabled(), ElementsAre("New", "Cut", "Copy", "Rename", "Move to trash", "Sort", "View",
                                       "More", "Details"));
    for (auto* button : shownButtons(*bar))
        if (button->accessibleName() == QLatin1String("Cut")) button->click();
    EXPECT_THAT(done, ElementsAre(FileCommand::cut));
    open(tree.url("gone"));
    EXPECT_THAT(enabled(), Not(Contains("Sort")));

    press(Qt::Key_P, Qt::AltModifier | Qt::ShiftModifier);
    EXPECT_FALSE(settings.showsDetailsPane());
    press(Qt::Key_F10);
    EXPECT_TRUE(bar->isAncestorOf(QApplication::focusWidget()));
    press(Qt::Key_Escape, Qt::NoModifier, QApplication::focusWidget());
    EXPECT_FALSE(bar->isAncestorOf(QApplication::focusWidget()));
}

TEST_F(WindowFrame, SortsAndSetsByItsMenus) {
    open(tree.url("Projects"));
    EXPECT_THAT(menu(Kind::sort), ElementsAre("Name", "Date modified", "Type", "Size", "-", "Ascending",
                                              "Descending", "-", "Folders first"));
    choose(Kind::sort, "Size");
    choose(Kind::sort, "Descending");
    choose(Kind::sort, "Folders first");
    EXPECT_EQ(window.model().sort(),
              (FileSort{.key = FileSort::Key::size, .ascending = false, .foldersFirst = false}));
    choose(Kind::view, "Hidden items");
    EXPECT_TRUE(settings.showHiddenFiles());
    EXPECT_TRUE(window.model().filter().showsHidden);
    choose(Kind::view, "Status bar");
    EXPECT_FALSE(window.statusBar().isVisible());
    bindAll({FileCommand::newFolder, FileCommand::newFile});
    window.menus().owners().fillTemplates = nullptr;
    EXPECT_THAT(menu(Kind::create), ElementsAre("Folder", "-", "Text document"));
    choose(Kind::create, "Folder");
    choose(Kind::create, "Text document");
    EXPECT_THAT(done, ElementsAre(FileCommand::newFolder, FileCommand::newFile));
}

TEST_F(WindowFrame, OffersWhatFitsTheItems) {
    open(tree.url("Projects"));
    bindAll({FileCommand::cut, FileCommand::copy, FileCommand::copyPath, FileCommand::paste,
             FileCommand::moveToTrash, FileCommand::deletePermanently, FileCommand::compress,
             FileCommand::moveIntoNewFolder, FileCommand::createShortcut, FileCommand::openInNewTab,
             FileCommand::openInNewWindow, FileCommand::openInTerminal, FileCommand::pin,
             FileCommand::showInfo, FileCommand::undo, FileCommand::redo, FileCommand::newFolder});
    bindNone({FileCommand::extract, FileCommand::dissolveFolder, FileCommand::unpin,
              FileCommand::openContainingFolder, FileCommand::quickLook});
    window.commands().bind(
        FileCommand::open,
        {.perform = [](BrowserModel&) {},
         .isEnabled = [](const BrowserModel& pane) { return pane.selection().count() == 1; }});
    window.commands().bind(
        FileCommand::rename,
        {.perform = [](BrowserModel&) {},
         .isEnabled = [](const BrowserModel& pane) { return pane.selection().count() == 1; }});
    window.contextMenu().owners() = {.fillOpenWith = [](QMenu&, BrowserModel&) {},
                                     .canPaste = [] { return true; },
                                     .pasteIntoSelected = [](BrowserModel&) {}};
    select(window.model(), {"one.txt", "two.txt"});
    EXPECT_THAT(contextMenu(),
                ElementsAre("(Open)", "Open with", "-", "Cut", "Copy", "Copy path", "-", "(Rename)",
                            "Move to trash", "Delete permanently", "-", "Compress to ZIP file",
                            "Move into new folder", "Create desktop shortcut", "-", "Properties"));
    select(window.model(), {"Reports"});
    EXPECT_THAT(contextMenu(),
                ElementsAre("Open", "Open with", "Open in new tab", "Open in new window", "Open in terminal",
                            "-", "Cut", "Copy", "Copy path", "Paste", "-", "Rename", "Move to trash",
                            "Delete permanently", "-", "Compress to ZIP file", "Move into new folder",
                            "Create desktop shortcut", "Pin to quick access", "-", "Properties"));
    select(window.model(), {});
    EXPECT_THAT(contextMenu(),
                ElementsAre("View", "Sort by", "Refresh", "-", "Paste", "Undo", "Redo", "-", "New",
                            "Open in terminal", "Select all", "-", "Pin to quick access"));
}

TEST_F(WindowFrame, OpensItsContextMenuByMouseAndKeys) {
    open(tree.url("Projects"));
    auto& view = window.view();
    const auto closeMenu = [] {
        (void)runUntil([] { return QApplication::activePopupWidget() != nullptr; });
        auto* const shown = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        std::vector<std::string> texts = shown ? entries(*shown) : std::vector<std::string>();
        if (shown) shown->close();
        QApplication::processEvents();
        return texts;
    };
    const QPoint onRow = view.rowRect(rowNamed(window.model(), "Reports")).center();
    QTest::mousePress(view.viewport(), Qt::RightButton, Qt::NoModifier, onRow);
    EXPECT_THAT(selectedNames(window.model()), ElementsAre("Reports"));
    QTest::mouseRelease(view.viewport(), Qt::RightButton, Qt::NoModifier, onRow);
    EXPECT_THAT(closeMenu(), Contains("Open"));
    press(Qt::Key_F10, Qt::ShiftModifier);
    EXPECT_THAT(closeMenu(), Contains("Open"));
    auto* const places = window.findChild<NavigationTree*>();
    ASSERT_NE(places, nullptr);
    places->setFocus();
    QTest::keyClick(places, Qt::Key_F10, Qt::ShiftModifier);
    EXPECT_THAT(closeMenu(), Contains("Open"));
    view.setFocus();
    QContextMenuEvent byMenuKey(QContextMenuEvent::Keyboard, QPoint(), QPoint());
    QApplication::sendEvent(view.viewport(), &byMenuKey);
    EXPECT_THAT(closeMenu(), Contains("Open"));
    QTest::mouseClick(view.viewport(), Qt::RightButton, Qt::NoModifier,
                      view.viewport()->rect().bottomRight());
    EXPECT_THAT(closeMenu(), Contains("Refresh"));
    EXPECT_TRUE(window.model().selection().empty());
}

TEST_F(WindowFrame, KeepsTheSelectionBrightWhileMenusActOnIt) {
    open(tree.url("Projects"));
    auto& view = window.view();
    view.setFocus();
    press(Qt::Key_Home);
    const auto ground = [&] {
        const QRect row = view.rowRect(0).intersected(view.viewport()->rect());
        const QPoint inRow(row.right() - 8, row.top() + 4);
        return view.viewport()->grab().toImage().pixelColor(inRow);
    };
    const QColor bright = quietTheme().color(ThemeColor::selection);
    ASSERT_EQ(ground(), bright);
    const auto walkMenu = [&] {
        ASSERT_TRUE(runUntil([] { return QApplication::activePopupWidget() != nullptr; }));
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Down);
        EXPECT_FALSE(view.hasFocus());
        EXPECT_EQ(ground(), bright);
        QApplication::activePopupWidget()->close();
        window.activateWindow(); // as a desktop does
        QApplication::processEvents();
        EXPECT_EQ(ground(), bright);
    };
    press(Qt::Key_F10, Qt::ShiftModifier);
    walkMenu();
    press(Qt::Key_F10);
    ASSERT_TRUE(qobject_cast<BarButton*>(QApplication::focusWidget()));
    QTimer::singleShot(0, &window, walkMenu);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
    // What is no menu has a matter of its own.
    press(Qt::Key_F6, Qt::ShiftModifier);
    EXPECT_EQ(ground(), quietTheme().color(ThemeColor::selectionInactive));
}

TEST_F(WindowFrame, LetsWhatSaysLeastLeaveTheStatusBarFirst) {
    open(tree.url("Projects"));
    auto& bar = window.statusBar();
    const auto shown = [&](int width) {
        window.resize(width, 500);
        QApplication::processEvents();
        std::vector<std::string> texts;
        int end = 0;
        for (const auto* label : bar.findChildren<ElidedLabel*>()) {
            if (!label->isVisible()) continue;
            EXPECT_GE(label->x(), end);
            end = label->geometry().right() + 1;
            texts.push_back(label->text().toStdString());
            EXPECT_TRUE(label->width() >= label->sizeHint().width() || texts.size() == 1) << width;
        }
        return texts;
    };
    window.model().setRow(BrowserModel::Place::current, 1);
    press(Qt::Key_End);
    window.setMinimumWidth(0);
    const std::string selected = bar.parts().back().toStdString();
    EXPECT_THAT(shown(900), ElementsAre("3 items", selected));
    EXPECT_THAT(shown(260), ElementsAre(selected));
    EXPECT_THAT(shown(150), ElementsAre(selected));
    EXPECT_THAT(shown(900), ElementsAre("3 items", selected));
}

TEST_F(WindowFrame, GivesTheSidesTheirPlaces) {
    open(tree.url("Projects"));
    auto& splitter = window.splitter();
    if (!splitter.isShown(Side::tree)) splitter.put(Side::tree, new QWidget);
    if (!splitter.isShown(Side::details)) splitter.put(Side::details, new QWidget);
    const auto shown = [&](int width) {
        window.resize(width, 600);
        QApplication::processEvents();
        return std::pair(splitter.isShown(Side::tree), splitter.isShown(Side::details));
    };
    EXPECT_EQ(shown(1200), std::pair(true, true));
    EXPECT_EQ(splitter.sizes().front(), 232);
    EXPECT_EQ(splitter.sizes().back(), 284);
    EXPECT_EQ(shown(899), std::pair(true, false));
    EXPECT_EQ(shown(719), std::pair(false, false));
    EXPECT_EQ(shown(1200), std::pair(true, true));
    settings.setShowsDetailsPane(false);
    EXPECT_EQ(shown(1200), std::pair(true, false));
    settings.setShowsDetailsPane(true);
    window.model().navigateHome();
    EXPECT_EQ(shown(1200), std::pair(true, false));
    window.model().goBack();

    const auto dragTo = [&](int x) {
        QSplitterHandle* const handle = splitter.handle(1);
        QTest::mousePress(handle, Qt::LeftButton, Qt::NoModifier, handle->rect().center());
        const QPoint global = splitter.mapToGlobal(QPoint(x, 50));
        QMouseEvent move(QEvent::MouseMove, handle->mapFromGlobal(global), global, Qt::NoButton,
                         Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(handle, &move);
        QTest::mouseRelease(handle, Qt::LeftButton);
        QApplication::processEvents();
        return splitter.width(Side::tree);
    };
    EXPECT_EQ(dragTo(300), 300);
    EXPECT_EQ(dragTo(130), 160);
    EXPECT_EQ(dragTo(110), 0);
    EXPECT_EQ(dragTo(200), 200);
    WindowState state = window.state();
    EXPECT_EQ(state.width, 1200);
    EXPECT_EQ(state.treeWidth, 200);
    state.treeWidth = 0;
    state.detailsWidth = 5000;
    window.setState(state);
    EXPECT_EQ(window.state().treeWidth, 0);
    EXPECT_EQ(window.state().detailsWidth, 480);
}

TEST_F(WindowFrame, LeadsTheKeyboardAroundByF6) {
    open(tree.url("Projects"));
    window.view().setFocus();
    std::vector<QWidget*> stops;
    const auto stopOf = [&](QWidget* widget) {
        while (widget->parentWidget() != &window && widget->parentWidget() != &window.splitter())
            widget = widget->parentWidget();
        return widget;
    };
    do {
        ASSERT_LT(stops.size(), 12U);
        stops.push_back(stopOf(QApplication::focusWidget()));
        press(Qt::Key_F6, Qt::NoModifier, QApplication::focusWidget());
    } while (!window.view().hasFocus());
    auto* const row = static_cast<QWidget*>(window.findChild<NavigationRow*>());
    auto* const bar = static_cast<QWidget*>(window.findChild<CommandBar*>());
    const auto address = std::ranges::find(stops, row);
    ASSERT_GT(stops.end() - address, 2);
    EXPECT_THAT(std::vector(address, address + 3), ElementsAre(row, row, bar)) << "address, search, commands";
    press(Qt::Key_F6, Qt::ShiftModifier, QApplication::focusWidget());
    EXPECT_EQ(stopOf(QApplication::focusWidget()), stops.back());

    // The buttons beside the address belong to it.
    auto* const refresh = row->findChildren<GlyphButton*>(QString(), Qt::FindDirectChildrenOnly).constLast();
    refresh->setFocus();
    press(Qt::Key_F6, Qt::NoModifier, refresh);
    EXPECT_TRUE(row->findChild<SearchField*>()->isAncestorOf(QApplication::focusWidget()));
    refresh->setFocus();
    press(Qt::Key_F6, Qt::ShiftModifier, refresh);
    EXPECT_EQ(QApplication::focusWidget(), window.findChild<TabStrip*>());
}

TEST_F(WindowFrame, LeadsTabThroughTheAddressAsItIsSeen) {
    for (const auto* folder : {"Projects/Reports", "Projects"}) {
        open(tree.url(folder));
        auto* const row = window.findChild<NavigationRow*>();
        auto* const up = row->findChildren<GlyphButton*>(QString(), Qt::FindDirectChildrenOnly).at(2);
        up->setFocus();
        std::vector<int> places;
        std::vector<std::string> names;
        for (QWidget* at = up; row->isAncestorOf(at); at = QApplication::focusWidget()) {
            ASSERT_LT(places.size(), 12U);
            places.push_back(at->mapTo(row, QPoint()).x());
            if (const auto* button = qobject_cast<QAbstractButton*>(at))
                names.push_back(button->accessibleName().toStdString());
            press(Qt::Key_Tab, Qt::NoModifier, at);
        }
        EXPECT_TRUE(std::ranges::is_sorted(places)) << ::testing::PrintToString(places);
        EXPECT_THAT(names,
                    ElementsAre("Up", "Refresh", std::string(tree.url(folder).name()), "Recent addresses"));
        EXPECT_EQ(places.size(), names.size() + 1) << "and the search";
    }
}

TEST_F(WindowFrame, TellsOfJobsInAChip) {
    Holdup holdup;
    auto* const chip = window.findChild<JobChip*>();
    services->center().run(holdup.plan(tree.url("Projects")));
    services->center().run(holdup.plan(tree.url("Projects")));
    EXPECT_TRUE(chip->isHidden()) << "it may be over in no time";
    ASSERT_TRUE(runUntil([&] { return chip->isVisible(); }));
    EXPECT_EQ(chip->text().toStdString(), "2 jobs, 0%");
    settings.setShowStatusBar(false);
    EXPECT_EQ(chip->parentWidget(), window.findChild<CommandBar*>());
    EXPECT_TRUE(chip->isVisible());
    settings.setShowStatusBar(true);
    EXPECT_EQ(chip->parentWidget(), &window.statusBar());
    holdup.end();
    EXPECT_TRUE(runUntil([&] { return chip->isHidden(); }));
    EXPECT_TRUE(runUntilQuiet());
}

} // namespace
} // namespace ombrel
