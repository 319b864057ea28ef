// What wheels and touchpads do in a file view.
#include "ui/FileView.h"

#include <QScrollBar>
#include <QWheelEvent>

#include <cstdlib>

namespace ombrel {

void FileView::zoomByWheel(const QWheelEvent& event) {
    constexpr int notch = 120;
    zoomRest_ += event.angleDelta().y();
    for (; std::abs(zoomRest_) >= notch; zoomRest_ -= zoomRest_ > 0 ? notch : -notch)
        Q_EMIT zoomRequested(zoomRest_ > 0 ? 1 : -1, event.position().toPoint());
}

void FileView::wheelEvent(QWheelEvent* event) {
    touch();
    if (event->modifiers() & Qt::ControlModifier) {
        zoomByWheel(*event);
        return event->accept();
    }
    if (event->modifiers() & (Qt::ShiftModifier | Qt::AltModifier) ||
        (event->pixelDelta().isNull() && event->angleDelta().y() == 0))
        return QAbstractScrollArea::wheelEvent(event);
    if (const QPoint pixels = event->pixelDelta(); !pixels.isNull()) {
        auto* const sideways = horizontalScrollBar();
        sideways->setValue(sideways->value() + (isRightToLeft() ? pixels.x() : -pixels.x()));
        scrollTo(offset() - pixels.y());
    } else {
        constexpr int notch = 120, stepsPerNotch = 3;
        wheelRest_ += event->angleDelta().y() * scrollStep() * stepsPerNotch;
        scrollTo(offset() - wheelRest_ / notch);
        wheelRest_ %= notch;
    }
    event->accept();
}

} // namespace ombrel
