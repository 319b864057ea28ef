#pragma once

#include "browser/FileCommand.h"
#include "browser/KeyStroke.h"
#include "services/KeyPreset.h"

#include <QString>

#include <string_view>

class QKeyEvent;

namespace ombrel::KeyStrokes {

/// The stroke that a press of a key stands for. The Super key counts as Command.
[[nodiscard]] KeyStroke of(const QKeyEvent& event);

/// A shortcut in the symbols of the keys ("⌃⇧N") as people here read it ("Ctrl+Shift+N"). Symbols of both
/// Control and Command become "Ctrl", because both give the command.
[[nodiscard]] QString inWords(std::string_view symbols);

/// The shortcut that is shown beside a command, in words; empty where none is.
[[nodiscard]] QString shown(FileCommand command, KeyPreset preset);

} // namespace ombrel::KeyStrokes
