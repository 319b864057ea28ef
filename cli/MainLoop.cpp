#include "cli/MainLoop.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QEventLoop>

namespace ombrel::cli {

bool runUntil(const std::function<bool()>& done, const std::stop_token& stop) {
    const std::stop_callback wake(
        stop, [dispatcher = QAbstractEventDispatcher::instance()] { dispatcher->wakeUp(); });
    while (!done()) {
        if (stop.stop_requested()) return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

} // namespace ombrel::cli
