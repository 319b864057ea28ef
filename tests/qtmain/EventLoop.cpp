#include "qtmain/EventLoop.h"

#include "base/Worker.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

namespace ombrel::testing {

bool runUntil(const std::function<bool()>& done, std::chrono::milliseconds limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    QTimer heartbeat; // what is waited for need not come with an event
    heartbeat.start(5);
    while (!done()) {
        if (std::chrono::steady_clock::now() > end) return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

bool runUntilQuiet(std::chrono::milliseconds limit) {
    const bool quiet = runUntil([] { return Worker::running() == 0; }, limit);
    // What the last worker posted is in the queue by now.
    QCoreApplication::processEvents();
    return quiet;
}

} // namespace ombrel::testing
