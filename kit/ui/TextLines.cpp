#include "ui/TextLines.h"

#include <QFontMetrics>
#include <QPainter>
#include <QTextOption>

#include <utility>

namespace ombrel {
namespace {

/// Those of a large screen; as many older ones are kept beside them.
constexpr std::size_t keptLines = 600;

QString fitted(const QString& text, const QFont& font, Qt::TextElideMode elision, int width) {
    return elision == Qt::ElideNone ? text : QFontMetrics(font).elidedText(text, elision, width);
}

} // namespace

void TextLines::draw(QPainter& painter, const QRect& rect, Qt::Alignment alignment, const QString& text,
                     Qt::TextElideMode elision) {
    if (painter.layoutDirection() == Qt::RightToLeft) {
        painter.drawText(rect, static_cast<int>(alignment | Qt::AlignVCenter) | Qt::TextSingleLine,
                         fitted(text, painter.font(), elision, rect.width()));
        return;
    }
    const QStaticText& line = shaped({text, rect.width(), elision}, painter);
    const QSizeF size = line.size();
    qreal left = rect.left();
    if (alignment.testFlag(Qt::AlignRight)) left += rect.width() - size.width();
    if (alignment.testFlag(Qt::AlignHCenter)) left += (rect.width() - size.width()) / 2;
    painter.drawStaticText(QPointF(left, rect.top() + (rect.height() - size.height()) / 2), line);
}

const QStaticText& TextLines::shaped(const Line& line, const QPainter& painter) {
    if (painter.font() != font_) {
        font_ = painter.font();
        recent_.clear();
        older_.clear();
    }
    if (const auto known = recent_.find(line); known != recent_.end()) return known->second;
    if (recent_.size() >= keptLines) {
        older_ = std::move(recent_);
        recent_ = {};
    }
    if (auto known = older_.extract(line)) return recent_.insert(std::move(known)).position->second;
    QTextOption option(Qt::AlignLeft | Qt::AlignAbsolute);
    option.setWrapMode(QTextOption::NoWrap);
    option.setTextDirection(Qt::LeftToRight);
    QStaticText text(fitted(line.text, font_, line.elision, line.width));
    text.setTextFormat(Qt::PlainText);
    text.setTextOption(option);
    text.prepare(painter.transform(), font_);
    return recent_.emplace(line, std::move(text)).first->second;
}

} // namespace ombrel
