#pragma once

#include "ui/FileView.h"

class QImage;
class QPainter;

/// What rows and cells of file views have in common when they are painted.
namespace ombrel::ItemPainting {

inline constexpr double cutOpacity = 0.5;
inline constexpr double hiddenOpacity = 0.6;

/// How opaque an item's picture is.
[[nodiscard]] double opacityOf(const RowFacts::Facts& facts);

/// The ground that shows whether an item is hovered, selected or a target, and the ring of the current one.
void background(QPainter& painter, const Theme& theme, const QRect& rect, const FileView::RowState& state);
/// The colour of an item's name.
[[nodiscard]] QColor nameColor(const Theme& theme, const RowFacts::Facts& facts,
                               const FileView::RowState& state);
/// A box of the theme's size with its top left corner at `at`.
void checkBox(QPainter& painter, const FileView& view, QPoint at, bool isChecked);

/// A thumbnail, in the middle of `box`, with its outline. Answers where it is.
QRect thumbnail(QPainter& painter, const Theme& theme, const QImage& image, const QRect& box);
/// The mark of a thumbnail that stands for something that plays.
void playBadge(QPainter& painter, const Theme& theme, const QRect& thumbnail);

} // namespace ombrel::ItemPainting
