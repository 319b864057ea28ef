#pragma once

#include <QString>
#include <QTextDocument>

namespace ombrel {

/// A name for a tooltip: as it stands, even where it looks like markup.
[[nodiscard]] inline QString plainToolTip(const QString& text) {
    return Qt::mightBeRichText(text) ? text.toHtmlEscaped() : text;
}

} // namespace ombrel
