#include "ui/WindowKeys.h"

#include "ui/KeyStrokes.h"

#include <QAbstractSpinBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextEdit>
#include <QWidget>

namespace ombrel {
namespace {

bool isTextEditor(const QWidget* widget) {
    const auto* const box = qobject_cast<const QComboBox*>(widget);
    return qobject_cast<const QLineEdit*>(widget) || qobject_cast<const QTextEdit*>(widget) ||
           qobject_cast<const QPlainTextEdit*>(widget) || qobject_cast<const QAbstractSpinBox*>(widget) ||
           (box && box->isEditable());
}

} // namespace

WindowKeys::WindowKeys(QWidget& window, const KeyRouter& router)
    : QObject(&window), window_(&window), router_(&router) {
    QCoreApplication::instance()->installEventFilter(this);
}

KeyRouter::Press WindowKeys::pressOf(const QKeyEvent& event) {
    return event.isAutoRepeat() ? KeyRouter::Press::repeated : KeyRouter::Press::first;
}

bool WindowKeys::eventFilter(QObject* watched, QEvent* event) {
    const auto type = event->type();
    if (type != QEvent::KeyPress && type != QEvent::InputMethod && type != QEvent::FocusIn) return false;
    const auto* const widget = qobject_cast<QWidget*>(watched);
    if (!widget || widget->window() != window_) return false;
    if (type == QEvent::FocusIn) {
        hasMarkedText_ = false;
        return false;
    }
    if (type == QEvent::InputMethod) {
        hasMarkedText_ = !static_cast<QInputMethodEvent*>(event)->preeditString().isEmpty();
        return false;
    }
    // What the focused widget does not want is offered to its parents too, and passes here again: what
    // decides is who has the focus.
    const auto& key = *static_cast<QKeyEvent*>(event);
    if (!router_->pressInWindow(KeyStrokes::of(key), pressOf(key), isTextEditor(window_->focusWidget()),
                                hasMarkedText_))
        return false;
    event->accept();
    return true;
}

} // namespace ombrel
