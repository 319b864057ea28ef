#include "ui/NameLines.h"

#include <QFontMetrics>
#include <QTextLayout>
#include <QTextOption>

#include <climits>

namespace ombrel {
namespace {

/// Some screens full of the smallest cells.
constexpr std::size_t keptNames = 2000;

/// A name that breaks nowhere better breaks anywhere.
QStringList broken(const QString& name, const QFont& font, int width, int limit) {
    QTextLayout layout(name, font);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    QStringList lines;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        const QString rest = name.mid(line.textStart());
        if (lines.size() + 1 == limit) {
            lines << QFontMetrics(font).elidedText(rest, Qt::ElideMiddle, width);
            break;
        }
        lines << rest.left(line.textLength()).trimmed();
    }
    layout.endLayout();
    return lines;
}

} // namespace

void NameLines::setRoom(const QFont& font, int width) {
    if (font == font_ && width == width_) return;
    font_ = font;
    width_ = width;
    kept_.clear();
}

const QStringList& NameLines::of(const QString& name, int limit) {
    if (limit != limit_ || kept_.size() >= keptNames) kept_.clear();
    limit_ = limit;
    const auto [place, isNew] = kept_.try_emplace(name);
    if (isNew) place->second = broken(name, font_, width_, limit);
    return place->second;
}

QStringList NameLines::whole(const QString& name) const {
    return broken(name, font_, width_, INT_MAX);
}

} // namespace ombrel
