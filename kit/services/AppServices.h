#pragma once

#include "listing/ConcurrencyLimiter.h"
#include "listing/DirectoryProvider.h"
#include "operations/FileOperationService.h"
#include "services/AccessManager.h"
#include "services/AppSettings.h"
#include "services/ApplicationLauncher.h"
#include "services/ClipboardService.h"
#include "services/FileUndoHistory.h"
#include "services/OperationCenter.h"
#include "services/RecentAddresses.h"
#include "services/SleepInhibitor.h"
#include "services/SoftwareUpdater.h"
#include "services/Telemetry.h"
#include "services/VolumeEjector.h"
#include "services/VolumeMonitor.h"

#include <QMetaObject>
#include <QObject>
#include <QPointer>

#include <functional>
#include <memory>
#include <optional>

namespace ombrel {

/// The one container of what lives once per application. Main thread only. The application makes one, calls
/// `start` once its event loop is about to run and `stop` at the end; windows reach every service through it.
class AppServices final : public QObject {
    Q_OBJECT

public:
    /// Folder trees list at most so many folders at once.
    static constexpr int mostTreeListings = 4;

    AppServices(std::unique_ptr<AppSettings> settings, std::unique_ptr<AccessManager> access,
                std::unique_ptr<VolumeMonitor> volumes, std::unique_ptr<ClipboardService> clipboard,
                FileOperationService operations, std::unique_ptr<OperationCenter> center,
                QObject* parent = nullptr);
    ~AppServices() override;

    [[nodiscard]] AppSettings& settings() const noexcept { return *settings_; }
    [[nodiscard]] AccessManager& access() const noexcept { return *access_; }
    [[nodiscard]] VolumeMonitor& volumes() const noexcept { return *volumes_; }
    [[nodiscard]] ClipboardService& clipboard() const noexcept { return *clipboard_; }
    [[nodiscard]] const FileOperationService& operations() const noexcept { return operations_; }
    [[nodiscard]] OperationCenter& center() const noexcept { return *center_; }
    [[nodiscard]] FileUndoHistory& undo() const noexcept { return *undo_; }
    /// Opens items with the desktop's applications.
    [[nodiscard]] ApplicationLauncher& launcher() const noexcept { return *launcher_; }
    [[nodiscard]] VolumeEjector& ejector() const noexcept { return *ejector_; }
    [[nodiscard]] const DirectoryProvider& directories() const noexcept { return directories_; }
    [[nodiscard]] const std::shared_ptr<ConcurrencyLimiter>& treeLimiter() const noexcept {
        return treeLimiter_;
    }
    [[nodiscard]] RecentAddresses& recentAddresses() noexcept { return recentAddresses_; }
    [[nodiscard]] const Telemetry& telemetry() const noexcept { return *telemetry_; }

    /// Makes whoever shows the jobs, when `start` is called; none without it.
    std::function<std::unique_ptr<OperationPresenting>(OperationCenter&)> makeProgressWindow;
    /// Nothing before `start`.
    [[nodiscard]] OperationPresenting* progressWindow() const noexcept { return progressWindow_.get(); }

    /// Restores the grants, begins to watch the volumes and the application's activation, and makes the
    /// progress window. What has been started stays so when it is called again.
    void start();
    void stop();

    /// While it is on, every operation is refused.
    [[nodiscard]] bool isReadOnlyDiagnostics() const noexcept { return isReadOnlyDiagnostics_; }
    void setReadOnlyDiagnostics(bool on);

    [[nodiscard]] SoftwareUpdater* updater() const noexcept { return updater_; }
    void setUpdater(SoftwareUpdater* updater);
    /// The last volume that was mounted, unmounted or renamed.
    [[nodiscard]] const std::optional<VolumeMonitor::Event>& lastVolumeEvent() const noexcept {
        return lastVolumeEvent_;
    }

    /// The tabs of the window that the user works in; held weakly.
    [[nodiscard]] QObject* activeWindowTabs() const noexcept { return activeWindowTabs_; }
    void setActiveWindowTabs(QObject* tabs) noexcept { activeWindowTabs_ = tabs; }
    /// Opens a browser window; set by the application. Without it requests are ignored.
    std::function<void()> openNewWindow;
    /// Opens a browser window that begins at a folder. As above.
    std::function<void(const FileURL& folder)> openWindowAt;
    /// `tabs` of the window that the request comes from, if any.
    void requestNewWindow(QObject* tabs = nullptr);

Q_SIGNALS:
    void updaterChanged();
    void lastVolumeEventChanged();

private:
    void observeActivation();

    const std::unique_ptr<AppSettings> settings_;
    const std::unique_ptr<AccessManager> access_;
    const std::unique_ptr<VolumeMonitor> volumes_;
    const std::unique_ptr<ClipboardService> clipboard_;
    const FileOperationService operations_;
    const std::unique_ptr<OperationCenter> center_;
    const std::unique_ptr<FileUndoHistory> undo_;
    const std::unique_ptr<ApplicationLauncher> launcher_ = std::make_unique<ApplicationLauncher>();
    const std::unique_ptr<VolumeEjector> ejector_ = std::make_unique<VolumeEjector>();
    std::unique_ptr<SleepInhibitor> inhibitor_;
    std::unique_ptr<OperationPresenting> progressWindow_;
    const DirectoryProvider directories_{};
    const std::shared_ptr<ConcurrencyLimiter> treeLimiter_;
    RecentAddresses recentAddresses_;
    const std::shared_ptr<Telemetry> telemetry_ = std::make_shared<Telemetry>();
    bool isReadOnlyDiagnostics_ = false;
    QPointer<SoftwareUpdater> updater_;
    std::optional<VolumeMonitor::Event> lastVolumeEvent_;
    QPointer<QObject> activeWindowTabs_;
    QMetaObject::Connection activationObserver_;

private Q_SLOTS:
    void takeApplicationState(Qt::ApplicationState state);
};

} // namespace ombrel
