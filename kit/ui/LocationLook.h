#pragma once

#include "ui/Theme.h"

#include <QRectF>
#include <QString>

class QPainter;

namespace ombrel {

class BrowserModel;
class Location;

/// What the place that a pane shows is called, and its small picture.
namespace LocationLook {

/// As tabs and windows are called: the folder's name, or "Home".
[[nodiscard]] QString title(const BrowserModel& pane);
/// What a place is called where it stands alone, the results of a search with what was searched.
/// `pane` is any that could go there.
[[nodiscard]] QString nameOf(const Location& place, const BrowserModel& pane);
/// Draws a folder, or the glyph of the place in the colour `ink`.
void drawIcon(QPainter& painter, const Theme& theme, const BrowserModel& pane, const QRectF& box,
              ThemeColor ink);

} // namespace LocationLook
} // namespace ombrel
