#include "ui/ApplicationIcon.h"

#include "services/DesktopApplication.h"
#include "ui/GlyphIcon.h"
#include "ui/Theme.h"

#include <QString>

namespace ombrel {

QIcon applicationIcon(const Theme& theme, const DesktopApplication& application) {
    const QString name = QString::fromStdString(application.icon);
    QIcon icon = name.startsWith(QLatin1Char('/')) ? QIcon(name) : QIcon::fromTheme(name);
    const int side = theme.size(ThemeSize::glyph);
    // An icon can be there by name and still have no picture.
    if (!icon.isNull() && !icon.pixmap(side, side).isNull()) return icon;
    return glyphIcon(theme, Glyph::newWindow, ThemeColor::textSecondary);
}

} // namespace ombrel
