#include "browser/KeyBindings.h"

#include "browser/KeyTable.h"

#include <algorithm>

namespace ombrel::KeyBindings {
namespace {

using Code = KeyStroke::Code;
using Binding = KeyBinding<FileCommand>;
constexpr auto shift = KeyStroke::shift, control = KeyStroke::control, option = KeyStroke::option,
               commandKey = KeyStroke::command;
constexpr KeyStroke::Modifiers plain = 0;

constexpr Binding windowsTable[] = {
    {Code::returnKey, plain, FileCommand::open},
    {Code::keypadEnter, plain, FileCommand::open},
    {Code::returnKey, option, FileCommand::showInfo},
    {Code::space, plain, FileCommand::quickLook},
    {Code::backspace, plain, FileCommand::goBack},
    {Code::escape, plain, FileCommand::cancelCut},
    {Code::f5, plain, FileCommand::refresh},
    {Code::f3, plain, FileCommand::focusSearch},
    {Code::forwardDelete, plain, FileCommand::moveToTrash},
    {Code::forwardDelete, shift, FileCommand::deletePermanently},
    {Code::f2, plain, FileCommand::rename},
    {Code::leftArrow, option, FileCommand::goBack},
    {Code::rightArrow, option, FileCommand::goForward},
    {Code::upArrow, option, FileCommand::goUp},
    {"c", control, FileCommand::copy},
    {"x", control, FileCommand::cut},
    {"v", control, FileCommand::paste},
    {"a", control, FileCommand::selectAll},
    {"z", control, FileCommand::undo},
    {"y", control, FileCommand::redo},
    {"t", control, FileCommand::newTab},
    {"n", control, FileCommand::newWindow},
    {"w", control, FileCommand::closeTab},
    {"l", control, FileCommand::focusAddress},
    {"f", control, FileCommand::focusSearch},
    {"e", control, FileCommand::focusSearch},
    {"n", control | shift, FileCommand::newFolder},
    {"c", control | shift, FileCommand::copyPath},
    {"d", option, FileCommand::focusAddress},
    {"p", option | shift, FileCommand::toggleDetailsPane},
};

// Only what the menu's shortcuts do not carry; those are in MenuShortcuts.
constexpr Binding macTable[] = {
    {Code::returnKey, plain, FileCommand::rename},
    {Code::keypadEnter, plain, FileCommand::rename},
    {Code::downArrow, commandKey, FileCommand::open},
    {Code::upArrow, commandKey, FileCommand::goUp},
    {Code::backspace, commandKey, FileCommand::moveToTrash},
    {Code::forwardDelete, commandKey, FileCommand::moveToTrash},
    {Code::backspace, option | commandKey, FileCommand::deletePermanently},
    {Code::forwardDelete, option | commandKey, FileCommand::deletePermanently},
    {Code::escape, plain, FileCommand::cancelCut},
    {Code::space, plain, FileCommand::quickLook},
};

constexpr FileCommand windowCommands[] = {
    FileCommand::goBack,      FileCommand::goForward,
    FileCommand::goUp,        FileCommand::refresh,
    FileCommand::newFolder,   FileCommand::newTab,
    FileCommand::closeTab,    FileCommand::focusAddress,
    FileCommand::focusSearch, FileCommand::toggleDetailsPane,
    FileCommand::newWindow,
};

struct Shown {
    FileCommand command;
    std::string_view windows;
    std::string_view mac; // empty: none
};

constexpr Shown shownTable[] = {
    {FileCommand::open, "Enter", "⌘↓"},
    {FileCommand::rename, "F2", "↩"},
    {FileCommand::moveToTrash, "Delete", "⌘⌫"},
    {FileCommand::deletePermanently, "⇧Delete", "⌥⌘⌫"},
    {FileCommand::quickLook, "Space", "Space"},
    {FileCommand::goUp, "⌥↑", "⌘↑"},
    {FileCommand::refresh, "F5", ""},
    {FileCommand::newFolder, "⌃⇧N", ""},
    {FileCommand::showInfo, "⌥Enter", ""},
    {FileCommand::newTab, "⌃T", ""},
    {FileCommand::closeTab, "⌃W", ""},
    {FileCommand::focusAddress, "⌃L", ""},
    {FileCommand::focusSearch, "⌃F", ""},
    {FileCommand::toggleDetailsPane, "⌥⇧P", ""},
    {FileCommand::copyPath, "⌃⇧C", ""},
    {FileCommand::newWindow, "⌃N", ""},
    {FileCommand::undo, "⌃Z", "⌘Z"},
    {FileCommand::redo, "⌃Y", "⇧⌘Z"},
};

} // namespace

std::optional<FileCommand> lookup(const KeyStroke& stroke, KeyPreset preset) {
    if (preset == KeyPreset::windows) return meaningOf<FileCommand>(windowsTable, stroke);
    return meaningWithControlAsCommand<FileCommand>(macTable, stroke);
}

std::optional<FileCommand> command(const KeyStroke& stroke, KeyPreset preset, const FocusContext& context) {
    if (!context.fileViewHasFocus || context.isEditingText || context.hasMarkedText) return std::nullopt;
    const auto found = lookup(stroke, preset);
    if (found && FileCommands::keyNeedsSelection(*found) && !context.hasSelection) return std::nullopt;
    return found;
}

std::optional<FileCommand> windowCommand(const KeyStroke& stroke, KeyPreset preset, bool isEditingText,
                                         bool hasMarkedText) {
    if (preset != KeyPreset::windows || isEditingText || hasMarkedText) return std::nullopt;
    const auto found = lookup(stroke, preset);
    if (!found || std::ranges::find(windowCommands, *found) == std::end(windowCommands)) return std::nullopt;
    return found;
}

std::optional<TabCommand> tabCommand(const KeyStroke& stroke, KeyPreset preset, bool isEditingText,
                                     bool hasMarkedText) {
    if (preset != KeyPreset::windows || isEditingText || hasMarkedText) return std::nullopt;
    if (stroke.keyCode == Code::tab) {
        if (stroke.modifiers == control) return TabCommand::next();
        if (stroke.modifiers == (control | shift)) return TabCommand::previous();
        return std::nullopt;
    }
    if (stroke.modifiers != control || stroke.characters.size() != 1) return std::nullopt;
    const char digit = stroke.characters.front();
    if (digit == '9') return TabCommand::last();
    if (digit < '1' || digit > '9') return std::nullopt;
    return TabCommand::index(static_cast<std::size_t>(digit - '1'));
}

std::optional<std::string_view> displayShortcut(FileCommand command, KeyPreset preset) noexcept {
    const auto* const shown = std::ranges::find(shownTable, command, &Shown::command);
    if (shown == std::end(shownTable)) return std::nullopt;
    const auto text = preset == KeyPreset::windows ? shown->windows : shown->mac;
    return text.empty() ? std::nullopt : std::optional(text);
}

} // namespace ombrel::KeyBindings
