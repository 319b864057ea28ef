#pragma once

#include "base/FileURL.h"
#include "base/Worker.h"
#include "listing/MountWatch.h"
#include "listing/VolumeInfo.h"

#include <QObject>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace ombrel {

/// The volumes that are mounted, and what happens to them.
///
/// Main thread only. Tables, devices and capacities are read by workers; a volume that does not answer holds
/// up none of the others: it is listed with capacities `unknown` first, and `failed` with ETIMEDOUT once
/// `answerLimit` has passed.
class VolumeMonitor final : public QObject {
    Q_OBJECT

public:
    struct Event {
        enum class Kind : std::uint8_t { mounted, unmounted, renamed };
        Kind kind = Kind::mounted;
        FileURL url; ///< the mount point; of a renamed one the new

        friend bool operator==(const Event&, const Event&) = default;
    };

    /// How long volumes are waited for before the others are published without them, and altogether.
    static constexpr std::chrono::milliseconds patience{150};
    static constexpr std::chrono::milliseconds answerLimit{2000};

    explicit VolumeMonitor(std::unique_ptr<MountWatch> watch = MountWatch::system(),
                           QObject* parent = nullptr);
    ~VolumeMonitor() override;

    /// Begins to watch and to list. Without effect while it runs.
    void start();
    /// The list stays as it was.
    void stop();

    /// In the order of mounting, as far as `includesVolume` lets them.
    [[nodiscard]] const std::vector<VolumeInfo>& volumes() const noexcept { return volumes_; }

    /// Whether nothing is waited for: each volume of the list has answered or been given up. False until the
    /// first list.
    [[nodiscard]] bool isSettled() const noexcept { return table_ && !isRefreshing_; }

    /// Reads the capacities again, and publishes those that differ. Without effect before the first list.
    void refreshCapacities();

    /// Called after the list has been refreshed for an event. An event that the next one overtakes meanwhile
    /// is not told here; `observed` tells all.
    std::function<void(const Event&)> onEvent;
    /// Decides which mounted volumes are listed; all when empty. A function of the location alone, called on
    /// workers.
    std::function<bool(const FileURL&)> includesVolume;
    /// Completes what is told of a listed volume, where the mounts do not stand for real devices. Called on
    /// workers.
    std::function<void(VolumeInfo&)> completesVolume;

Q_SIGNALS:
    void volumesChanged();
    /// Something was mounted, unmounted or renamed just now; the list follows.
    void observed(const ombrel::VolumeMonitor::Event& event);

private:
    struct Reading;

    void take(MountTable table);
    void refresh(std::optional<Event> event);
    void publish(std::vector<VolumeInfo> volumes, bool isComplete);

    const std::unique_ptr<MountWatch> watch_;
    std::uint64_t watching_ =
        0; ///< counts starts, so that what an earlier one still tells is dropped; 0 when stopped
    std::uint64_t starts_ = 0;
    std::optional<MountTable> table_;
    std::vector<VolumeInfo> volumes_;
    std::int64_t refreshGeneration_ = 0;
    bool isRefreshing_ = false;
    std::optional<Event> pendingEvent_; ///< told with the first list that is published after it
    Worker reader_;
};

} // namespace ombrel
