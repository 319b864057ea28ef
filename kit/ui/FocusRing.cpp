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

} // namespace ombrel
