#include "ui/TabStrip.h"

#include "base/IsolatedName.h"
#include "browser/BrowserTabsModel.h"
#include "browser/FileActions.h"
#include "browser/ServicesWorld.h"
#include "services/AppSettings.h"
#include "ui/FolderDrop.h"
#include "ui/GlyphButton.h"
#include "ui/ViewWorld.h"

#include <QAccessible>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QMenu>
#include <QMimeData>
#include <QUrl>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using enum BrowserTabsModel::Activation;

class Strip : public ::testing::Test {
protected:
    Strip()
        : settings(SettingsFile(tree.url("settings.json")), std::nullopt),
          tabs([] { return std::make_unique<BrowserModel>(realListings()); }, folder("A")),
          strip(tabs, quietTheme(), settings) {
        strip.resize(900, strip.sizeHint().height());
        strip.show();
    }
    FileURL folder(std::string_view name) {
        if (!tree.exists(name)) tree.folder(name);
        return tree.url(name);
    }
    void openUpTo(std::string_view last) {
        for (std::string name = "B"; name <= last; ++name.front())
            tabs.addTab(folder(name), activate);
    }
    [[nodiscard]] std::string order() const {
        std::string names;
        for (std::size_t i = 0; i < tabs.count(); ++i) {
            const auto name = strip.titleOf(i).toStdString();
            names += i == tabs.selectedIndex() ? "[" + name + "]" : name;
        }
        return names;
    }
    [[nodiscard]] QPoint on(std::size_t tab) const { return strip.tabRect(tab).center(); }
    void click(QPoint at, Qt::MouseButton button = Qt::LeftButton) {
        QTest::mouseClick(&strip, button, Qt::NoModifier, at);
    }
    void dragTab(std::size_t tab, QPoint to) {
        QTest::mousePress(&strip, Qt::LeftButton, Qt::NoModifier, on(tab));
        for (const QPoint at : {(on(tab) + to) / 2, to}) {
            QMouseEvent move(QEvent::MouseMove, at, strip.mapToGlobal(at), Qt::NoButton, Qt::LeftButton,
                             Qt::NoModifier);
            QApplication::sendEvent(&strip, &move);
        }
    }
    void drop(QPoint to) { QTest::mouseRelease(&strip, Qt::LeftButton, Qt::NoModifier, to); }
    void key(Qt::Key key) { QTest::keyClick(&strip, key); }
    [[nodiscard]] QMenu* menuAt(std::size_t tab) {
        QContextMenuEvent event(QContextMenuEvent::Mouse, on(tab), strip.mapToGlobal(on(tab)));
        QApplication::sendEvent(&strip, &event);
        return strip.findChildren<QMenu*>().constLast();
    }
    void choose(std::size_t tab, const QString& text) {
        QMenu* const menu = menuAt(tab);
        for (QAction* action : menu->actions())
            if (action->text() == text && action->isEnabled()) action->trigger();
        delete menu;
    }

    TempTree tree;
    AppSettings settings;
    BrowserTabsModel tabs;
    TabStrip strip;
};

TEST_F(Strip, ShowsTabsAsWideAsThereIsRoomAndScrollsBeyond) {
    EXPECT_EQ(strip.tabRect(0), QRect(8, 6, 216, 34));
    openUpTo("C");
    EXPECT_EQ(order(), "AB[C]");
    EXPECT_EQ(strip.tabRect(1), QRect(226, 6, 216, 34));
    openUpTo("D"); // A B C B C D
    EXPECT_LT(strip.tabRect(0).width(), 140);
    EXPECT_TRUE(strip.closeRect(0).isEmpty());
    EXPECT_FALSE(strip.closeRect(tabs.selectedIndex()).isEmpty());
    for (int i = 0; i < 24; ++i)
        tabs.addTab(std::nullopt, activate);
    ASSERT_EQ(tabs.count(), 30U);
    EXPECT_EQ(strip.tabRect(tabs.selectedIndex()).width(), 120);
    EXPECT_TRUE(strip.tabRect(0).isEmpty());
    tabs.select(0);
    EXPECT_EQ(strip.tabRect(0).width(), 120);
    strip.resize(4000, strip.height());
    EXPECT_FALSE(strip.tabRect(29).isEmpty());
}

TEST_F(Strip, IsClickedInAllItsParts) {
    openUpTo("C");
    click(on(0));
    EXPECT_EQ(order(), "[A]BC");
    click(on(1), Qt::MiddleButton);
    EXPECT_EQ(order(), "[A]C");
    const int width = strip.tabRect(0).width();
    click(strip.closeRect(0).center());
    EXPECT_EQ(order(), "[C]");
    EXPECT_EQ(strip.tabRect(0).width(), width);
    const QPoint empty(strip.width() - 20, 20);
    QTest::mouseDClick(&strip, Qt::LeftButton, Qt::NoModifier, empty);
    EXPECT_EQ(order(), "C[Home]");
    bool isLastClosed = false;
    tabs.onLastTabClosed = [&] { isLastClosed = true; };
    tabs.closeTab(0);
    click(on(0), Qt::MiddleButton);
    EXPECT_TRUE(isLastClosed);
}

TEST_F(Strip, TakesTheNextCloseButtonUnderThePointer) {
    openUpTo("E");
    const QPoint button = strip.closeRect(0).center();
    const int width = strip.tabRect(0).width();
    ASSERT_LT(width, 216);
    click(button);
    EXPECT_EQ(strip.tabRect(0).width(), width);
    click(button);
    EXPECT_EQ(order(), "CD[E]");
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&strip, &leave);
    EXPECT_GT(strip.tabRect(0).width(), width);
}

