#pragma once

#include "base/FileURL.h"
#include "base/Text.h"

#include <QDBusConnection>
#include <QObject>

#include <cstdint>
#include <expected>
#include <functional>
#include <optional>
#include <set>

namespace ombrel {

/// Takes volumes out of use through the desktop's disk service (UDisks2, on the system bus).
///
/// Main thread only; the service is asked without waiting, for as long as it needs to write what is left.
class VolumeEjector final : public QObject {
    Q_OBJECT

public:
    /// The error is a sentence for people. A request that the user took back in the service's own dialog ends
    /// well.
    using Done = std::function<void(std::expected<void, Text>)>;

    /// Without an argument the system bus, which is connected to at the first request.
    explicit VolumeEjector(QObject* parent = nullptr);
    explicit VolumeEjector(const QDBusConnection& bus, QObject* parent = nullptr);
    ~VolumeEjector() override;

    /// Unmounts everything on the drive that holds the volume, closes what was unlocked on it, and ejects the
    /// medium or switches the drive off where that can be; an image is detached. `done` is called once,
    /// later.
    void eject(const FileURL& volume, Done done);
    /// Unmounts the volume alone.
    void unmount(const FileURL& volume, Done done);

    [[nodiscard]] bool isWorking(const FileURL& volume) const { return working_.contains(volume); }

Q_SIGNALS:
    void workingChanged();

private:
    class Job;
    enum class Extent : std::uint8_t { volume, drive };
    void begin(const FileURL& volume, Extent extent, Done done);

    std::optional<QDBusConnection> bus_;
    std::set<FileURL> working_;
};

} // namespace ombrel
