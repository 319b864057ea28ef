#include "ui/ChoiceCard.h"

#include "ui/OmbrelStyle.h"

#include <QKeyEvent>
#include <QPainter>
#include <QVBoxLayout>

#include <algorithm>

namespace ombrel {
namespace {

constexpr int captionFlags = Qt::TextWordWrap | Qt::AlignLeading | Qt::AlignTop;

} // namespace

ChoiceCard::ChoiceCard(const Theme& theme, Glyph glyph, const QString& title, QWidget* parent)
    : QAbstractButton(parent), theme_(&theme), glyph_(glyph) {
    setText(title);
    setAccessibleName(title);
    setFocusPolicy(Qt::StrongFocus);
    setProperty("drawsRing", true);
    setAttribute(Qt::WA_Hover);
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Minimum);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    connect(&theme, &Theme::changed, this, [this] {
        updateGeometry();
        update();
    });
}

void ChoiceCard::setCaption(const QString& caption, ThemeColor color) {
    caption_ = caption;
    captionColor_ = color;
    setAccessibleDescription(caption);
    updateGeometry();
    update();
}

QRect ChoiceCard::wordsIn(const QRect& card) const {
    const int glyph =
        theme_->size(ThemeSize::space16) + theme_->size(ThemeSize::glyph) + theme_->size(ThemeSize::space16);
    const int above = theme_->size(ThemeSize::space8), end = theme_->size(ThemeSize::space12);
    return layoutDirection() == Qt::RightToLeft ? card.adjusted(end, above, -glyph, -above)
                                                : card.adjusted(glyph, above, -end, -above);
}

QSize ChoiceCard::sizeHint() const {
    const int width = theme_->size(ThemeSize::dialogWidth);
    return {width, heightForWidth(width)};
}

QSize ChoiceCard::minimumSizeHint() const {
    return {theme_->size(ThemeSize::overlayIcon) * 2, theme_->size(ThemeSize::choiceCard)};
}

int ChoiceCard::heightForWidth(int width) const {
    constexpr int anyHeight = 10'000;
    const QRect words = wordsIn(QRect(0, 0, width, anyHeight));
    int height = anyHeight - words.height() + QFontMetrics(theme_->font(ThemeFont::bodyStrong)).height();
    if (!caption_.isEmpty()) {
        const QFontMetrics metrics(theme_->font(ThemeFont::caption));
        height += metrics.boundingRect(0, 0, words.width(), anyHeight, captionFlags, caption_).height();
    }
    return std::max(height, theme_->size(ThemeSize::choiceCard));
}

void ChoiceCard::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const int radius = theme_->size(ThemeSize::radiusField);
    const bool isHot = underMouse() || hasFocus();
    painter.setPen(QPen(theme_->color(ThemeColor::border), theme_->size(ThemeSize::hairline)));
    painter.setBrush(theme_->color(isDown() ? ThemeColor::pressed
                                   : isHot  ? ThemeColor::hover
                                            : ThemeColor::surface));
    constexpr double half = 0.5;
    painter.drawRoundedRect(QRectF(rect()).adjusted(half, half, -half, -half), radius, radius);
    if (hasFocus()) OmbrelStyle::drawInnerRing(painter, *theme_, rect(), radius);

    const QRect words = wordsIn(rect());
    const QFont strong = theme_->font(ThemeFont::bodyStrong);
    const QFontMetrics strongMetrics(strong), smallMetrics(theme_->font(ThemeFont::caption));
    const int captionHeight =
        caption_.isEmpty()
            ? 0
            : smallMetrics.boundingRect(0, 0, words.width(), height(), captionFlags, caption_).height();
    const int top = std::max(words.top(), (height() - strongMetrics.height() - captionHeight) / 2);
    const QRect line(words.left(), top, words.width(), strongMetrics.height());
    const int side = theme_->size(ThemeSize::glyph), inset = theme_->size(ThemeSize::space16);
    const int glyphLeft = layoutDirection() == Qt::RightToLeft ? width() - inset - side : inset;
    Glyphs::draw(painter, glyph_, QRect(glyphLeft, line.center().y() - side / 2 + 1, side, side),
                 theme_->color(ThemeColor::accent));
    painter.setFont(strong);
    painter.setPen(theme_->color(ThemeColor::text));
    painter.drawText(line, static_cast<int>(Qt::AlignVCenter | Qt::AlignLeading) | Qt::TextSingleLine,
                     strongMetrics.elidedText(text(), Qt::ElideRight, line.width()));
    painter.setFont(theme_->font(ThemeFont::caption));
    painter.setPen(theme_->color(captionColor_));
    painter.drawText(QRect(words.left(), line.bottom() + 1, words.width(), captionHeight), captionFlags,
                     caption_);
}

void ChoiceCard::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) return click();
    QAbstractButton::keyPressEvent(event);
}

void ChoiceCard::focusInEvent(QFocusEvent* event) {
    QAbstractButton::focusInEvent(event);
    update();
}

void ChoiceCard::focusOutEvent(QFocusEvent* event) {
    QAbstractButton::focusOutEvent(event);
    update();
}

ChoiceCards::ChoiceCards(const Theme& theme, QWidget* parent) : QWidget(parent), theme_(&theme) {
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins({});
    column->setSpacing(theme.size(ThemeSize::space8));
}

ChoiceCard* ChoiceCards::add(Glyph glyph, const QString& title, const QString& caption) {
    auto* const card = new ChoiceCard(*theme_, glyph, title, this);
    card->setCaption(caption);
    card->setFocusPolicy(cards_.isEmpty() ? Qt::StrongFocus : Qt::ClickFocus);
    card->installEventFilter(this);
    layout()->addWidget(card);
    cards_.push_back(card);
    if (!safe_) safe_ = card;
    return card;
}

void ChoiceCards::setSafe(ChoiceCard* card) {
    safe_ = card;
    makeCurrent(card);
}

void ChoiceCards::makeCurrent(const QWidget* current) {
    for (ChoiceCard* card : cards_)
        card->setFocusPolicy(card == current ? Qt::StrongFocus : Qt::ClickFocus);
}

bool ChoiceCards::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn) makeCurrent(qobject_cast<QWidget*>(watched));
    if (event->type() != QEvent::KeyPress) return QWidget::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key != Qt::Key_Up && key != Qt::Key_Down) return QWidget::eventFilter(watched, event);
    const auto here = cards_.indexOf(qobject_cast<ChoiceCard*>(watched));
    const auto next = std::clamp<qsizetype>(here + (key == Qt::Key_Down ? 1 : -1), 0, cards_.size() - 1);
    cards_[next]->setFocus(key == Qt::Key_Down ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    return true;
}

} // namespace ombrel
