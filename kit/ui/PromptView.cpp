#include "ui/PromptView.h"

#include "ui/Theme.h"

#include <QAbstractButton>
#include <QKeyEvent>
#include <QTimer>

namespace ombrel {

void PromptView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (takesAnswers_) return;
    for (auto* const button : findChildren<QAbstractButton*>())
        button->installEventFilter(this);
    QTimer::singleShot(Theme::delay(ThemeDelay::promptAnswers), this, [this] { takesAnswers_ = true; });
}

bool PromptView::eventFilter(QObject* watched, QEvent* event) {
    if (!takesAnswers_) {
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
