#include "browser/KeyRouter.h"

#include "browser/BrowserTabsModel.h"
#include "browser/KeyStrokes.h"
#include "browser/ModelWorld.h"

#include <gmock/gmock.h>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Press = KeyRouter::Press;

/// A window without widgets: tabs, commands and keys, with the focus in the file view.
class WindowOfKeys : public ::testing::Test {
protected:
    WindowOfKeys()
        : tabs([] { return std::make_unique<BrowserModel>(realListings()); }, filled()),
          keys(commands, {.preset = [this] { return preset; },
                          .activePane = [this]() -> BrowserModel& { return tabs.activeTab(); },
                          .performTabCommand = [this](TabCommand command) { tabs.perform(command); }}) {
        for (const auto command : {FileCommand::moveToTrash, FileCommand::newFolder, FileCommand::paste,
                                   FileCommand::openInNewTab})
            commands.bind(command, {.perform = [this, command](BrowserModel&) { done.push_back(command); }});
    }

    FileURL filled() {
        tree.folder("inner");
        tree.file("inner/one");
        tree.file("inner/two");
        return tree.url();
    }
    /// As the file view does it: first the window, then the view. True when the key is used up.
    bool press(std::string_view text, Press how = Press::first) {
        EXPECT_TRUE(runUntilLoaded(tabs.activeTab()));
        return keys.pressInWindow(stroke(text), how, false, false) || keys.pressInFileView(stroke(text), how);
    }
    [[nodiscard]] std::string shown() const {
        const auto& pane = tabs.activeTab();
        return pane.currentURL() ? pane.currentURL()->path().substr(tree.path().size()) : "home";
    }

    TempTree tree;
    KeyPreset preset = KeyPreset::windows;
    CommandDispatcher commands;
    BrowserTabsModel tabs;
    KeyRouter keys;
    std::vector<FileCommand> done;
};

TEST_F(WindowOfKeys, LetsKeysGoOnThatMeanNothingHere) {
    EXPECT_FALSE(press("f2")) << "nothing renames";
    EXPECT_FALSE(press("delete")) << "nothing is selected";
    EXPECT_FALSE(press("x"));
    EXPECT_TRUE(press("alt+left")) << "there is nothing to go back to now, but it means that";
    EXPECT_THAT(done, IsEmpty());
    EXPECT_FALSE(keys.pressInWindow(stroke("ctrl+t"), Press::first, true, false));
    EXPECT_FALSE(keys.pressInWindow(stroke("ctrl+tab"), Press::first, false, true));
    preset = KeyPreset::mac;
    EXPECT_FALSE(keys.pressInWindow(stroke("cmd+v"), Press::first, true, false));
    EXPECT_FALSE(press("return"));
    EXPECT_THAT(done, IsEmpty());
    EXPECT_EQ(tabs.count(), 1U);
}

TEST_F(WindowOfKeys, OpensInTabsByEnterWithControl) {
    for (const auto each : {KeyPreset::windows, KeyPreset::mac}) {
        preset = each;
        done.clear();
        EXPECT_FALSE(press("ctrl+return")) << "nothing is selected";
        select(tabs.activeTab(), {"inner"});
        EXPECT_TRUE(press("ctrl+return"));
        EXPECT_TRUE(press("ctrl+return", Press::repeated));
        EXPECT_TRUE(press("ctrl+enter"));
        EXPECT_FALSE(press("ctrl+shift+return"));
        EXPECT_THAT(done, ElementsAre(FileCommand::openInNewTab, FileCommand::openInNewTab));
        select(tabs.activeTab(), {});
    }
}

TEST_F(WindowOfKeys, DoesNotRepeatWhatChangesThingsWhileAKeyIsHeld) {
    ASSERT_TRUE(runUntilLoaded(tabs.activeTab()));
    select(tabs.activeTab(), {"inner"});
    EXPECT_TRUE(press("delete"));
    EXPECT_TRUE(press("delete", Press::repeated));
    EXPECT_THAT(done, ElementsAre(FileCommand::moveToTrash));
    EXPECT_TRUE(press("ctrl+t", Press::repeated));
    EXPECT_EQ(tabs.count(), 1U);
    tabs.activeTab().navigate(tree.url("inner"));
    tabs.activeTab().navigate(tree.url());
    EXPECT_TRUE(press("backspace"));
    EXPECT_TRUE(press("alt+right", Press::repeated));
    EXPECT_EQ(shown(), "");
}

TEST_F(WindowOfKeys, AsksThePaneForWhatItsViewsDo) {
    ASSERT_TRUE(runUntilLoaded(tabs.activeTab()));
    auto& pane = tabs.activeTab();
    EXPECT_FALSE(commands.canPerform(FileCommand::focusAddress, pane));
    std::vector<std::string> asked;
    pane.requestAddressFocus = [&] { asked.emplace_back("address"); };
    pane.requestSearchFocus = [&] { asked.emplace_back("search"); };
    pane.requestQuickLook = [&] { asked.emplace_back("look"); };
    press("alt+d");
    press("f3");
    press("space");
    select(pane, {"inner"});
    press("space");
    EXPECT_THAT(asked, ElementsAre("address", "search", "look"));
    EXPECT_FALSE(commands.perform(FileCommand::rename, pane)) << "nobody does it";
}

} // namespace
} // namespace ombrel
