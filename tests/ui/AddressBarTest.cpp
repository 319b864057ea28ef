#include "ui/AddressBar.h"

#include "base/IsolatedName.h"
#include "services/AppServices.h"
#include "ui/AddressError.h"
#include "ui/AddressField.h"
#include "ui/CrumbBar.h"
#include "ui/FolderList.h"
#include "ui/GlyphButton.h"
#include "ui/StatusBar.h"
#include "ui/WindowWorld.h"

#include <QAccessible>
#include <QDragEnterEvent>
#include <QListView>
#include <QMenu>
#include <QMimeData>
#include <QScrollBar>
#include <QUrl>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::ElementsAre;

class Address : public WindowWorld {
protected:
    Address() : bar(*window.findChild<AddressBar*>()), crumbs(bar.crumbBar()), field(bar.field()) {
        window.activateWindow();
        runUntil([this] { return window.isActiveWindow(); });
    }
    [[nodiscard]] QAbstractButton* button(const QString& name) const {
        for (auto* candidate : crumbs.findChildren<QAbstractButton*>())
            if (candidate->accessibleName() == name && candidate->isVisible()) return candidate;
        return nullptr;
    }
    /// The crumbs that are seen.
    [[nodiscard]] std::string shown() const {
        std::vector<std::pair<int, std::string>> found;
        for (auto* candidate : crumbs.findChildren<QAbstractButton*>())
            if (!candidate->text().isEmpty() && candidate->isVisible())
                found.emplace_back(candidate->x(), candidate->text().toStdString());
        std::ranges::sort(found);
        std::string names;
        for (const auto& [x, name] : found)
            names += (names.empty() ? "" : " > ") + name;
        return names;
    }
    void type(const QString& text) {
        press(Qt::Key_L, Qt::ControlModifier);
        ASSERT_TRUE(bar.isEditing());
        QTest::keyClicks(&field, text);
    }
    [[nodiscard]] std::string homeName() const { return std::string(tree.url().name()); }

    AddressBar& bar;
    CrumbBar& crumbs;
    AddressField& field;
};

TEST_F(Address, ShowsTheFoldersOfTheActiveTab) {
    EXPECT_EQ(shown(), homeName() + " > Projects");
    open(tree.url("Projects/Reports"));
    EXPECT_EQ(shown(), homeName() + " > Projects > Reports");
    QTest::mouseClick(button(QStringLiteral("Projects")), Qt::LeftButton);
    EXPECT_EQ(window.model().currentURL(), tree.url("Projects"));
    window.tabs().addTab(std::nullopt, BrowserTabsModel::Activation::activate);
    EXPECT_EQ(shown(), "Home");
    window.tabs().select(0);
    EXPECT_EQ(shown(), homeName() + " > Projects");
}

TEST_F(Address, CollapsesWhatDoesNotFit) {
    std::string path = "Projects";
    for (int i = 0; i < 12; ++i)
        tree.folder(path += "/folder with a rather long name " + std::to_string(i));
    open(tree.url(path));
    EXPECT_EQ(button(QStringLiteral("Projects")), nullptr);
    EXPECT_NE(button(QStringLiteral("folder with a rather long name 11")), nullptr);
    QTest::mouseClick(button(QStringLiteral("Folders further up")), Qt::LeftButton);
    auto* const menu = crumbs.findChild<QMenu*>();
    ASSERT_TRUE(menu);
    EXPECT_EQ(menu->actions().constLast()->text().toStdString(), homeName());
    menu->actions().constLast()->trigger();
    EXPECT_EQ(window.model().currentURL(), tree.url());
}

TEST_F(Address, IsTypedAndEntered) {
    type(QString::fromStdString(tree.url("Projects/Reports").path()));
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_EQ(window.model().currentURL(), tree.url("Projects/Reports"));
    EXPECT_FALSE(bar.isEditing());
    EXPECT_TRUE(window.view().hasFocus());
    EXPECT_THAT(services->recentAddresses().places(), ElementsAre(tree.url("Projects/Reports")));
    press(Qt::Key_D, Qt::AltModifier);
    EXPECT_EQ(field.selectedText().toStdString(), tree.url("Projects/Reports").path());
    QTest::keyClicks(&field, QStringLiteral("..")); // below the folder that is shown
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_EQ(window.model().currentURL(), tree.url("Projects"));
    type(QStringLiteral("nowhere"));
    QTest::keyClick(&field, Qt::Key_Escape);
    EXPECT_FALSE(bar.isEditing());
    EXPECT_EQ(window.model().currentURL(), tree.url("Projects"));
}

