#include "ui/QuickLookWindow.h"

#include "ui/PaneArea.h"
#include "ui/QuickLookPicture.h"
#include "ui/WindowWorld.h"

#include <QBuffer>
#include <QImage>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>

#include <filesystem>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Kind = QuickLookContent::Kind;

/// Over "Reports", "one.txt", "two.txt" and "wide.png".
class QuickLook : public WindowWorld {
protected:
    QuickLook() {
        QImage image(2000, 500, QImage::Format_RGB32);
        image.fill(Qt::darkGreen);
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        image.save(&buffer, "PNG");
        tree.file("Projects/wide.png",
                  std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())));
    }

    [[nodiscard]] QuickLookWindow* look() const {
        const auto all = window.findChildren<QuickLookWindow*>();
        for (QuickLookWindow* shown : all)
            if (shown->isVisible()) return shown;
        return nullptr;
    }
    /// By the key, of these items.
    void lookAt(const std::vector<std::string>& names) {
        open(tree.url("Projects"));
        select(window.model(), names);
        window.model().setRow(BrowserModel::Place::current, rowNamed(window.model(), names.front()));
        press(Qt::Key_Space);
        ASSERT_NE(look(), nullptr);
    }
    void key(Qt::Key which) { QTest::keyClick(look()->focusWidget(), which); }
    [[nodiscard]] bool shows(std::string_view name) {
        return runUntil([&] {
            const auto* const shown = look();
            return shown && shown->content().isSettled() && shown->content().item() &&
                   shown->content().item()->name() == name;
        });
    }
    [[nodiscard]] std::string text() const { return look()->text().toPlainText().toStdString(); }
    [[nodiscard]] std::string position() const { return look()->position().toStdString(); }
    void reload() {
        window.model().refresh();
        ASSERT_TRUE(runUntilQuiet());
        QApplication::processEvents();
    }
};

TEST_F(QuickLook, GoesThroughTheListAndTheSelectionWithIt) {
    lookAt({"one.txt"});
    EXPECT_EQ(look()->size(), QSize(720, 480)) << "most of its browser";
    EXPECT_EQ(look()->geometry().center(), window.geometry().center());
    ASSERT_TRUE(shows("one.txt"));
    EXPECT_EQ(text(), "12345");
    EXPECT_EQ(position(), "2 of 4");
    EXPECT_EQ(look()->windowTitle().toStdString(), "one.txt");
    key(Qt::Key_Down);
    ASSERT_TRUE(shows("two.txt"));
    EXPECT_EQ(text(), "1234567890");
    EXPECT_THAT(selectedNames(window.model()), ElementsAre("two.txt"));
    key(Qt::Key_Right);
    ASSERT_TRUE(shows("wide.png"));
    const QuickLookPicture& picture = look()->picture();
    EXPECT_EQ(picture.image().width(), picture.room().width());
    EXPECT_EQ(picture.image().height(), picture.room().width() / 4);
    key(Qt::Key_Right);
    EXPECT_EQ(position(), "4 of 4");
    for (int i = 0; i < 3; ++i)
        key(Qt::Key_Left);
    ASSERT_TRUE(shows("Reports"));
    EXPECT_EQ(look()->content().kind(), Kind::icon);
    EXPECT_EQ(picture.facts().size(), 2) << "a folder has no size";
    EXPECT_TRUE(picture.accessibleName().startsWith(QStringLiteral("Reports, Folder, ")));
    // The user goes on in the browser.
    select(window.model(), {"one.txt"});
    ASSERT_TRUE(shows("one.txt"));
    key(Qt::Key_Escape);
    EXPECT_EQ(look(), nullptr);
    EXPECT_THAT(selectedNames(window.model()), ElementsAre("one.txt"));
}

TEST_F(QuickLook, StaysAmongSeveralSelectedItems) {
    lookAt({"one.txt", "wide.png"});
    ASSERT_TRUE(shows("one.txt"));
    EXPECT_EQ(position(), "1 of 2");
    key(Qt::Key_Up);
    EXPECT_EQ(position(), "1 of 2");
    key(Qt::Key_Down);
    ASSERT_TRUE(shows("wide.png"));
    key(Qt::Key_Right);
    EXPECT_EQ(position(), "2 of 2");
    EXPECT_THAT(selectedNames(window.model()), ElementsAre("one.txt", "wide.png"));
    std::filesystem::remove(tree.path("Projects/wide.png"));
    reload();
    ASSERT_TRUE(shows("one.txt"));
    EXPECT_EQ(position(), "2 of 3");
}

