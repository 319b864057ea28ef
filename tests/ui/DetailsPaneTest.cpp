#include "ui/DetailsPane.h"

#include "ui/FactTable.h"
#include "ui/ItemPreview.h"
#include "ui/OutlineButton.h"
#include "ui/PaneSplitter.h"
#include "ui/PropertiesWindow.h"
#include "ui/TextLabel.h"
#include "ui/ValueText.h"
#include "ui/WindowWorld.h"
#include "ui/WrappedName.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QMenu>
#include <QTextDocument>

#include <filesystem>

namespace ombrel {
namespace {

using namespace testing;

class DetailsPaneTest : public WindowWorld {
protected:
    DetailsPaneTest() { window.resize(1280, 700); }

    [[nodiscard]] DetailsPane& pane() const { return window.detailsPane(); }
    [[nodiscard]] bool settle() const {
        return runUntil([&] {
            return window.model().listingState() == ListingState::Case::loaded && pane().isSettled();
        });
    }
    void show(const std::vector<std::string>& names) {
        select(window.model(), names);
        ASSERT_TRUE(settle());
    }
    [[nodiscard]] std::string name() const { return pane().findChild<WrappedName*>()->name().toStdString(); }
    [[nodiscard]] std::string valueOf(const char* caption) const {
        for (const Fact& fact : pane().findChild<FactTable*>()->facts())
            if (fact.caption == QLatin1String(caption)) return fact.value.toStdString();
        return "none";
    }
    [[nodiscard]] ValueText& textOf(const char* caption) const {
        for (auto* text : pane().findChildren<ValueText*>())
            if (text->isVisible() && text->accessibleName() == QLatin1String(caption)) return *text;
        throw std::runtime_error(std::string("no value for ") + caption);
    }
    /// Whether every value has the height that its text takes.
    [[nodiscard]] bool isLaidOut() const {
        const auto texts = pane().findChildren<ValueText*>();
        return std::ranges::all_of(texts, [](const ValueText* text) {
            return !text->isVisible() || text->document()->size().height() <= text->height();
        });
    }
    [[nodiscard]] OutlineButton& button(const char* label) const {
        for (auto* each : pane().findChildren<OutlineButton*>())
            if (each->text() == QLatin1String(label)) return *each;
        throw std::runtime_error(std::string("no button ") + label);
    }
};

TEST_F(DetailsPaneTest, SaysWhatIsKnownOfTheFolderOfOneItemAndOfSeveral) {
    open(tree.url("Projects"));
    ASSERT_TRUE(settle());
    EXPECT_EQ(name(), "Projects");
    EXPECT_EQ(valueOf("Items"), "3");
    EXPECT_EQ(valueOf("Size"), "none");
    EXPECT_FALSE(button("Open").isEnabled());
    show({"one.txt"});
    EXPECT_EQ(name(), "one.txt");
    EXPECT_EQ(valueOf("Size"), "5 bytes");
    EXPECT_NE(valueOf("Modified"), "none");
    EXPECT_EQ(valueOf("Location"), "~/Projects");
    EXPECT_EQ(valueOf("Items"), "none");
    show({"one.txt", "two.txt"});
    EXPECT_EQ(name(), "2 items selected");
    EXPECT_EQ(valueOf("Total size"), "15 bytes");
    EXPECT_EQ(valueOf("Location"), "~/Projects");
    show({"Reports"});
    EXPECT_EQ(valueOf("Items"), "0");
    button("Open").click();
    EXPECT_TRUE(runUntil([&] { return window.model().currentURL() == tree.url("Projects/Reports"); }));
}

TEST_F(DetailsPaneTest, CountsTheFolderNotWhatIsFoundInItAndNamesTheRoot) {
    open(tree.url("Projects"));
    window.model().search("two");
    ASSERT_TRUE(settle());
    ASSERT_EQ(window.model().items().size(), 1U);
    EXPECT_EQ(valueOf("Items"), "3");
    open(FileURL());
    ASSERT_TRUE(settle());
    EXPECT_EQ(name(), "/");
}

TEST_F(DetailsPaneTest, SaysOfALostFolderWhatItsOverlaySays) {
    open(tree.folder("Projects/v1.txt"));
    ASSERT_TRUE(settle());
    const auto type = [&] { return pane().findChild<ElidedLabel*>()->text().toStdString(); };
    const auto picture = [&] { return pane().findChild<ItemPreview*>()->grab().toImage(); };
    const QImage whole = picture();
    EXPECT_EQ(type(), "Folder");
    std::filesystem::remove(tree.path("Projects/v1.txt"));
    ASSERT_TRUE(runUntil([&] {
        return window.model().listingState() == ListingState::Case::invalidated && pane().isSettled();
    }));
    EXPECT_EQ(name(), "v1.txt");
    EXPECT_EQ(type(), "This folder is gone");
    EXPECT_EQ(type(), window.overlay().title().toStdString());
    // The same folder, with something in its corner.
    const QImage lost = picture();
    const auto corner = [](const QImage& image) {
        return image.copy(QRect(image.rect().center(), image.rect().bottomRight()));
    };
    const auto half = [](const QImage& image) {
        return image.copy(QRect(image.rect().topLeft(), QPoint(image.width() / 2 - 1, image.height() / 2)));
    };
    EXPECT_EQ(half(whole), half(lost));
    EXPECT_NE(corner(whole), corner(lost));
    tree.folder("Projects/v1.txt");
    open(tree.url("Projects/v1.txt"));
    ASSERT_TRUE(settle());
    EXPECT_EQ(type(), "Folder");
    EXPECT_EQ(picture(), whole);
}

TEST_F(DetailsPaneTest, StaysUntilTheSelectionIsQuietAndFollowsTheActiveTab) {
    open(tree.url("Projects"));
    show({"one.txt"});
    select(window.model(), {"two.txt"});
    EXPECT_EQ(name(), "one.txt");
    EXPECT_TRUE(settle());
    EXPECT_EQ(name(), "two.txt");
    window.tabs().addTab(tree.url("Projects/Reports"), BrowserTabsModel::Activation::activate);
    ASSERT_TRUE(settle());
    EXPECT_EQ(name(), "Reports");
    window.model().navigateHome();
    EXPECT_FALSE(pane().isVisible());
    window.tabs().closeActiveTab();
    EXPECT_TRUE(pane().isVisible());
    ASSERT_TRUE(settle());
    EXPECT_EQ(name(), "two.txt");
}

TEST_F(DetailsPaneTest, FitsEveryWidth) {
    const std::string longName = std::string(100, 'w') + " and some words " + std::string(80, 'w') + ".txt";
    tree.file("Projects/" + longName);
    tree.symlink("Projects/link", std::string(300, 'x'));
    open(tree.url("Projects"));
    for (const std::string& item : {longName, std::string("link")}) {
        show({item});
        for (int width = 220; width <= 480; width += 13) {
            window.splitter().setWidth(PaneSplitter::Side::details, width);
            ASSERT_TRUE(runUntil([&] { return pane().width() == width && isLaidOut(); })) << width;
            const auto inside = [&](const QWidget& part) {
                const QRect place(part.mapTo(&pane(), QPoint()), part.size());
                return place.left() >= 16 && place.right() < width - 15;
            };
            for (const auto* text : pane().findChildren<ValueText*>()) {
                if (!text->isVisible()) continue;
                EXPECT_TRUE(inside(*text)) << width;
                EXPECT_LE(text->document()->idealWidth(), text->width()) << width;
            }
            EXPECT_TRUE(inside(button("Open")) && inside(button("Properties"))) << width;
            EXPECT_FALSE(button("Open").geometry().intersects(button("Properties").geometry())) << width;
            EXPECT_TRUE(inside(*pane().findChild<ItemPreview*>())) << width;
        }
    }
    EXPECT_TRUE(pane().findChild<WrappedName*>()->toolTip().isEmpty());
    show({longName});
    const auto* const heading = pane().findChild<WrappedName*>();
    EXPECT_EQ(heading->height(), WrappedName::mostLines * heading->heightForWidth(10'000));
    EXPECT_EQ(heading->toolTip().toStdString(), longName);
}

TEST_F(DetailsPaneTest, MovesNothingWhenTheThumbnailAndTheRestComes) {
    const auto url = tree.file("Projects/photo.png");
    QImage image(300, 200, QImage::Format_RGB32);
    image.fill(Qt::darkGreen);
    ASSERT_TRUE(image.save(QString::fromStdString(url.path()), "PNG"));
    open(tree.url("Projects"));
    select(window.model(), {"photo.png"});
    ASSERT_TRUE(runUntil([&] { return name() == "photo.png"; }));
    QApplication::processEvents();
    const QRect before = button("Open").geometry();
    ASSERT_TRUE(settle());
    EXPECT_EQ(valueOf("Dimensions"), "300 \u00d7 200");
    EXPECT_EQ(button("Open").geometry(), before);
    const auto* const preview = pane().findChild<ItemPreview*>();
    const QImage shown = pane().findChild<ItemPreview*>()->grab().toImage();
    EXPECT_EQ(shown.pixelColor(preview->rect().center()), QColor(Qt::darkGreen));
    EXPECT_EQ(preview->height(), 158);
}

TEST_F(DetailsPaneTest, GivesItsValuesAwayByMouseAndKeyboard) {
    open(tree.url("Projects"));
    show({"one.txt"});
    const auto copied = [] { return QApplication::clipboard()->text().toStdString(); };
    ValueText& location = textOf("Location");
    QContextMenuEvent wanted(QContextMenuEvent::Mouse, QPoint(5, 5), location.mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(location.viewport(), &wanted);
    auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    ASSERT_EQ(menu->actions().size(), 1);
    menu->actions().front()->trigger();
    menu->close();
    EXPECT_EQ(copied(), tree.path("Projects"));
    ValueText& size = textOf("Size");
    size.setFocus(Qt::TabFocusReason);
    QTest::keyClick(&size, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(copied(), "5 bytes");
    const auto parts = pane().findChildren<QWidget*>();
    EXPECT_TRUE(std::ranges::none_of(parts, [](const QWidget* part) {
        return (part->focusPolicy() & Qt::TabFocus) && part->isVisible() && part->accessibleName().isEmpty();
    }));
    press(Qt::Key_Escape, Qt::NoModifier, &size);
    EXPECT_TRUE(window.view().hasFocus());
}

} // namespace
} // namespace ombrel
