#include "ui/KeyStrokes.h"

#include "browser/KeyStrokes.h"

#include <QKeyEvent>

#include <gmock/gmock.h>

namespace ombrel {
namespace {

using testing::stroke;

KeyStroke pressed(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier, const QString& text = {}) {
    return KeyStrokes::of(QKeyEvent(QEvent::KeyPress, key, modifiers, text));
}

TEST(PressedKey, IsTheStrokeOfTheTables) {
    EXPECT_EQ(pressed(Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier), stroke("ctrl+shift+n"));
    EXPECT_EQ(pressed(Qt::Key_C, Qt::ControlModifier, QStringLiteral("\x03")), stroke("ctrl+c"));
    EXPECT_EQ(pressed(Qt::Key_C, Qt::NoModifier, QStringLiteral("C")), stroke("c")) << "Caps Lock";
    EXPECT_EQ(pressed(Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier), stroke("ctrl+shift+tab"));
    EXPECT_EQ(pressed(Qt::Key_Enter, Qt::KeypadModifier), stroke("enter"));
    EXPECT_EQ(pressed(Qt::Key_Return, Qt::AltModifier), stroke("alt+return"));
    EXPECT_EQ(pressed(Qt::Key_Space), stroke("space"));
    EXPECT_EQ(pressed(Qt::Key_Home, Qt::KeypadModifier), stroke("home"));
    EXPECT_EQ(pressed(Qt::Key_1, Qt::ControlModifier | Qt::KeypadModifier), stroke("ctrl+1"));
    EXPECT_EQ(pressed(Qt::Key_Down, Qt::MetaModifier | Qt::GroupSwitchModifier), stroke("cmd+down"));
    EXPECT_EQ(pressed(0x0421, Qt::ControlModifier), stroke("ctrl+с")) << "a letter of another script";
    EXPECT_EQ(pressed(Qt::Key_F4), KeyStroke());
    EXPECT_EQ(pressed(Qt::Key_unknown), KeyStroke());
}

TEST(ShownKeys, AreWordsInOneOrder) {
    const auto shown = [](FileCommand command, KeyPreset preset) {
        return KeyStrokes::shown(command, preset).toStdString();
    };
    using enum KeyPreset;
    EXPECT_EQ(shown(FileCommand::newFolder, windows), "Ctrl+Shift+N");
    EXPECT_EQ(shown(FileCommand::toggleDetailsPane, windows), "Alt+Shift+P");
    EXPECT_EQ(shown(FileCommand::deletePermanently, windows), "Shift+Delete");
    EXPECT_EQ(shown(FileCommand::showInfo, windows), "Alt+Enter");
    EXPECT_EQ(shown(FileCommand::refresh, windows), "F5");
    EXPECT_EQ(shown(FileCommand::copy, windows), "");
    EXPECT_EQ(shown(FileCommand::redo, mac), "Ctrl+Shift+Z");
    EXPECT_EQ(shown(FileCommand::rename, mac), "Enter");
    EXPECT_EQ(shown(FileCommand::moveToTrash, mac), "Ctrl+Backspace");
    EXPECT_EQ(shown(FileCommand::open, mac), "Ctrl+↓");
    EXPECT_EQ(shown(FileCommand::deletePermanently, mac), "Super+Alt+Backspace");
}

} // namespace
} // namespace ombrel
