#include "ui/ValueText.h"

#include "ui/GlyphIcon.h"
#include "ui/LocalizedText.h"
#include "ui/OmbrelStyle.h"
#include "ui/Theme.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QMimeData>
#include <QPainter>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextLayout>
#include <QTextOption>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace ombrel {
namespace {

constexpr auto wrapping = QTextOption::WrapAtWordBoundaryOrAnywhere;

} // namespace

ValueText::ValueText(const Theme& theme, ThemeFont font, QWidget* parent)
    : QTextEdit(parent), theme_(&theme), font_(font) {
    setReadOnly(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setFocusPolicy(Qt::StrongFocus);
    setTabChangesFocus(true);
    setUndoRedoEnabled(false);
    setAcceptDrops(false);
    setFrameShape(QFrame::NoFrame);
    setWordWrapMode(wrapping);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setAutoFillBackground(false);
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    connect(&theme, &Theme::changed, this, &ValueText::takeLook);
    takeLook();
}

void ValueText::takeLook() {
    setFont(theme_->font(font_));
    document()->setDocumentMargin(theme_->size(ThemeSize::factInset));
    QPalette colors = theme_->palette();
    colors.setColor(QPalette::Text, theme_->color(color_));
    setPalette(colors);
    updateGeometry();
}

void ValueText::setColor(ThemeColor color) {
    if (color == color_) return;
    color_ = color;
    takeLook();
}

void ValueText::setValue(const QString& name, const QString& text, const QString& copied) {
    setAccessibleName(name);
    copied_ = copied;
    if (text == text_) return;
    text_ = text;
    // Lines of one paragraph.
    QString shown = text;
    setPlainText(shown.replace(QLatin1Char('\n'), QChar::LineSeparator));
    updateGeometry();
}

int ValueText::heightForWidth(int width) const {
    QString shown = text_;
    QTextLayout layout(shown.replace(QLatin1Char('\n'), QChar::LineSeparator), font());
    QTextOption option;
    option.setWrapMode(wrapping);
    layout.setTextOption(option);
    const double inset = document()->documentMargin();
    double height = 2 * inset;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(std::max(1.0, width - 2 * inset));
        height += line.height();
    }
    layout.endLayout();
    return static_cast<int>(std::ceil(height));
}

QSize ValueText::sizeHint() const {
    return {theme_->size(ThemeSize::buttonMinimumWidth), minimumSizeHint().height()};
}

QSize ValueText::minimumSizeHint() const {
    const int inset = theme_->size(ThemeSize::factInset);
    return {theme_->size(ThemeSize::space28), fontMetrics().height() + 2 * inset};
}

void ValueText::contextMenuEvent(QContextMenuEvent* event) {
    auto* const menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    auto* const copying = menu->addAction(glyphIcon(*theme_, Glyph::copy), localized("ui.command.copy"));
    copying->setEnabled(!text_.isEmpty());
    connect(copying, &QAction::triggered, this, &ValueText::copyFromMenu);
    const bool isByKeyboard = event->reason() == QContextMenuEvent::Keyboard;
    menu->popup(isByKeyboard ? mapToGlobal(rect().bottomLeft()) : event->globalPos());
    event->accept();
}

/// What is selected, or all of it.
void ValueText::copyFromMenu() {
    const QTextCursor before = textCursor();
    if (!before.hasSelection()) selectAll();
    copy();
    setTextCursor(before);
}

void ValueText::focusInEvent(QFocusEvent* event) {
    QTextEdit::focusInEvent(event);
    if (event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason) selectAll();
}

void ValueText::focusOutEvent(QFocusEvent* event) {
    QTextEdit::focusOutEvent(event);
    // Two values that look selected would not say which one is copied.
    if (event->reason() == Qt::PopupFocusReason || event->reason() == Qt::ActiveWindowFocusReason) return;
    QTextCursor cursor = textCursor();
    cursor.clearSelection();
    setTextCursor(cursor);
}

void ValueText::paintEvent(QPaintEvent* event) {
    QTextEdit::paintEvent(event);
    if (!hasFocus()) return;
    QPainter painter(viewport());
    OmbrelStyle::drawInnerRing(painter, *theme_, viewport()->rect(), theme_->size(ThemeSize::radiusCheckBox));
}

void ValueText::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

QMimeData* ValueText::createMimeDataFromSelection() const {
    const QTextCursor cursor = textCursor();
    QString text = cursor.selectedText();
    const bool isWhole = text.size() == document()->characterCount() - 1;
    text.replace(QChar::LineSeparator, QLatin1Char('\n'));
    auto* const contents = new QMimeData;
    contents->setText(isWhole && !copied_.isEmpty() ? copied_ : text);
    return contents;
}

} // namespace ombrel
