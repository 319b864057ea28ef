#include "ui/PromptView.h"

#include "ui/Theme.h"

#include <QAbstractButton>
#include <QKeyEvent>

namespace ombrel {

bool PromptView::takesAnswers() const {
    return shown_.isValid() && shown_.hasExpired(Theme::delay(ThemeDelay::promptAnswers).count());
}

void PromptView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (shown_.isValid()) return;
    shown_.start();
    for (auto* const button : findChildren<QAbstractButton*>())
        button->installEventFilter(this);
}

bool PromptView::eventFilter(QObject* watched, QEvent* event) {
    if (!takesAnswers()) {
        switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick: return true;
        case QEvent::KeyPress:
            switch (static_cast<QKeyEvent*>(event)->key()) {
            case Qt::Key_Space:
            case Qt::Key_Select:
            case Qt::Key_Return:
            case Qt::Key_Enter: return true;
            default: break;
            }
            break;
        default: break;
        }
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace ombrel
