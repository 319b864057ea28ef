#include "ui/FocusRing.h"

#include <QAbstractButton>
#include <QApplication>

namespace ombrel {

FocusRing::FocusRing(QWidget* window) : QFocusFrame(window), window_(window) {
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) { follow(now); });
}

void FocusRing::follow(QWidget* focused) {
    const bool isOurs = focused && focused->window() == window_ && qobject_cast<QAbstractButton*>(focused) &&
                        !focused->property("drawsRing").toBool();
    const bool byMouse = QApplication::mouseButtons() != Qt::NoButton;
    setWidget(isOurs && !byMouse ? focused : nullptr);
}

bool FocusRing::eventFilter(QObject* watched, QEvent* event) {
    const bool isTaken = QFocusFrame::eventFilter(watched, event);
    // A button that got the keyboard before it had its place was outside of what is shown, and its ring left.
    const bool isPlacing = event->type() == QEvent::Move || event->type() == QEvent::Resize;
    QWidget* const focused = widget();
    if (isPlacing && isHidden() && focused && focused->isVisible()) {
        setWidget(nullptr);
        setWidget(focused);
    }
    return isTaken;
}

} // namespace ombrel
