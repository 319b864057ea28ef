#include "ui/AddressField.h"

#include "ui/LocalizedText.h"
#include "ui/SuggestionList.h"

#include <QAccessible>
#include <QKeyEvent>
#include <QListView>
#include <QStringListModel>

namespace ombrel {

AddressField::AddressField(const Theme& theme, const FileURL& home, std::function<Base()> base,
                           QWidget* parent)
    : QLineEdit(parent), base_(std::move(base)), completion_(new AddressCompletion(home, this)),
      model_(new QStringListModel(this)), list_(new SuggestionList(theme, this)) {
    setFrame(false);
    setAccessibleName(localized("ui.accessible.address"));
    QPalette colors = palette();
    colors.setColor(QPalette::Base, Qt::transparent);
    setPalette(colors);
    QListView* const rows = &list_->rows();
    rows->setModel(model_);
    connect(rows, &QListView::clicked, this, [this, rows](const QModelIndex& index) {
        rows->setCurrentIndex(index);
        setText(index.data().toString());
        Q_EMIT accepted();
    });
    connect(this, &QLineEdit::textEdited, this, [this](const QString& text) {
        typed_ = text;
        const Base from = base_();
        completion_->complete(text, from.folder, from.filter);
        showSuggestions(); // those that are left, none of them picked
    });
    connect(completion_, &AddressCompletion::changed, this, &AddressField::showSuggestions);
}

void AddressField::begin(const QString& text) {
    end();
    setText(text);
    selectAll();
}

void AddressField::end() {
    completion_->cancel();
    list_->hide();
}

bool AddressField::isSuggesting() const {
    return list_->isVisible();
}

void AddressField::showSuggestions() {
    const QStringList& texts = completion_->suggestions();
    model_->setStringList(texts);
    // The only suggestion may be what stands there already.
    const bool isNews = !texts.isEmpty() && (texts.size() > 1 || texts.constFirst() != text());
    if (!isNews || !hasFocus()) return list_->hide();
    suggestions().clearSelection();
    suggestions().setCurrentIndex({});
    list_->showBelow(*parentWidget());
}

QListView& AddressField::suggestions() const noexcept {
    return list_->rows();
}

void AddressField::pick(int step) {
    const int count = model_->rowCount();
    const int from =
        suggestions().currentIndex().isValid() ? suggestions().currentIndex().row() : (step > 0 ? -1 : count);
    const int to = from + step;
    // Beyond either end stands what was typed.
    const bool isInside = to >= 0 && to < count;
    suggestions().setCurrentIndex(isInside ? model_->index(to) : QModelIndex());
    setText(isInside ? model_->index(to).data().toString() : typed_);
    QAccessibleValueChangeEvent change(this, text());
    QAccessible::updateAccessibility(&change);
}

void AddressField::take() {
    const QModelIndex picked =
        suggestions().currentIndex().isValid() ? suggestions().currentIndex() : model_->index(0);
    // On with the folders in it.
    setText(picked.data().toString() + QLatin1Char('/'));
    Q_EMIT textEdited(text());
}

bool AddressField::event(QEvent* event) {
    // Before Tab leaves the field.
    if (event->type() == QEvent::KeyPress && isSuggesting()) {
        const auto* const key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Tab && key->modifiers() == Qt::NoModifier) {
            take();
            return true;
        }
    }
    return QLineEdit::event(event);
}

void AddressField::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter: list_->hide(); return Q_EMIT accepted();
    case Qt::Key_Escape:
        if (isSuggesting()) {
            if (suggestions().currentIndex().isValid()) setText(typed_);
            return list_->hide();
        }
        return Q_EMIT cancelled();
    case Qt::Key_Down:
    case Qt::Key_Up:
        if (isSuggesting() && event->modifiers() == Qt::NoModifier)
            return pick(event->key() == Qt::Key_Down ? 1 : -1);
        break;
    default: break;
    }
    QLineEdit::keyPressEvent(event);
}

void AddressField::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    list_->hide();
}

void AddressField::resizeEvent(QResizeEvent* event) {
    QLineEdit::resizeEvent(event);
    if (isSuggesting()) showSuggestions();
}

} // namespace ombrel
