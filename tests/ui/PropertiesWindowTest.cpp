#include "ui/PropertiesWindow.h"

#include "ui/CapacityBar.h"
#include "ui/ContextMenu.h"
#include "ui/FactTable.h"
#include "ui/TextLabel.h"
#include "ui/ValueText.h"
#include "ui/WindowWorld.h"

#include <QAccessible>
#include <QMenu>
#include <QPointer>
#include <QPushButton>
#include <QTextCursor>

#include <gmock/gmock.h>
#include <sys/stat.h>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::HasSubstr;
using ::testing::SizeIs;

std::vector<PropertiesWindow*> openWindows() {
    std::vector<PropertiesWindow*> open;
    for (QWidget* each : QApplication::topLevelWidgets())
        if (auto* const found = qobject_cast<PropertiesWindow*>(each); found && found->isVisible())
            open.push_back(found);
    return open;
}

class PropertiesTest : public WindowWorld {
protected:
    ~PropertiesTest() override {
        for (PropertiesWindow* each : openWindows())
            each->close();
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        (void)runUntilQuiet();
    }
    PropertiesWindow& show(const ItemProperties::Subject& subject) {
        auto& shown = PropertiesWindow::open(quietTheme(), subject);
        EXPECT_TRUE(runUntil(
            [&] { return shown.properties().isRead() && !shown.properties().contents().isCounting(); }));
        return shown;
    }
    [[nodiscard]] static std::string valueOf(const PropertiesWindow& in, const char* caption) {
        for (const Fact& fact : in.findChild<FactTable*>()->facts())
            if (fact.caption == QLatin1String(caption)) return fact.value.toStdString();
        return "none";
    }
    static void choose(QMenu& menu, const char* text) {
        for (QAction* action : menu.actions())
            if (action->text().section(QLatin1Char('\t'), 0, 0) == QLatin1String(text))
                return action->trigger();
        FAIL() << "no " << text;
    }
};

TEST_F(PropertiesTest, SayAllOfAFileInWordsThatCanBeCopied) {
    const auto url = tree.fileOfSize("Projects/.table.csv", 5000);
    ::chmod(url.path().c_str(), 0750);
    auto& shown = show(url);
    EXPECT_EQ(shown.size(), QSize(420, 520));
    EXPECT_THAT(shown.windowTitle().toStdString(), HasSubstr(".table.csv"));
    EXPECT_EQ(valueOf(shown, "Location"), tree.path("Projects"));
    EXPECT_EQ(valueOf(shown, "Size"), "4.9 KB (5,000 bytes)");
    EXPECT_EQ(valueOf(shown, "Hidden"), "Yes");
    for (const char* caption : {"Type", "Modified", "Opened"})
        EXPECT_NE(valueOf(shown, caption), "none") << caption;
    const std::string permissions = valueOf(shown, "Permissions");
    EXPECT_THAT(permissions, HasSubstr("read, write and run\n"));
    EXPECT_THAT(permissions, HasSubstr("read and run\nOthers: no access"));
    EXPECT_EQ(valueOf(shown, "Contains"), "none");
    int values = 0;
    for (auto* text : shown.findChildren<ValueText*>()) {
        if (!text->isVisible()) continue;
        ++values;
        EXPECT_FALSE(text->accessibleName().isEmpty());
        text->setFocus(Qt::TabFocusReason);
        EXPECT_EQ(text->textCursor().selectedText().replace(QChar::LineSeparator, QLatin1Char('\n')),
                  text->text());
    }
    EXPECT_GE(values, 8);
    QTest::keyClick(shown.focusWidget(), Qt::Key_Escape);
    EXPECT_THAT(openWindows(), SizeIs(0));
}