TEST_F(Address, KeepsARefusedEntryAndSaysWhy) {
    type(QStringLiteral("C:\\Users"));
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_TRUE(bar.error().isVisible());
    EXPECT_EQ(bar.error().message().toStdString(),
              "Windows drive and network addresses can’t be opened here.");
    EXPECT_EQ(field.text().toStdString(), "C:\\Users");
    EXPECT_TRUE(field.hasFocus());
    EXPECT_EQ(bar.error().width(), bar.width());
    QTest::keyClick(&field, Qt::Key_Backspace);
    EXPECT_FALSE(bar.error().isVisible());
    QTest::keyClick(&field, Qt::Key_Return);
    QTest::keyClick(&field, Qt::Key_Escape);
    EXPECT_FALSE(bar.error().isVisible());
    EXPECT_EQ(window.model().currentURL(), tree.url("Projects"));
}

TEST_F(Address, IsCompletedByTheFoldersThatAreThere) {
    tree.folder("Projects/Reports/2026");
    type(QString::fromStdString(tree.url().path()) + QStringLiteral("/Pro"));
    ASSERT_TRUE(runUntil([&] { return field.suggestions().isVisible(); }));
    QTest::keyClick(&field, Qt::Key_J);
    EXPECT_TRUE(field.suggestions().isVisible()); // without going away meanwhile
    QTest::keyClick(&field, Qt::Key_Tab);
    EXPECT_EQ(field.text().toStdString(), tree.url("Projects").path() + "/");
    ASSERT_TRUE(runUntil([&] { return field.suggestions().isVisible(); }));
    QTest::keyClick(&field, Qt::Key_Down);
    EXPECT_EQ(field.text().toStdString(), tree.url("Projects/Reports").path());
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_EQ(window.model().currentURL(), tree.url("Projects/Reports"));
    EXPECT_FALSE(field.suggestions().isVisible());
}

TEST_F(Address, ListsTheSubfoldersOfACrumb) {
    tree.folder("Projects/Archive");
    open(tree.url("Projects/Reports"));
    QTest::mousePress(button(QStringLiteral("Folders in \u2068Projects\u2069")), Qt::LeftButton);
    auto* const list = bar.findChild<FolderList*>();
    ASSERT_TRUE(list);
    ASSERT_TRUE(runUntil([&] { return list->isVisible(); }));
    EXPECT_EQ(list->list().currentIndex().data().toString().toStdString(), "Reports");
    EXPECT_EQ(list->list().verticalScrollBar()->maximum(), 0); // all of it is to be seen
    QTest::keyClicks(&list->list(), QStringLiteral("ar"));
    EXPECT_EQ(list->list().currentIndex().data().toString().toStdString(), "Archive");
    QTest::keyClick(&list->list(), Qt::Key_Return);
    EXPECT_EQ(window.model().currentURL(), tree.url("Projects/Archive"));
}

TEST_F(Address, SpringsOpenUnderADragAndTakesDrops) {
    open(tree.url("Projects/Reports"));
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(QString::fromStdString(tree.url("Projects/one.txt").path()))});
    const Qt::DropActions offered = Qt::CopyAction | Qt::MoveAction;
    const auto moveOver = [&](const QString& name) {
        const QPoint at = button(name)->geometry().center();
        QDragEnterEvent enter(at, offered, &data, Qt::LeftButton, Qt::ShiftModifier);
        QApplication::sendEvent(&crumbs, &enter);
        EXPECT_TRUE(enter.isAccepted());
        QDragMoveEvent move(at, offered, &data, Qt::LeftButton, Qt::ShiftModifier);
        QApplication::sendEvent(&crumbs, &move);
        return move.isAccepted();
    };
    const auto status = [&] { return window.statusBar().parts().join(QLatin1Char('|')).toStdString(); };
    EXPECT_FALSE(moveOver(QStringLiteral("Projects")));
    EXPECT_EQ(status(), "The item is already there.");
    EXPECT_TRUE(runUntil([&] { return window.model().currentURL() == tree.url("Projects"); }));
    const auto home = QString::fromStdString(homeName());
    EXPECT_TRUE(moveOver(home));
    EXPECT_EQ(status(), "Move to " + isolated(homeName()));
    QDropEvent drop(button(home)->geometry().center(), offered, &data, Qt::LeftButton, Qt::ShiftModifier);
    QApplication::sendEvent(&crumbs, &drop);
    EXPECT_TRUE(runUntil([&] { return tree.exists("one.txt") && !tree.exists("Projects/one.txt"); }));
    EXPECT_THAT(status(), ::testing::HasSubstr("items"));
}

} // namespace
} // namespace ombrel
