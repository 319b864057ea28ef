#include "browser/BrowserTabsModel.h"

#include "browser/ModelWorld.h"

#include <QCoreApplication>
#include <QEvent>
#include <QPointer>
#include <QSignalSpy>

#include <gmock/gmock.h>

#include <algorithm>
#include <vector>

namespace ombrel {
namespace {

using namespace testing;
using enum BrowserTabsModel::Activation;

/// The names of the tabs in their order, the active one in brackets.
std::string stripOf(const BrowserTabsModel& tabs) {
    std::string names;
    for (std::size_t i = 0; i < tabs.count(); ++i) {
        const auto title = tabs.tab(i).title().toStdString();
        const auto name = title.empty() ? "home" : title;
        names += (names.empty() ? "" : " ") + (i == tabs.selectedIndex() ? "[" + name + "]" : name);
    }
    return names;
}

BrowserTabsModel::MakePane panes() {
    return [] { return std::make_unique<BrowserModel>(realListings()); };
}

/// As a program's event loop does in each turn; that of a test does not.
void deleteWhatIsDue() {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

class Tabs : public ::testing::Test {
protected:
    Tabs() : tabs(panes(), folder("A")) {}

    FileURL folder(std::string_view name) {
        if (!tree.exists(name)) tree.folder(name);
        return tree.url(name);
    }
    /// From A alone to A B C, or more, with the last one active.
    void openUpTo(std::string_view last) {
        for (std::string name = "B"; name <= last; ++name.front())
            tabs.addTab(folder(name), activate);
    }
    [[nodiscard]] std::string strip() const { return stripOf(tabs); }

    TempTree tree;
    BrowserTabsModel tabs;
};

TEST_F(Tabs, BeginWithOneThatHasNoHistory) {
    EXPECT_EQ(strip(), "[A]");
    EXPECT_FALSE(tabs.activeTab().canGoBack());
    EXPECT_TRUE(runUntilLoaded(tabs.activeTab()));
    const BrowserTabsModel elsewhere(panes());
    EXPECT_EQ(elsewhere.count(), 1U);
    EXPECT_EQ(elsewhere.activeTab().location(), Location::home());
}

TEST_F(Tabs, OpenToTheRightOfTheActiveOne) {
    openUpTo("C");
    tabs.select(1);
    tabs.addTab(folder("D"), activate);
    EXPECT_EQ(strip(), "A B [D] C");
    tabs.addTab(folder("E"), stayBehind);
    EXPECT_EQ(strip(), "A B [D] E C");
    tabs.activeTab().requestNewTab(folder("F"));
    EXPECT_EQ(strip(), "A B D [F] E C");
    tabs.activeTab().requestNewTab(std::nullopt);
    EXPECT_EQ(strip(), "A B D F [home] E C");
    for (std::size_t i = 0; i < tabs.count(); ++i) {
        EXPECT_TRUE(runUntilLoaded(tabs.tab(i)));
        EXPECT_FALSE(tabs.tab(i).canGoBack());
    }
}

TEST_F(Tabs, CloseAndLeaveTheSamePaneOrANeighbourActive) {
    struct Case {
        std::size_t active, closed;
        std::string_view left;
    };
    for (const auto& [active, closed, left] :
         std::initializer_list<Case>{{2, 2, "A [B]"},
                                     {0, 2, "[A] B"},
                                     {2, 0, "B [C]"},
                                     {1, 1, "A [C]"},
                                     {0, 0, "[B] C"},
                                     {1, 3, "A [B] C"},
                                     {1, static_cast<std::size_t>(-1), "A [B] C"}}) {
        BrowserTabsModel tried(panes(), folder("A"));
        tried.addTab(folder("B"), activate);
        tried.addTab(folder("C"), activate);
        tried.select(active);
        const BrowserModel* const before = &tried.activeTab();
        QSignalSpy activations(&tried, &BrowserTabsModel::activeTabChanged);
        tried.closeTab(closed);
        EXPECT_EQ(stripOf(tried), left);
        EXPECT_EQ(activations.size(), before == &tried.activeTab() ? 0 : 1) << left;
    }
}

TEST_F(Tabs, HandTheLastOneToTheWindow) {
    tabs.closeActiveTab();
    int closings = 0;
    tabs.onLastTabClosed = [&] { ++closings; };
    tabs.closeTab(1);
    EXPECT_EQ(closings, 0);
    tabs.closeActiveTab();
    tabs.activeTab().requestCloseTab();
    EXPECT_EQ(closings, 2);
    EXPECT_EQ(strip(), "[A]");
    openUpTo("B");
    tabs.closeActiveTab();
    EXPECT_EQ(closings, 2);
}

TEST_F(Tabs, CloseFromWithinAndAreGoneSoonAfter) {
    openUpTo("C");
    const QPointer<BrowserModel> closed = &tabs.tab(1);
    const auto closeAgain = closed->requestCloseTab;
    QSignalSpy closings(&tabs, &BrowserTabsModel::tabClosed);
    closed->requestCloseTab();
    EXPECT_EQ(strip(), "A [C]");
    ASSERT_EQ(closings.size(), 1);
    EXPECT_EQ(closings.front().at(0).value<std::size_t>(), 1U);
    EXPECT_EQ(tabs.indexOf(*closed), std::nullopt);
    QSignalSpy titles(&tabs, &BrowserTabsModel::titleChanged);
    closed->navigate(tree.url());
    EXPECT_EQ(titles.size(), 0);
    closeAgain();
    EXPECT_EQ(strip(), "A [C]");
    deleteWhatIsDue();
    EXPECT_TRUE(closed.isNull());
}

TEST_F(Tabs, SwitchByCommandRoundAndRound) {
    openUpTo("C");
    struct Case {
        TabCommand command;
        std::string_view strip;
    };
    for (const auto& [command, expected] : std::initializer_list<Case>{
             {TabCommand::next(), "[A] B C"},
             {TabCommand::previous(), "A B [C]"},
             {TabCommand::previous(), "A [B] C"},
             {TabCommand::next(), "A B [C]"},
             {TabCommand::index(0), "[A] B C"},
             {TabCommand::index(7), "[A] B C"},
             {TabCommand::last(), "A B [C]"},
             {TabCommand::index(1), "A [B] C"},
         }) {
        tabs.perform(command);
        EXPECT_EQ(strip(), expected);
    }
    QSignalSpy activations(&tabs, &BrowserTabsModel::activeTabChanged);
    tabs.perform(TabCommand::index(1));
    tabs.select(3);
    EXPECT_EQ(activations.size(), 0) << "nothing changed";
}

TEST_F(Tabs, MoveAndStayActive) {
    openUpTo("D");
    tabs.select(1);
    struct Case {
        std::size_t from, to;
        std::string_view strip;
    };
    for (const auto& [from, to, expected] : std::initializer_list<Case>{{0, 3, "[B] C D A"},
                                                                        {0, 2, "C D [B] A"},
                                                                        {3, 0, "A C D [B]"},
                                                                        {3, 0, "[B] A C D"},
                                                                        {2, 2, "[B] A C D"},
                                                                        {4, 0, "[B] A C D"},
                                                                        {0, 4, "[B] A C D"}}) {
        tabs.moveTab(from, to);
        EXPECT_EQ(strip(), expected) << from << " to " << to;
    }
}

TEST_F(Tabs, TellWhichTitleChanges) {
    openUpTo("C");
    QSignalSpy titles(&tabs, &BrowserTabsModel::titleChanged);
    tabs.tab(1).navigate(folder("elsewhere"));
    ASSERT_EQ(titles.size(), 1);
    EXPECT_EQ(titles.front().constFirst().value<std::size_t>(), 1U);
    EXPECT_EQ(strip(), "A elsewhere [C]");
}

TEST_F(Tabs, MayGoWhileTheirFoldersAreRead) {
    constexpr std::size_t many = 60;
    std::vector<QPointer<BrowserModel>> panes;
    for (std::size_t i = 0; i < many; ++i)
        panes.emplace_back(&tabs.addTab(FileURL(), activate));
    while (tabs.count() > 1)
        tabs.activeTab().requestCloseTab();
    EXPECT_EQ(strip(), "[A]");
    deleteWhatIsDue();
    EXPECT_TRUE(runUntilQuiet());
    EXPECT_TRUE(std::ranges::all_of(panes, [](const auto& pane) { return pane.isNull(); }));
}

} // namespace
} // namespace ombrel