TEST_F(PropertiesTest, CountWhatFoldersHoldAndEndWithTheWindow) {
    tree.fileOfSize("Projects/Reports/big", 2000);
    auto& folder = show(tree.url("Projects"));
    EXPECT_EQ(valueOf(folder, "Contains"), "3 files, 1 folder");
    EXPECT_EQ(valueOf(folder, "Size"), "2.0 KB (2,015 bytes)");
    EXPECT_THAT(valueOf(folder, "Permissions"), HasSubstr("read, write and open"));
    open(tree.url("Projects"));
    select(window.model(), {"one.txt", "two.txt", "Reports"});
    auto& several = show(window.model().selection());
    EXPECT_THAT(several.windowTitle().toStdString(), HasSubstr("3 items"));
    EXPECT_EQ(valueOf(several, "Total size"), "2.0 KB (2,015 bytes)");
    EXPECT_EQ(valueOf(several, "Location"), tree.path("Projects"));
    EXPECT_EQ(valueOf(several, "Contains"), "3 files, 1 folder");

    const QPointer<PropertiesWindow> root = &PropertiesWindow::open(quietTheme(), *FileURL::fromPath("/usr"));
    ASSERT_TRUE(runUntil([&] { return root->properties().contents().isCounting(); }));
    root->close();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(root.isNull());
    EXPECT_TRUE(runUntilQuiet());
}

TEST_F(PropertiesTest, TellWhyThereIsNothingToSay) {
    tree.symlink("Projects/link", "no/where");
    EXPECT_EQ(valueOf(show(tree.url("Projects/link")), "Link target"), "no/where");
    const auto& shown = show(tree.url("Projects/gone"));
    const auto labels = shown.findChildren<TextLabel*>();
    EXPECT_TRUE(std::ranges::any_of(labels, [](const TextLabel* label) {
        return label->isVisible() && label->text() == QLatin1String("The item no longer exists.");
    }));
    EXPECT_EQ(valueOf(shown, "Modified"), "none");
}

TEST_F(PropertiesTest, ShowHowFullAVolumeIs) {
    VolumeInfo volume;
    volume.url = tree.url();
    volume.name = Metadata<std::string>(std::string("Survey"));
    volume.fileSystemType = Metadata<std::string>(std::string("exfat"));
    volume.totalCapacity = Metadata<std::int64_t>(std::int64_t{100} << 30);
    volume.availableCapacity = Metadata<std::int64_t>(std::int64_t{5} << 30);
    const auto& shown = show(volume);
    EXPECT_THAT(valueOf(shown, "File system"), HasSubstr("exFAT"));
    EXPECT_THAT(valueOf(shown, "Used"), HasSubstr("95.0 GB"));
    EXPECT_THAT(valueOf(shown, "Free"), HasSubstr("5.0 GB"));
    auto* const bar = shown.findChild<CapacityBar*>();
    ASSERT_TRUE(bar->isVisible());
    auto* const spoken = QAccessible::queryAccessibleInterface(bar);
    EXPECT_EQ(spoken->role(), QAccessible::ProgressBar);
    EXPECT_EQ(spoken->text(QAccessible::Name).toStdString(), "5.0 GB free of 100 GB");
    EXPECT_EQ(spoken->valueInterface()->currentValue().toInt(), 95);
    const QColor filled = bar->grab().toImage().pixelColor(bar->width() / 2, bar->height() / 2);
    EXPECT_EQ(filled, quietTheme().color(ThemeColor::danger));
    volume.totalCapacity = {};
    volume.url = tree.url("other");
    EXPECT_FALSE(show(volume).findChild<CapacityBar*>()->isVisible());
}

TEST_F(PropertiesTest, OpenOnceForTheSameThingsHoweverTheyAreAskedFor) {
    open(tree.url("Projects"));
    select(window.model(), {"one.txt"});
    press(Qt::Key_Return, Qt::AltModifier);
    ASSERT_THAT(openWindows(), SizeIs(1));
    QMenu ofItem;
    window.contextMenu().fill(ofItem, window.model());
    choose(ofItem, "Properties");
    EXPECT_THAT(openWindows(), SizeIs(1));
    select(window.model(), {});
    QMenu ofFolder;
    window.contextMenu().fill(ofFolder, window.model());
    choose(ofFolder, "Properties");
    const auto both = openWindows();
    ASSERT_THAT(both, SizeIs(2));
    EXPECT_FALSE(both.front()->isModal());
    PropertiesWindow::open(quietTheme(), PropertiesWindow::subjectAt(tree.url("Projects"), *services));
    EXPECT_THAT(openWindows(), SizeIs(2));
    for (PropertiesWindow* each : both)
        each->findChild<QPushButton*>()->click();
    EXPECT_THAT(openWindows(), SizeIs(0));
}

} // namespace
} // namespace ombrel
