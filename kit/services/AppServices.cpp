#include "services/AppServices.h"

#include <QCoreApplication>

#include <utility>

namespace ombrel {

AppServices::AppServices(std::unique_ptr<AppSettings> settings, std::unique_ptr<AccessManager> access,
                         std::unique_ptr<VolumeMonitor> volumes, std::unique_ptr<ClipboardService> clipboard,
                         FileOperationService operations, std::unique_ptr<OperationCenter> center,
                         QObject* parent)
    : QObject(parent), settings_(std::move(settings)), access_(std::move(access)),
      volumes_(std::move(volumes)), clipboard_(std::move(clipboard)), operations_(std::move(operations)),
      center_(std::move(center)), undo_(std::make_unique<FileUndoHistory>(*center_, operations_)),
      treeLimiter_(std::make_shared<ConcurrencyLimiter>(mostTreeListings)) {
    access_->setTelemetry([telemetry = telemetry_](int counter) { telemetry->count(counter); });
    connect(volumes_.get(), &VolumeMonitor::observed, this, [this](const VolumeMonitor::Event& event) {
        lastVolumeEvent_ = event;
        const QPointer guard(this);
        Q_EMIT lastVolumeEventChanged();
        if (guard && event.kind == VolumeMonitor::Event::Kind::mounted) access_->retryUnavailable();
    });
}

AppServices::~AppServices() {
    stop();
}

void AppServices::start() {
    access_->restore();
    volumes_->start();
    observeActivation();
    if (!inhibitor_) inhibitor_ = std::make_unique<SleepInhibitor>(*center_);
    if (progressWindow_ || !makeProgressWindow) return;
    progressWindow_ = makeProgressWindow(*center_);
    center_->setPresenter(progressWindow_.get());
}

void AppServices::stop() {
    volumes_->stop();
    disconnect(activationObserver_);
    activationObserver_ = {};
}

/// The signal is the window system's, which programs without windows do not link.
void AppServices::observeActivation() {
    const auto* const application = QCoreApplication::instance();
    if (activationObserver_ || !application) return;
    const char* const signal = "applicationStateChanged(Qt::ApplicationState)";
    if (application->metaObject()->indexOfSignal(signal) < 0) return;
    activationObserver_ = connect(application, SIGNAL(applicationStateChanged(Qt::ApplicationState)), this,
                                  SLOT(takeApplicationState(Qt::ApplicationState)));
}

void AppServices::takeApplicationState(Qt::ApplicationState state) {
    if (state == Qt::ApplicationActive) volumes_->refreshCapacities();
}

void AppServices::setReadOnlyDiagnostics(bool on) {
    isReadOnlyDiagnostics_ = on;
    center_->setRefusal(on ? std::optional(FileOperationError(FileOperationError::Case::permissionDenied))
                           : std::nullopt);
}

void AppServices::setUpdater(SoftwareUpdater* updater) {
    if (updater_ == updater) return;
    updater_ = updater;
    Q_EMIT updaterChanged();
}

void AppServices::requestNewWindow(QObject* tabs) {
    if (tabs) activeWindowTabs_ = tabs;
    if (openNewWindow) openNewWindow();
}

} // namespace ombrel
