#include "browser/MenuShortcuts.h"

#include "browser/KeyTable.h"

namespace ombrel::MenuShortcuts {
namespace {

using Code = KeyStroke::Code;
constexpr auto shift = KeyStroke::shift, control = KeyStroke::control, option = KeyStroke::option,
               commandKey = KeyStroke::command;

constexpr KeyBinding<FileCommand> commandTable[] = {
    {"c", commandKey, FileCommand::copy},
    {"x", commandKey, FileCommand::cut},
    {"v", commandKey, FileCommand::paste},
    {"a", commandKey, FileCommand::selectAll},
    {"z", commandKey, FileCommand::undo},
    {"z", shift | commandKey, FileCommand::redo},
    {"t", commandKey, FileCommand::newTab},
    {"w", commandKey, FileCommand::closeTab},
    {"n", commandKey, FileCommand::newWindow},
    {"n", shift | commandKey, FileCommand::newFolder},
    {"[", commandKey, FileCommand::goBack},
    {"]", commandKey, FileCommand::goForward},
    {"r", commandKey, FileCommand::refresh},
    {"i", commandKey, FileCommand::showInfo},
    {"l", commandKey, FileCommand::focusAddress},
    {"f", commandKey, FileCommand::focusSearch},
    {"p", shift | commandKey, FileCommand::toggleDetailsPane},
    {"c", option | commandKey, FileCommand::copyPath},
};

// Switching tabs has Control itself, because Command with Tab belongs to the desktop.
constexpr KeyBinding<TabCommand> tabTable[] = {
    {Code::tab, control, TabCommand::next()}, {Code::tab, control | shift, TabCommand::previous()},
    {"1", commandKey, TabCommand::index(0)},  {"2", commandKey, TabCommand::index(1)},
    {"3", commandKey, TabCommand::index(2)},  {"4", commandKey, TabCommand::index(3)},
    {"5", commandKey, TabCommand::index(4)},  {"6", commandKey, TabCommand::index(5)},
    {"7", commandKey, TabCommand::index(6)},  {"8", commandKey, TabCommand::index(7)},
    {"9", commandKey, TabCommand::last()},
};

} // namespace

std::optional<FileCommand> command(const KeyStroke& stroke, KeyPreset preset, bool isEditingText,
                                   bool hasMarkedText) {
    if (preset != KeyPreset::mac || isEditingText || hasMarkedText) return std::nullopt;
    return meaningWithControlAsCommand<FileCommand>(commandTable, stroke);
}

std::optional<TabCommand> tabCommand(const KeyStroke& stroke, KeyPreset preset, bool isEditingText,
                                     bool hasMarkedText) {
    if (preset != KeyPreset::mac || isEditingText || hasMarkedText) return std::nullopt;
    return meaningWithControlAsCommand<TabCommand>(tabTable, stroke);
}

} // namespace ombrel::MenuShortcuts
