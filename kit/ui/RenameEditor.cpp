#include "ui/RenameEditor.h"

#include "ui/LocalizedText.h"
#include "ui/NameBubble.h"
#include "ui/Theme.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QPointer>
#include <QScopedValueRollback>
#include <QTimer>
#include <QValidator>

#include <algorithm>
#include <utility>

namespace ombrel {
namespace {

/// Keeps out what may stand in no name.
class NameValidator final : public QValidator {
public:
    NameValidator(std::function<void()> complain, QObject* parent)
        : QValidator(parent), complain_(std::move(complain)) {}
    State validate(QString& text, int&) const override {
        if (RenameRules::accepts(text.toStdString())) return Acceptable;
        complain_();
        return Invalid;
    }

private:
    std::function<void()> complain_;
};

} // namespace

RenameEditor::RenameEditor(QWidget* canvas, const Theme& theme, RenameRules rules, Commit commit)
    : QLineEdit(canvas), theme_(&theme), rules_(std::move(rules)), commit_(std::move(commit)),
      bubble_(new NameBubble(this, theme)) {
    setFrame(false);
    setFont(canvas->font());
    setAccessibleName(localized("ui.command.rename"));
    const int side = theme.size(ThemeSize::space4);
    setTextMargins(side, 0, side, 0);
    setText(QString::fromStdString(rules_.text()));
    setValidator(new NameValidator(
        [this] { bubble_->say(localized("error.op.invalidName.containsSlash"), NameBubble::Kind::error); },
        this));
    connect(this, &QLineEdit::textEdited, this, [this](const QString& typed) {
        const auto hint = rules_.hint(typed.toStdString());
        bubble_->say(hint ? localized(*hint) : QString(), NameBubble::Kind::hint);
        follow();
    });
    show();
    setFocus(Qt::OtherFocusReason);
    selectStem();
}

RenameEditor::~RenameEditor() {
    if (!bubble_) return;
    // The window may be about to delete it too.
    bubble_->hide();
    bubble_->deleteLater();
}

void RenameEditor::selectStem() {
    const std::string typed = text().toStdString();
    const std::size_t bytes = std::min(rules_.stemLength(typed), typed.size());
    setSelection(0, static_cast<int>(QString::fromUtf8(typed.data(), static_cast<qsizetype>(bytes)).size()));
}

void RenameEditor::place(const QRect& name, const QRect& room) {
    name_ = name;
    room_ = room;
    follow();
}

void RenameEditor::follow() {
    // The text stays where the name was: the field begins before it by its margin and the cursor's.
    const int margin = theme_->size(ThemeSize::space4) + theme_->size(ThemeSize::space2);
    const int text = fontMetrics().horizontalAdvance(this->text()) + theme_->size(ThemeSize::space8);
    const int width = std::clamp(text, std::min(name_.width(), room_.width()), room_.width()) + 2 * margin;
    QRect rect(0, 0, width, name_.height());
    const bool isCentred = alignment() & Qt::AlignHCenter;
    if (isCentred)
        rect.moveCenter(name_.center());
    else if (layoutDirection() == Qt::RightToLeft)
        rect.moveTopRight(name_.topRight() + QPoint(margin, 0));
    else
        rect.moveTopLeft(name_.topLeft() - QPoint(margin, 0));
    if (isCentred)
        rect.moveLeft(std::clamp(rect.left(), room_.left() - margin,
                                 std::max(room_.left() - margin, room_.right() + margin - width + 1)));
    setGeometry(rect);
    bubble_->follow();
}

// ---- Ending

void RenameEditor::commit(Then then) {
    if (isCommitting_) return;
    const auto verdict = rules_.judge(text().toStdString());
    switch (verdict.which) {
    case RenameRules::Verdict::Case::nothing: return end(then);
    case RenameRules::Verdict::Case::refused: return refuse(verdict.reason.value_or(Text()));
    case RenameRules::Verdict::Case::rename: break;
    }
    isCommitting_ = true;
    setReadOnly(true);
    commit_(text().toStdString(), [self = QPointer(this), then](const std::optional<Text>& refusal) {
        if (!self) return;
        self->isCommitting_ = false;
        self->setReadOnly(false);
        if (refusal) return self->refuse(*refusal);
        self->hasRenamed_ = true;
        self->end(then);
    });
}

void RenameEditor::refuse(const Text& reason) {
    selectStem();
    bubble_->say(localized(reason), NameBubble::Kind::error);
    // Where the focus has just gone elsewhere it comes back once that has settled.
    QTimer::singleShot(0, this, [this] {
        if (isVisible()) setFocus(Qt::OtherFocusReason);
    });
}

void RenameEditor::end(Then then) {
    isCommitting_ = true; // what follows is no reason to commit again
    bubble_->say({}, NameBubble::Kind::hint);
    Q_EMIT ended(then);
}

// ---- Events

bool RenameEditor::event(QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        auto* const key = static_cast<QKeyEvent*>(event);
        const bool isBack = key->key() == Qt::Key_Backtab;
        if (isBack || key->key() == Qt::Key_Tab) {
            commit(isBack ? Then::previous : Then::next);
            return true;
        }
    }
    return QLineEdit::event(event);
}

void RenameEditor::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter: commit(Then::rest); return event->accept();
    case Qt::Key_Escape:
        if (!isCommitting_) end(Then::rest);
        return event->accept();
    case Qt::Key_Up: home(event->modifiers() & Qt::ShiftModifier); return event->accept();
    case Qt::Key_Down: QLineEdit::end(event->modifiers() & Qt::ShiftModifier); return event->accept();
    default: QLineEdit::keyPressEvent(event); return event->accept();
    }
}

void RenameEditor::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    // Another window or the field's own menu is not elsewhere.
    const bool isPassing =
        event->reason() == Qt::ActiveWindowFocusReason || event->reason() == Qt::PopupFocusReason || hasMenu_;
    if (!isPassing) commit(Then::rest);
}

void RenameEditor::contextMenuEvent(QContextMenuEvent* event) {
    const QScopedValueRollback menu(hasMenu_, true);
    QLineEdit::contextMenuEvent(event);
}

void RenameEditor::paintEvent(QPaintEvent* event) {
    QLineEdit::paintEvent(event);
    QPainter painter(this);
    const int width = theme_->size(ThemeSize::focusRing);
    painter.setPen(
        QPen(theme_->color(ThemeColor::accent), width, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    const double half = width / 2.0;
    painter.drawRect(QRectF(rect()).adjusted(half, half, -half, -half));
}

} // namespace ombrel
