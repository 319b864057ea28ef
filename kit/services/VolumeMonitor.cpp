#include "services/VolumeMonitor.h"

#include "base/Log.h"
#include "base/MainThread.h"
#include "listing/CapacityQuery.h"
#include "listing/ShownMounts.h"

#include <QPointer>

#include <algorithm>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

namespace ombrel {
namespace {

using Event = VolumeMonitor::Event;

/// Whether two entries of successive tables are one mount. The kernel gives numbers of mounts away again.
bool isSame(const Mount& a, const Mount& b) {
    return a.id == b.id && a.device == b.device && a.root == b.root && a.type == b.type &&
           a.source == b.source;
}

const Mount* findIn(const std::vector<const Mount*>& mounts, const Mount& wanted) {
    const auto found =
        std::ranges::find_if(mounts, [&](const Mount* mount) { return isSame(*mount, wanted); });
    return found == mounts.end() ? nullptr : *found;
}

/// What happened between two tables: first what went, so that a place is free before something else takes it.
std::vector<Event> eventsBetween(const MountTable& before, const MountTable& after) {
    const auto old = shownMounts(before), now = shownMounts(after);
    std::vector<Event> events;
    for (const Mount* mount : old)
        if (!findIn(now, *mount)) events.push_back({Event::Kind::unmounted, mount->point});
    for (const Mount* mount : now) {
        const Mount* earlier = findIn(old, *mount);
        if (!earlier)
            events.push_back({Event::Kind::mounted, mount->point});
        else if (earlier->point != mount->point)
            events.push_back({Event::Kind::renamed, mount->point});
    }
    return events;
}

void tellOfSilent(const std::vector<VolumeInfo>& volumes, const CapacityQuery& query) {
    for (std::size_t i = 0; i < volumes.size(); ++i)
        if (!query.answer(i))
            Log::error(Log::Category::volumes, "volume does not answer: " + volumes[i].url.path());
}

} // namespace

/// One refresh, on its worker.
struct VolumeMonitor::Reading {
    MountTable table;
    std::function<bool(const FileURL&)> isIncluded;
    std::function<void(VolumeInfo&)> complete;
    std::function<void(std::vector<VolumeInfo>, bool isComplete)> publish;

    void run(const std::stop_token& stop) const {
        std::vector<const Mount*> mounts = shownMounts(table);
        if (isIncluded)
            std::erase_if(mounts, [this](const Mount* mount) { return !isIncluded(mount->point); });
        CapacityQuery query(table, mounts);
        std::vector<VolumeInfo> volumes;
        for (const Mount* mount : mounts)
            volumes.push_back(VolumeInfo::describe(*mount));
        if (!query.wait(patience, stop)) {
            publish(answered(volumes, query, false), false);
            if (!query.wait(answerLimit - patience, stop) && !stop.stop_requested())
                tellOfSilent(volumes, query);
        }
        publish(answered(std::move(volumes), query, true), true);
    }

    [[nodiscard]] std::vector<VolumeInfo> answered(std::vector<VolumeInfo> volumes,
                                                   const CapacityQuery& query, bool isOver) const {
        for (std::size_t i = 0; i < volumes.size(); ++i) {
            if (query.answer(i))
                volumes[i].setCapacity(*query.answer(i));
            else if (isOver)
                volumes[i].setCapacity(std::unexpected(POSIXFailure{ETIMEDOUT}));
            if (complete) complete(volumes[i]);
        }
        return volumes;
    }
};

VolumeMonitor::VolumeMonitor(std::unique_ptr<MountWatch> watch, QObject* parent)
    : QObject(parent), watch_(std::move(watch)) {}

VolumeMonitor::~VolumeMonitor() {
    stop();
}

void VolumeMonitor::start() {
    if (watching_ != 0) return;
    watching_ = ++starts_;
    watch_->start([monitor = QPointer(this), start = watching_](MountTable table) {
        MainThread::post([monitor, start, table = std::move(table)]() mutable {
            if (monitor && monitor->watching_ == start) monitor->take(std::move(table));
        });
    });
}

void VolumeMonitor::stop() {
    if (watching_ == 0) return;
    watching_ = 0;
    watch_->stop();
    ++refreshGeneration_;
    isRefreshing_ = false;
    pendingEvent_.reset();
    reader_ = Worker();
    table_.reset();
}

void VolumeMonitor::take(MountTable table) {
    const auto before = std::exchange(table_, std::move(table));
    if (!before) return refresh(std::nullopt);
    const QPointer guard(this);
    for (const Event& event : eventsBetween(*before, *table_)) {
        Log::info(Log::Category::volumes, "volume event observed");
        refresh(event);
        Q_EMIT observed(event);
        if (!guard || watching_ == 0) return;
    }
}

void VolumeMonitor::refreshCapacities() {
    // A refresh for an event reads them too, and its event must not get lost.
    if (table_ && !isRefreshing_) refresh(std::nullopt);
}

void VolumeMonitor::refresh(std::optional<Event> event) {
    const auto generation = ++refreshGeneration_;
    isRefreshing_ = true;
    pendingEvent_ = std::move(event);
    auto publishOnMain = [monitor = QPointer(this), generation](std::vector<VolumeInfo> volumes,
                                                                bool isComplete) {
        MainThread::post([monitor, generation, isComplete, volumes = std::move(volumes)]() mutable {
            if (monitor && monitor->refreshGeneration_ == generation)
                monitor->publish(std::move(volumes), isComplete);
        });
    };
    try {
        reader_ =
            Worker("ombrel-volumes",
                   [reading = Reading{*table_, includesVolume, completesVolume, std::move(publishOnMain)}](
                       std::stop_token stop) { reading.run(stop); });
    } catch (const std::system_error& failure) {
        isRefreshing_ = false;
        Log::error(Log::Category::volumes, std::string("volumes are not read: ") + failure.what());
    }
}

void VolumeMonitor::publish(std::vector<VolumeInfo> volumes, bool isComplete) {
    isRefreshing_ = !isComplete;
    for (VolumeInfo& volume : volumes) {
        // What was known of a volume that has not answered yet is better than nothing.
        const auto known = std::ranges::find(volumes_, volume.url, &VolumeInfo::url);
        if (!volume.totalCapacity.isUnknown() || known == volumes_.end()) continue;
        volume.totalCapacity = known->totalCapacity;
        volume.availableCapacity = known->availableCapacity;
    }
    const bool isNew = volumes != volumes_;
    volumes_ = std::move(volumes);
    const auto event = std::exchange(pendingEvent_, std::nullopt);
    const QPointer guard(this);
    if (isNew) Q_EMIT volumesChanged();
    if (guard && event && onEvent) onEvent(*event);
}

} // namespace ombrel
