#include "ui/LocationLook.h"

#include "browser/BrowserModel.h"
#include "ui/FileIconDrawing.h"
#include "ui/Glyphs.h"
#include "ui/LocalizedText.h"

namespace ombrel {

QString LocationLook::title(const BrowserModel& pane) {
    return pane.currentURL() ? pane.title() : localized("ui.home.title");
}

void LocationLook::drawIcon(QPainter& painter, const Theme& theme, const BrowserModel& pane,
                            const QRectF& box, ThemeColor ink) {
    if (pane.currentURL())
        FileIconDrawing::draw(painter, theme, FileClass::folder, box);
    else
        Glyphs::draw(painter, Glyph::home, box, theme.color(ink));
}

} // namespace ombrel