TEST_F(Strip, IsReorderedByDragging) {
    openUpTo("D");
    dragTab(0, strip.tabRect(2).center() + QPoint(20, 0));
    drop(strip.tabRect(2).center() + QPoint(20, 0));
    EXPECT_EQ(order(), "BCA[D]");
    dragTab(3, QPoint(2, 20));
    drop(QPoint(2, 20));
    EXPECT_EQ(order(), "[D]BCA");
    dragTab(0, QPoint(880, 20));
    strip.setFocus();
    key(Qt::Key_Escape);
    drop(QPoint(880, 20));
    EXPECT_EQ(order(), "[D]BCA");
}

TEST_F(Strip, IsUsedByKeyboard) {
    openUpTo("D");
    strip.activateWindow();
    strip.setFocus(Qt::TabFocusReason);
    ASSERT_TRUE(runUntil([&] { return strip.hasFocus(); }));
    EXPECT_EQ(strip.focusedTab(), 3U);
    key(Qt::Key_Left);
    key(Qt::Key_Left);
    EXPECT_EQ(order(), "ABC[D]");
    key(Qt::Key_Return);
    EXPECT_EQ(order(), "A[B]CD");
    key(Qt::Key_Delete);
    EXPECT_EQ(order(), "A[C]D");
    key(Qt::Key_End);
    key(Qt::Key_Right);
    EXPECT_EQ(strip.focusedTab(), 2U);
    tabs.moveTab(2, 0);
    EXPECT_EQ(strip.focusedTab(), 0U);
}

TEST_F(Strip, OffersWhatCanBeDoneWithATab) {
    openUpTo("D");
    choose(1, QStringLiteral("Duplicate tab"));
    EXPECT_EQ(order(), "AB[B]CD");
    std::optional<FileURL> copied;
    QObject::connect(&strip, &TabStrip::copyPathRequested, [&](const FileURL& url) { copied = url; });
    choose(3, QStringLiteral("Copy path"));
    EXPECT_EQ(copied, folder("C"));
    choose(2, QStringLiteral("Close tabs to the right"));
    EXPECT_EQ(order(), "AB[B]");
    choose(2, QStringLiteral("Close tabs to the right"));
    choose(0, QStringLiteral("Close other tabs"));
    EXPECT_EQ(order(), "[A]");
}

TEST_F(Strip, IsWholeWhileTabsComeAndGo) {
    const Theme moving{Appearance{}};
    TabStrip other(tabs, moving, settings);
    other.resize(900, other.sizeHint().height());
    other.show();
    tabs.addTab(folder("B"), activate);
    EXPECT_EQ(other.tabRect(1).width(), 0);
    static_cast<void>(other.grab());
    EXPECT_TRUE(runUntil([&] { return other.tabRect(1).width() == 216; }));
    tabs.closeTab(0);
    EXPECT_EQ(other.tabAt(other.tabRect(0).center()), 0U);
    static_cast<void>(other.grab());
    EXPECT_TRUE(runUntil([&] { return other.tabRect(0).left() == 8; }));
}

class DragOverStrip : public Strip {
protected:
    DragOverStrip() {
        data.setUrls({QUrl::fromLocalFile(QString::fromStdString(folder("A").path()))});
        strip.setDrops(drops);
    }
    Qt::DropAction moveTo(QPoint at) {
        QDragEnterEvent enter(at, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&strip, &enter);
        EXPECT_TRUE(enter.isAccepted());
        QDragMoveEvent event(at, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&strip, &event);
        return event.isAccepted() ? event.dropAction() : Qt::IgnoreAction;
    }
    void dropAt(QPoint at) {
        QDropEvent event(at, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&strip, &event);
    }
    ServicesWorld services;
    FileActions actions{*services.services};
    FolderDrop drops{actions, quietTheme(), [this]() -> BrowserModel& { return tabs.activeTab(); }};
    QMimeData data;
};

TEST_F(DragOverStrip, OpensFoldersThatAreDroppedBesideTheTabs) {
    std::vector<FileURL> opened;
    QObject::connect(&strip, &TabStrip::openFoldersRequested,
                     [&](const std::vector<FileURL>& items) { opened = items; });
    EXPECT_EQ(moveTo({880, 20}), Qt::CopyAction);
    dropAt({880, 20});
    EXPECT_THAT(opened, ElementsAre(folder("A")));
}

TEST_F(DragOverStrip, SpringsATabOpenAndDropsIntoItsFolder) {
    openUpTo("C");
    EXPECT_EQ(moveTo(on(0)), Qt::IgnoreAction);
    EXPECT_TRUE(runUntil([&] { return tabs.selectedIndex() == 0; }));
    EXPECT_EQ(moveTo(on(1)), Qt::CopyAction);
    EXPECT_EQ(drops.effect().toStdString(), "Copy to " + isolated("B"));
    dropAt(on(1));
    EXPECT_TRUE(runUntil([&] { return tree.exists("B/A"); }));
}

TEST_F(Strip, IsAListOfPageTabsToAssistivePrograms) {
    openUpTo("C");
    QAccessibleInterface* const list = QAccessible::queryAccessibleInterface(&strip);
    ASSERT_EQ(list->role(), QAccessible::PageTabList);
    ASSERT_GE(list->childCount(), 4);
    EXPECT_EQ(list->child(1)->role(), QAccessible::PageTab);
    EXPECT_EQ(list->child(1)->text(QAccessible::Name).toStdString(), "B");
    EXPECT_TRUE(list->child(2)->state().selected);
    list->child(0)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(order(), "[A]BC");
    bool hasNewTab = false;
    for (int i = 3; i < list->childCount(); ++i)
        hasNewTab |= list->child(i)->text(QAccessible::Name) == QStringLiteral("New tab");
    EXPECT_TRUE(hasNewTab);
}

} // namespace
} // namespace ombrel
