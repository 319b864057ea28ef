#include "ui/SearchField.h"

#include "ui/AddressBar.h"
#include "ui/CrumbBar.h"
#include "ui/DetailsView.h"
#include "ui/GlyphButton.h"
#include "ui/Overlay.h"
#include "ui/StatusBar.h"
#include "ui/WindowWorld.h"

#include <QLineEdit>
#include <QMenu>
#include <QPushButton>

#include <set>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::ElementsAre;

class SearchInAWindow : public WindowWorld {
protected:
    SearchInAWindow() : box(*window.findChild<SearchField*>()), field(box.field()) {
        tree.file("Projects/Reports/two weeks.txt");
        window.activateWindow();
        runUntil([this] { return window.isActiveWindow(); });
        open(tree.url("Projects"));
    }
    void type(const QString& text) {
        press(Qt::Key_F, Qt::ControlModifier);
        ASSERT_TRUE(field.hasFocus());
        QTest::keyClicks(&field, text);
    }
    [[nodiscard]] bool runUntilFound(const std::set<std::string>& names) {
        return runUntil([&] {
            const auto found = namesOf(window.model().items());
            return window.model().listingState() == ListingState::Case::loaded &&
                   std::set(found.begin(), found.end()) == names;
        });
    }
    [[nodiscard]] GlyphButton* button(const QString& name) const {
        for (auto* candidate : window.findChildren<GlyphButton*>())
            if (candidate->accessibleName() == name) return candidate;
        return nullptr;
    }

    SearchField& box;
    QLineEdit& field;
};

TEST_F(SearchInAWindow, ShowsWhatItFindsAndComesBackWithTheSelection) {
    select(window.model(), {"one.txt"});
    EXPECT_EQ(field.placeholderText().toStdString(), "Search \u2068Projects\u2069");
    type(QStringLiteral("two"));
    QTest::keyClick(&field, Qt::Key_Return);
    ASSERT_TRUE(runUntilFound({"two weeks.txt", "two.txt"}));
    EXPECT_TRUE(window.view().hasFocus());
    auto& details = dynamic_cast<DetailsView&>(window.view());
    EXPECT_GT(details.header().width(DetailsColumn::folder), 0);
    auto& crumbs = window.findChild<AddressBar*>()->crumbBar();
    std::vector<std::string> names;
    for (auto* candidate : crumbs.findChildren<QAbstractButton*>())
        if (!candidate->text().isEmpty() && candidate->isVisible())
            names.push_back(candidate->text().toStdString());
    EXPECT_THAT(names, ElementsAre("Results for “\u2068two\u2069” in \u2068Projects\u2069"));
    press(Qt::Key_F3);
    QTest::keyClick(&field, Qt::Key_Escape);
    EXPECT_EQ(field.text(), QString());
    ASSERT_TRUE(
        runUntil([&] { return selectedNames(window.model()) == std::vector<std::string>{"one.txt"}; }));
    EXPECT_EQ(details.header().width(DetailsColumn::folder), 0);
    EXPECT_TRUE(field.hasFocus());
    QTest::keyClick(&field, Qt::Key_Escape);
    EXPECT_TRUE(window.view().hasFocus());
}

TEST_F(SearchInAWindow, BeginsByItselfWhenTheTypingRests) {
    type(QStringLiteral("w"));
    QTest::keyClicks(&field, QStringLiteral("e"));
    ASSERT_TRUE(runUntilFound({"two weeks.txt"}));
    EXPECT_TRUE(field.hasFocus());
    EXPECT_TRUE(window.model().isTextEditing());
    QTest::keyClick(&field, Qt::Key_Backspace);
    QTest::keyClick(&field, Qt::Key_Backspace);
    EXPECT_FALSE(window.model().showsSearch());
}

TEST_F(SearchInAWindow, KeepsTheKeyboardThatAnOverlayOnceHad) {
    window.view().setFocus();
    open(tree.url("gone"));
    ASSERT_TRUE(window.overlay().isAncestorOf(window.focusWidget()));
    open(tree.url("Projects"));
    ASSERT_TRUE(window.view().hasFocus());
    type(QStringLiteral("we"));
    ASSERT_TRUE(runUntilFound({"two weeks.txt"}));
    EXPECT_TRUE(field.hasFocus());
}

TEST_F(SearchInAWindow, OffersToClearWhatFindsNothing) {
    type(QStringLiteral("nothing like it"));
    QTest::keyClick(&field, Qt::Key_Return);
    ASSERT_TRUE(runUntil([&] { return window.overlay().isVisible(); }));
    EXPECT_EQ(window.overlay().title().toStdString(), "No items match “\u2068nothing like it\u2069”");
    const auto buttons = window.overlay().findChildren<QPushButton*>();
    ASSERT_EQ(buttons.size(), 1);
    buttons.front()->click();
    EXPECT_FALSE(window.model().showsSearch());
    EXPECT_EQ(field.text(), QString());
}

TEST_F(SearchInAWindow, IsOffAtHomeAndWhereNothingCanBeSearched) {
    window.model().navigateHome();
    EXPECT_FALSE(box.isEnabled());
    EXPECT_EQ(field.placeholderText().toStdString(), "Open a folder to search");
    open(tree.url("gone"));
    EXPECT_FALSE(box.isEnabled());
    open(tree.url("Projects"));
    EXPECT_TRUE(box.isEnabled());
}

TEST_F(SearchInAWindow, KeepsATextForEachTab) {
    type(QStringLiteral("two"));
    QTest::keyClick(&field, Qt::Key_Return);
    window.tabs().addTab(tree.url("Projects"), BrowserTabsModel::Activation::activate);
    EXPECT_EQ(field.text(), QString());
    window.tabs().select(0);
    EXPECT_EQ(field.text().toStdString(), "two");
}

// ---- The history of the buttons beside it

TEST_F(SearchInAWindow, ListsWhereBackLeads) {
    for (const auto* name : {"Projects/Reports", "Projects", "Projects/Reports"})
        open(tree.url(name));
    auto* const back = button(QStringLiteral("Back"));
    QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(5, 5), back->mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(back, &event);
    auto* const menu = back->findChild<QMenu*>();
    ASSERT_TRUE(menu);
    std::vector<std::string> names;
    for (const QAction* action : menu->actions())
        names.push_back(action->text().toStdString());
    EXPECT_THAT(names, ElementsAre("Projects", "Reports", "Projects"));
    menu->actions()[2]->trigger();
    EXPECT_EQ(window.model().currentURL(), tree.url("Projects"));
    EXPECT_FALSE(window.model().canGoBack());
    EXPECT_EQ(window.model().historyPlaces(BrowserHistory::Direction::forward, 12).size(), 3U);
    delete menu;
}

} // namespace
} // namespace ombrel
