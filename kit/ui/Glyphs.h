#pragma once

#include <QColor>
#include <QRectF>

#include <cstdint>

class QPainter;

namespace ombrel {

/// The small line drawings of buttons, menus and badges.
enum class Glyph : std::uint8_t {
    back,
    forward,
    up,
    refresh,
    chevronLeft,
    chevronRight,
    chevronUp,
    chevronDown,
    collapsed, ///< crumbs that do not fit
    close,
    plus,
    home,
    search,
    check,
    dash, ///< some, but not all
    link,
    lock,
    warning,
    unplugged,
    gone,
    pause,
    play,
    replace, ///< one thing for another
    skip,
    list,
    keepBoth,
    gear,
    keyboard,
    globe,
    key,
    sync,
    newItem,
    cut,
    copy,
    paste,
    rename,
    trash,
    sort,
    grid,
    more,
    detailsPane,
    openItem,
    chain,
    zip,
    extract,
    folderPlus,
    folderUp,
    screen,
    eye,
    properties,
    undo,
    redo,
    terminal,
    newWindow,
    newTab,
    pin,
    selectAll,
    desktop,
    downloads,
    documents,
    pictures,
    music,
    videos,
    drive,
    stick, ///< a volume that comes and goes
    network,
    eject,
};

namespace Glyphs {

/// Draws a glyph as large as `box` (meant for 16 or 20 pixels), with round strokes of 1.5 pixels at that
/// size.
void draw(QPainter& painter, Glyph glyph, const QRectF& box, const QColor& color);

} // namespace Glyphs
} // namespace ombrel
