#include "ui/LocationLook.h"

#include "browser/AddressCrumbs.h"
#include "browser/BrowserModel.h"
#include "ui/FileIconDrawing.h"
#include "ui/Glyphs.h"
#include "ui/LocalizedText.h"

#include <utility>

namespace ombrel {

QString LocationLook::title(const BrowserModel& pane) {
    return pane.isHome() ? nameOf(pane.location(), pane) : pane.title();
}

QString LocationLook::nameOf(const Location& place, const BrowserModel& pane) {
    const auto& folder = place.folderURL();
    switch (place.which()) {
    case Location::Case::home: return localized("ui.home.title");
    case Location::Case::folder:
        return QString::fromStdString(AddressCrumbs::titleOf(*folder, pane.services()));
    case Location::Case::search:
        return localized("ui.search.results", {isolated(place.searchText()),
                                               isolated(AddressCrumbs::titleOf(*folder, pane.services()))});
    }
    std::unreachable();
}

void LocationLook::drawIcon(QPainter& painter, const Theme& theme, const BrowserModel& pane,
                            const QRectF& box, ThemeColor ink) {
    if (pane.showsSearch())
        Glyphs::draw(painter, Glyph::search, box, theme.color(ink));
    else if (pane.currentURL())
        FileIconDrawing::draw(painter, theme, FileClass::folder, box);
    else
        Glyphs::draw(painter, Glyph::home, box, theme.color(ink));
}

} // namespace ombrel
