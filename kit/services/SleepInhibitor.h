#pragma once

#include "base/OwnedFd.h"
#include "base/Worker.h"

#include <QDBusConnection>
#include <QObject>
#include <QTimer>

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>

namespace ombrel {

class OperationCenter;

/// Keeps the machine from falling asleep and from being shut down while jobs run, through the system's login
/// service. Where that is not there nothing happens. Main thread; the service is asked by a worker.
class SleepInhibitor final : public QObject {
    Q_OBJECT

public:
    /// How to reach the service; called on a worker, blocking.
    using Bus = std::function<QDBusConnection()>;

    /// `center` must outlive the inhibitor.
    explicit SleepInhibitor(const OperationCenter& center, Bus bus = &QDBusConnection::systemBus,
                            QObject* parent = nullptr);
    ~SleepInhibitor() override;

    /// Whether the service has promised it.
    [[nodiscard]] bool isInhibiting() const noexcept { return lock_.has_value(); }

Q_SIGNALS:
    void inhibitingChanged();

private:
    void follow();
    void ask();
    void take(OwnedFd lock, std::uint64_t request);

    const OperationCenter& center_;
    const Bus bus_;
    QTimer start_;              // jobs that are over in a moment are not worth a request
    std::uint64_t request_ = 0; // under way or answered; 0 for none
    std::uint64_t lastRequest_ = 0;
    std::optional<OwnedFd> lock_; // the promise lasts as long as it is open
    Worker worker_;
};

} // namespace ombrel
