#include "browser/KeyBindings.h"

#include "browser/KeyStrokes.h"
#include "browser/ListNavigationKey.h"
#include "browser/MenuShortcuts.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <ranges>
#include <set>
#include <string_view>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAreArray;
using enum KeyPreset;

constexpr FocusContext inView{.fileViewHasFocus = true, .hasSelection = true};
constexpr FocusContext inViewWithNothingSelected{.fileViewHasFocus = true};

std::string nameOf(FileCommand command) {
    return std::string(rawValue(command));
}

std::string nameOf(TabCommand command) {
    switch (command.which()) {
    case TabCommand::Case::index: return "tab " + std::to_string(command.position());
    case TabCommand::Case::next: return "next";
    case TabCommand::Case::previous: return "previous";
    case TabCommand::Case::last: return "last";
    }
    return "?";
}

/// Every stroke that means something to `look`, and what.
template <typename Look>
std::vector<std::string> meanings(const Look& look) {
    std::vector<std::string> found;
    for (const auto& text : everyStroke())
        if (const auto meaning = look(stroke(text))) found.push_back(text + " " + nameOf(*meaning));
    return found;
}

auto lookingUp(KeyPreset preset) {
    return [preset](const KeyStroke& stroke) { return KeyBindings::lookup(stroke, preset); };
}

/// The parts of a text between its commas.
std::vector<std::string> listed(std::string_view text) {
    std::vector<std::string> parts;
    for (const auto part : std::views::split(text, std::string_view(", ")))
        parts.emplace_back(part.begin(), part.end());
    return parts;
}

/// `lines`, and each that has Command without Control once more with Control in its place.
std::vector<std::string> withControlAsCommand(std::vector<std::string> lines) {
    const auto asGiven = lines;
    for (const auto& line : asGiven) {
        const auto at = line.find("cmd+");
        if (at == std::string::npos) continue;
        lines.push_back("ctrl+" + line.substr(0, at) + line.substr(at + 4));
    }
    return lines;
}

// ---- What the keys mean, all of it

TEST(WindowsKeys, AreTheseAndNoOthers) {
    EXPECT_THAT(
        meanings(lookingUp(windows)),
        UnorderedElementsAreArray(listed(
            "return open, enter open, alt+return showInfo, space quickLook, backspace goBack, "
            "escape cancelCut, f5 refresh, f3 focusSearch, delete moveToTrash, "
            "shift+delete deletePermanently, f2 rename, alt+left goBack, alt+right goForward, alt+up goUp, "
            "ctrl+c copy, ctrl+x cut, ctrl+v paste, ctrl+a selectAll, ctrl+z undo, ctrl+y redo, "
            "ctrl+t newTab, ctrl+n newWindow, ctrl+w closeTab, ctrl+l focusAddress, ctrl+f focusSearch, "
            "ctrl+e focusSearch, ctrl+shift+n newFolder, ctrl+shift+c copyPath, alt+d focusAddress, "
            "alt+shift+p toggleDetailsPane")));
}

TEST(MacKeys, AreTheseAndNoOthersAndTakeControlForCommand) {
    EXPECT_THAT(meanings(lookingUp(mac)),
                UnorderedElementsAreArray(withControlAsCommand(listed(
                    "return rename, enter rename, cmd+down open, cmd+up goUp, cmd+backspace moveToTrash, "
                    "cmd+delete moveToTrash, alt+cmd+backspace deletePermanently, "
                    "alt+cmd+delete deletePermanently, escape cancelCut, space quickLook"))));
}

TEST(MacKeys, WithThoseOfTheMenuReachEveryCommandThatHasAKeyAtAll) {
    std::set<std::string> reached;
    for (const auto& text : everyStroke()) {
        const auto pressed = stroke(text);
        if (const auto command = KeyBindings::lookup(pressed, mac)) reached.insert(nameOf(*command));
        if (const auto command = MenuShortcuts::command(pressed, mac, false, false))
            reached.insert(nameOf(*command));
    }
    constexpr std::size_t withoutKeys = 12;
    EXPECT_EQ(reached.size(), FileCommands::count - withoutKeys);
    EXPECT_FALSE(reached.contains("newFile"));
    const auto inMenu = [](std::string_view text) {
        return MenuShortcuts::command(stroke(text), mac, false, false);
    };
    EXPECT_EQ(inMenu("shift+cmd+z"), FileCommand::redo);
    EXPECT_EQ(inMenu("ctrl+shift+z"), FileCommand::redo);
    EXPECT_EQ(inMenu("cmd+z"), FileCommand::undo);
    EXPECT_EQ(inMenu("ctrl+cmd+z"), std::nullopt);
    EXPECT_EQ(inMenu("z"), std::nullopt);
}