TEST_F(QuickLook, FollowsItemsThatChangeAndGo) {
    lookAt({"one.txt"});
    ASSERT_TRUE(shows("one.txt"));
    int changes = 0;
    QObject::connect(&look()->content(), &QuickLookContent::changed, &window, [&] { ++changes; });
    reload();
    EXPECT_EQ(changes, 0) << "the same is not read again";
    tree.file("Projects/one.txt", "something else");
    reload();
    ASSERT_TRUE(runUntil([&] { return text() == "something else"; }));
    std::filesystem::remove(tree.path("Projects/one.txt"));
    reload();
    ASSERT_TRUE(shows("two.txt"));
    EXPECT_EQ(position(), "2 of 3");
    key(Qt::Key_Up);
    EXPECT_THAT(selectedNames(window.model()), ElementsAre("Reports"));
    for (const auto* name : {"Projects/Reports", "Projects/two.txt", "Projects/wide.png"})
        std::filesystem::remove(tree.path(name));
    reload();
    EXPECT_EQ(look(), nullptr);
    tree.file("Projects/one.txt", "1");
    for (const auto& leave :
         {std::function<void()>([&] { window.model().goUp(); }), std::function<void()>([&] {
              window.tabs().addTab(std::nullopt, BrowserTabsModel::Activation::activate);
          })}) {
        lookAt({"one.txt"});
        leave();
        EXPECT_EQ(look(), nullptr);
    }
}

TEST_F(QuickLook, IsLeftByTheKeyThatOpenedItAndOpensByEnter) {
    lookAt({"Reports"});
    QTest::simulateEvent(look()->focusWidget(), true, Qt::Key_Space, Qt::NoModifier, QStringLiteral(" "),
                         true);
    EXPECT_NE(look(), nullptr) << "while it is held down";
    key(Qt::Key_Space);
    EXPECT_EQ(look(), nullptr);
    press(Qt::Key_Space);
    EXPECT_NE(look(), nullptr);
    press(Qt::Key_Space);
    EXPECT_EQ(look(), nullptr) << "also where the browser has the keyboard";

    press(Qt::Key_Space);
    std::vector<std::string> stops;
    for (int i = 0; i < 3; ++i) {
        key(Qt::Key_Tab);
        const auto* const button = qobject_cast<QPushButton*>(look()->focusWidget());
        stops.push_back((button ? button->text() : look()->focusWidget()->accessibleName())
                            .section(QLatin1Char(','), 0, 0)
                            .toStdString());
    }
    EXPECT_THAT(stops, ElementsAre("Open", "Close", "Reports"));
    key(Qt::Key_Backtab);
    key(Qt::Key_Return);
    EXPECT_EQ(look(), nullptr);
    EXPECT_EQ(title(), "Projects") << "it was the button that closes";
    press(Qt::Key_Space);
    key(Qt::Key_Return);
    EXPECT_EQ(look(), nullptr);
    EXPECT_EQ(title(), "Reports");
}

TEST_F(QuickLook, SaysThatALongTextGoesOnAndLetsItBeCopied) {
    tree.file("Projects/one.txt", std::string(QuickLookContent::mostText + 1, 'x'));
    lookAt({"one.txt"});
    ASSERT_TRUE(shows("one.txt"));
    const auto isSaid = [&] {
        for (const auto* label : look()->findChildren<QLabel*>())
            if (label->isVisible() && label->text() == QStringLiteral("Only the first 256 KB are shown."))
                return true;
        return false;
    };
    EXPECT_TRUE(isSaid());
    QTest::keyClick(&look()->text(), Qt::Key_A, Qt::ControlModifier);
    QString all = look()->text().textCursor().selectedText();
    EXPECT_GT(look()->text().blockCount(), 100) << "a line without end is broken";
    EXPECT_EQ(all.remove(QChar::ParagraphSeparator).size(),
              static_cast<qsizetype>(QuickLookContent::mostText));
    QTest::keyClick(&look()->text(), Qt::Key_Z);
    EXPECT_TRUE(look()->text().isReadOnly());
    key(Qt::Key_Down);
    ASSERT_TRUE(shows("two.txt"));
    EXPECT_EQ(text(), "1234567890");
    EXPECT_FALSE(isSaid());
}

} // namespace
} // namespace ombrel
