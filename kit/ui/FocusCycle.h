#pragma once

#include <cstdint>
#include <vector>

class QWidget;

namespace ombrel::FocusCycle {

enum class Direction : std::uint8_t { forward, backward };

/// Gives the keyboard to the stop after, or before, the one that has it; past the last one it goes on with
/// the first. Stops in which nothing can take it now are passed over. One in which something had it before
/// gets it there again, when it says so by a focus proxy. What stands in one parent with a stop, short of the
/// window, belongs to it: to the first where there are several.
void advance(const std::vector<QWidget*>& stops, Direction direction);

/// Gives the keyboard to what is first in `area`. False when nothing there can take it now.
bool enter(QWidget& area);

} // namespace ombrel::FocusCycle