TEST(MacKeys, OfTheMenuMeanNothingElse) {
    for (const auto& text : everyStroke()) {
        const auto pressed = stroke(text);
        if (!MenuShortcuts::command(pressed, mac, false, false)) continue;
        EXPECT_FALSE(KeyBindings::lookup(pressed, mac)) << text;
        EXPECT_FALSE(MenuShortcuts::tabCommand(pressed, mac, false, false)) << text;
        EXPECT_FALSE(MenuShortcuts::command(pressed, windows, false, false)) << text;
        EXPECT_FALSE(MenuShortcuts::command(pressed, mac, true, false)) << text;
        EXPECT_FALSE(MenuShortcuts::command(pressed, mac, false, true)) << text;
    }
}

// ---- Where they mean it

TEST(Keys, ActInTheFileViewOnlyWhileNoTextIsEdited) {
    for (const auto preset : {windows, mac})
        for (const auto& text : everyStroke()) {
            const auto pressed = stroke(text);
            EXPECT_EQ(KeyBindings::command(pressed, preset, inView), KeyBindings::lookup(pressed, preset))
                << text;
            for (const auto& elsewhere :
                 {FocusContext{.hasSelection = true},
                  FocusContext{.fileViewHasFocus = true, .isEditingText = true, .hasSelection = true},
                  FocusContext{.fileViewHasFocus = true, .hasMarkedText = true, .hasSelection = true}})
                EXPECT_EQ(KeyBindings::command(pressed, preset, elsewhere), std::nullopt) << text;
        }
}

TEST(Keys, ThatActOnItemsNeedSome) {
    std::set<std::string> idle;
    for (const auto preset : {windows, mac})
        for (const auto& text : everyStroke()) {
            const auto command = KeyBindings::lookup(stroke(text), preset);
            if (command && !KeyBindings::command(stroke(text), preset, inViewWithNothingSelected))
                idle.insert(nameOf(*command));
        }
    EXPECT_THAT(idle, UnorderedElementsAreArray({"open", "rename", "moveToTrash", "deletePermanently", "copy",
                                                 "cut", "quickLook", "showInfo", "copyPath"}));
}

TEST(Keys, ThatActAnywhereInTheWindow) {
    const auto anywhere = [](KeyPreset preset, bool isEditing, bool isMarked) {
        return meanings([=](const KeyStroke& stroke) {
            return KeyBindings::windowCommand(stroke, preset, isEditing, isMarked);
        });
    };
    EXPECT_THAT(anywhere(windows, false, false),
                UnorderedElementsAreArray(
                    listed("backspace goBack, alt+left goBack, alt+right goForward, alt+up goUp, f5 refresh, "
                           "ctrl+shift+n newFolder, ctrl+t newTab, ctrl+w closeTab, ctrl+l focusAddress, "
                           "alt+d focusAddress, f3 focusSearch, ctrl+f focusSearch, ctrl+e focusSearch, "
                           "alt+shift+p toggleDetailsPane, ctrl+n newWindow")));
    EXPECT_THAT(anywhere(windows, true, false), IsEmpty());
    EXPECT_THAT(anywhere(windows, false, true), IsEmpty());
    EXPECT_THAT(anywhere(mac, false, false), IsEmpty());
}

TEST(Keys, ThatSwitchTabs) {
    const auto switching = [](KeyPreset preset, bool isEditing, bool isMarked) {
        return meanings([=](const KeyStroke& stroke) {
            return KeyBindings::tabCommand(stroke, preset, isEditing, isMarked);
        });
    };
    const auto tabs = listed("ctrl+tab next, ctrl+shift+tab previous, ctrl+1 tab 0, ctrl+2 tab 1, "
                             "ctrl+3 tab 2, ctrl+4 tab 3, ctrl+5 tab 4, ctrl+6 tab 5, ctrl+7 tab 6, "
                             "ctrl+8 tab 7, ctrl+9 last");
    EXPECT_THAT(switching(windows, false, false), UnorderedElementsAreArray(tabs));
    EXPECT_THAT(switching(windows, true, false), IsEmpty());
    EXPECT_THAT(switching(windows, false, true), IsEmpty());
    EXPECT_THAT(switching(mac, false, false), IsEmpty());
    // There the menu has them, the digits with both keys.
    const auto ofTheMenu = meanings(
        [](const KeyStroke& stroke) { return MenuShortcuts::tabCommand(stroke, mac, false, false); });
    EXPECT_THAT(ofTheMenu, ::testing::IsSupersetOf(tabs));
    EXPECT_EQ(ofTheMenu.size(), tabs.size() + 9);
    EXPECT_EQ(MenuShortcuts::tabCommand(stroke("cmd+9"), mac, false, false), TabCommand::last());
    EXPECT_EQ(MenuShortcuts::tabCommand(stroke("cmd+tab"), mac, false, false), std::nullopt);
    EXPECT_EQ(MenuShortcuts::tabCommand(stroke("ctrl+1"), windows, false, false), std::nullopt);
}

