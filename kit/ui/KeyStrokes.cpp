#include "ui/KeyStrokes.h"

#include "browser/KeyBindings.h"
#include "ui/LocalizedText.h"

#include <QChar>
#include <QKeyEvent>
#include <QStringList>

#include <utility>

namespace ombrel::KeyStrokes {
namespace {

using Code = KeyStroke::Code;

Code codeOf(int key) {
    switch (key) {
    case Qt::Key_Space: return Code::space;
    case Qt::Key_Backspace: return Code::backspace;
    case Qt::Key_Tab:
    case Qt::Key_Backtab: return Code::tab;
    case Qt::Key_Return: return Code::returnKey;
    case Qt::Key_Enter: return Code::keypadEnter;
    case Qt::Key_Escape: return Code::escape;
    case Qt::Key_Home: return Code::home;
    case Qt::Key_End: return Code::end;
    case Qt::Key_Left: return Code::leftArrow;
    case Qt::Key_Up: return Code::upArrow;
    case Qt::Key_Right: return Code::rightArrow;
    case Qt::Key_Down: return Code::downArrow;
    case Qt::Key_PageUp: return Code::pageUp;
    case Qt::Key_PageDown: return Code::pageDown;
    case Qt::Key_F2: return Code::f2;
    case Qt::Key_F3: return Code::f3;
    case Qt::Key_F5: return Code::f5;
    case Qt::Key_Delete: return Code::forwardDelete;
    default: return Code::none;
    }
}

/// Qt names keys by the upper-case character that they give, and other keys beyond the last character.
std::string charactersOf(int key) {
    const auto character = static_cast<char32_t>(key);
    if (character < U' ' || character > QChar::LastValidCodePoint) return {};
    return QString::fromUcs4(&character, 1).toLower().toStdString();
}

struct Word {
    QChar symbol;
    std::string_view key;
};

// Modifiers first, in the order in which they are written here.
constexpr Word modifierWords[] = {
    {u'⌃', "ui.key.control"}, {u'⌘', "ui.key.control"}, {u'⌥', "ui.key.option"}, {u'⇧', "ui.key.shift"}};
constexpr Word keyWords[] = {{u'⌫', "ui.key.backspace"}, {u'↩', "ui.key.enter"}};

struct Name {
    QStringView name;
    std::string_view key;
};
constexpr Name keyNames[] = {
    {u"Enter", "ui.key.enter"}, {u"Delete", "ui.key.delete"}, {u"Space", "ui.key.space"}};

QString wordOf(const QString& key) {
    for (const auto& [symbol, text] : keyWords)
        if (key == symbol) return localized(text);
    for (const auto& [name, text] : keyNames)
        if (key == name) return localized(text);
    return key;
}

} // namespace

KeyStroke of(const QKeyEvent& event) {
    KeyStroke stroke{.keyCode = codeOf(event.key()), .characters = charactersOf(event.key())};
    const auto held = event.modifiers();
    if (held & Qt::ShiftModifier) stroke.modifiers |= KeyStroke::shift;
    if (held & Qt::ControlModifier) stroke.modifiers |= KeyStroke::control;
    if (held & Qt::AltModifier) stroke.modifiers |= KeyStroke::option;
    if (held & Qt::MetaModifier) stroke.modifiers |= KeyStroke::command;
    return stroke;
}

QString inWords(std::string_view symbols) {
    QString rest = QString::fromUtf8(symbols.data(), static_cast<qsizetype>(symbols.size()));
    QStringList words;
    for (const auto& [symbol, key] : modifierWords) {
        if (!rest.contains(symbol)) continue;
        rest.remove(symbol);
        words << localized(key);
    }
    words << wordOf(rest);
    return words.join(u'+');
}

QString shown(FileCommand command, KeyPreset preset) {
    const auto symbols = KeyBindings::displayShortcut(command, preset);
    if (!symbols) return {};
    // Control with Alt and Backspace ends the session on some desktops: only the other way is told.
    if (preset == KeyPreset::mac && command == FileCommand::deletePermanently)
        return QStringList{localized("ui.key.super"), inWords("⌥⌫")}.join(u'+');
    return inWords(*symbols);
}

} // namespace ombrel::KeyStrokes
