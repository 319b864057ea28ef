#include "window/probe/ProbeWindow.h"

#include "base/PathInput.h"
#include "base/Worker.h"
#include "services/FileBookmarkStore.h"
#include "services/SystemSecurityScope.h"
#include "ui/DesktopAppearance.h"
#include "ui/OmbrelStyle.h"

#include <QEvent>
#include <QEventLoop>
#include <QWheelEvent>

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace ombrel::bench {
namespace {

using Clock = std::chrono::steady_clock;

constexpr auto patience = std::chrono::minutes(1);

} // namespace

ProbeApplication& application() {
    return *static_cast<ProbeApplication*>(QCoreApplication::instance());
}

void failProbe(const char* what) {
    std::fprintf(stderr, "probe: %s\n", what);
    std::_Exit(1);
}

void runUntil(const std::function<bool()>& done) {
    const auto end = Clock::now() + patience;
    while (!done()) {
        if (Clock::now() > end) failProbe("what was waited for does not come");
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

double millisecondsSince(Clock::time_point began) {
    return std::chrono::duration<double, std::milli>(Clock::now() - began).count();
}

ProbeWindow::ProbeWindow(const FileURL& folder)
    : theme_(DesktopAppearance::fromPalette(QGuiApplication::palette())),
      services_(std::make_unique<AppServices>(
          std::make_unique<AppSettings>(),
          std::make_unique<AccessManager>(std::make_shared<SystemSecurityScope>(),
                                          std::make_shared<FileBookmarkStore>()),
          std::make_unique<VolumeMonitor>(), std::make_unique<ClipboardService>(pasteboard_),
          FileOperationService(), std::make_unique<OperationCenter>())) {
    QApplication::setStyle(new OmbrelStyle(theme_));
    QApplication::setPalette(theme_.palette());
    services_->start();
    window_ = std::make_unique<BrowserWindow>(BrowserWindow::Setting{
        .theme = theme_,
        .services = *services_,
        .home = PathInput::userHomeDirectory(),
        .startingAt = folder,
    });
    window_->setAttribute(Qt::WA_DeleteOnClose, false);
    window_->resize(theme_.size(ThemeSize::windowWidth), theme_.size(ThemeSize::windowHeight));
    window_->show();
    window_->activateWindow();
    runUntil([this] { return window_->isActiveWindow() && isLoaded(); });
    settle();
}

ProbeWindow::~ProbeWindow() {
    window_.reset();
    services_->stop();
}

bool ProbeWindow::isLoaded() const {
    if (model().listingState().which() == ListingState::Case::failed) failProbe("a listing failed");
    return model().listingState() == ListingState::Case::loaded;
}

void ProbeWindow::settle() const {
    Worker::waitUntilNoneRuns(patience);
    QCoreApplication::processEvents();
    Worker::waitUntilNoneRuns(patience);
    QCoreApplication::processEvents();
    (void)application().takeLongest();
    (void)application().takeTotal();
}

double Frames::wheel(int notches) {
    constexpr int notch = 120;
    return costOf([this, notches] {
        QWidget* const viewport = view_->viewport();
        const QPointF at(viewport->rect().center());
        QWheelEvent event(at, viewport->mapToGlobal(at), QPoint(), QPoint(0, -notches * notch), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(viewport, &event);
    });
}

bool Frames::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Paint) ++count_;
    return QObject::eventFilter(watched, event);
}

} // namespace ombrel::bench