// ---- How they are shown

TEST(ShownShortcuts, AreTheTwoColumnsOfTheTable) {
    const auto shown = [](KeyPreset preset) {
        std::string lines;
        for (std::size_t i = 0; i < FileCommands::count; ++i) {
            const auto command = static_cast<FileCommand>(i);
            if (const auto text = KeyBindings::displayShortcut(command, preset))
                lines += nameOf(command) + " " + std::string(*text) + "\n";
        }
        return lines;
    };
    EXPECT_EQ(shown(windows),
              "open Enter\nrename F2\nmoveToTrash Delete\ndeletePermanently ⇧Delete\n"
              "quickLook Space\ngoUp ⌥↑\nrefresh F5\nnewFolder ⌃⇧N\nshowInfo ⌥Enter\nnewTab ⌃T\n"
              "closeTab ⌃W\nfocusAddress ⌃L\nfocusSearch ⌃F\ntoggleDetailsPane ⌥⇧P\n"
              "copyPath ⌃⇧C\nnewWindow ⌃N\nundo ⌃Z\nredo ⌃Y\n");
    EXPECT_EQ(shown(mac), "open ⌘↓\nrename ↩\nmoveToTrash ⌘⌫\ndeletePermanently ⌥⌘⌫\nquickLook Space\n"
                          "goUp ⌘↑\nundo ⌘Z\nredo ⇧⌘Z\n");
}

// ---- Long ways through a list

TEST(ListNavigation, TakesFourKeysPlainOrWithShift) {
    std::vector<std::string> taken;
    for (const auto& text : everyStroke())
        if (const auto move = ListNavigation::from(stroke(text)))
            taken.push_back(text + " " + std::to_string(std::to_underlying(move->key)) +
                            (move->extend ? " extend" : ""));
    EXPECT_THAT(taken, UnorderedElementsAreArray({"home 0", "end 1", "pageUp 2", "pageDown 3",
                                                  "shift+home 0 extend", "shift+end 1 extend",
                                                  "shift+pageUp 2 extend", "shift+pageDown 3 extend"}));
}

TEST(ListNavigation, EndsAtTheEdges) {
    using enum ListNavigationKey;
    struct Case {
        ListNavigationKey key;
        std::optional<std::size_t> current;
        std::size_t count, page;
        std::optional<std::size_t> target;
    };
    constexpr auto huge = static_cast<std::size_t>(-1);
    for (const auto& [key, current, count, page, target] : std::initializer_list<Case>{
             {home, 3, 5, 2, 0},
             {end, std::nullopt, 5, 2, 4},
             {pageDown, std::nullopt, 5, 10, 4},
             {pageDown, std::nullopt, 50, 10, 9},
             {pageDown, 5, 50, 10, 15},
             {pageDown, 5, 50, 0, 6},
             {pageDown, std::nullopt, 50, 0, 0},
             {pageDown, 5, 50, huge, 49},
             {pageUp, 3, 5, 10, 0},
             {pageUp, 30, 50, 10, 20},
             {pageUp, std::nullopt, 50, 10, 0},
             {pageUp, 3, 5, 0, 2},
             {home, 0, 0, 1, std::nullopt},
             {end, std::nullopt, 0, 1, std::nullopt},
             {pageUp, std::nullopt, 0, 1, std::nullopt},
             {pageDown, std::nullopt, 0, 1, std::nullopt},
         })
        EXPECT_EQ(ListNavigation::target(key, current, count, page), target)
            << std::to_underlying(key) << " in " << count << " by " << page;
}

} // namespace
} // namespace ombrel
