#include "operations/DriveQueue.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <utility>

namespace ombrel {

struct DriveQueue::Line {
    struct Entry {
        Number number = 0;
        std::vector<Drive> drives = {};
        bool hasStarted = false;
        bool startsNow = false;
        bool isIdle = false;
    };

    std::mutex mutex; // guards everything below
    std::condition_variable_any changed;
    std::vector<Entry> entries; // in the order of joining
    Number last = 0;

    /// Nothing when it has left.
    Entry* find(Number number) {
        const auto found = std::ranges::find(entries, number, &Entry::number);
        return found == entries.end() ? nullptr : &*found;
    }

    /// The jobs that a job has to let go first: those that work on a drive of its, or the next one that will.
    [[nodiscard]] std::vector<Number> aheadOf(const Entry& entry) const {
        std::vector<Number> working;
        std::optional<Number> next;
        if (entry.startsNow || entry.drives.empty()) return working;
        for (const auto& other : entries) {
            if (other.number == entry.number || other.isIdle) continue;
            if (!other.hasStarted && (next || other.number > entry.number)) continue;
            const bool isShared = std::ranges::any_of(other.drives, [&](Drive drive) {
                return std::ranges::find(entry.drives, drive) != entry.drives.end();
            });
            if (!isShared) continue;
            if (other.hasStarted)
                working.push_back(other.number);
            else
                next = other.number;
        }
        if (working.empty() && next) working.push_back(*next);
        return working;
    }

    /// Changes an entry that is still there, and has those look again who may wait for it.
    template <typename Change>
    void change(Number number, Change use) {
        {
            const std::scoped_lock lock(mutex);
            Entry* const entry = find(number);
            if (!entry) return;
            const bool concernsNobody = entry->drives.empty();
            use(*entry);
            if (concernsNobody) return;
        }
        changed.notify_all();
    }
};

DriveQueue::DriveQueue() : line_(std::make_shared<Line>()) {}

std::shared_ptr<DriveQueue::Place> DriveQueue::join() {
    const std::scoped_lock lock(line_->mutex);
    const auto number = ++line_->last;
    line_->entries.push_back({.number = number});
    return std::shared_ptr<Place>(new Place(line_, number));
}

DriveQueue::Place::Place(std::shared_ptr<Line> line, Number number)
    : line_(std::move(line)), number_(number) {}

bool DriveQueue::Place::wait(std::vector<Drive> drives,
                             const std::function<void(const std::vector<Number>&)>& waiting,
                             const std::stop_token& stop) {
    std::unique_lock lock(line_->mutex);
    const auto ahead = [this] {
        const auto* const entry = line_->find(number_);
        return entry ? line_->aheadOf(*entry) : std::vector<Number>();
    };
    if (auto* const entry = line_->find(number_)) entry->drives = std::move(drives);
    std::vector<Number> told;
    while (!stop.stop_requested()) {
        const auto now = ahead();
        if (now.empty()) {
            if (auto* const entry = line_->find(number_)) entry->hasStarted = true;
            return true;
        }
        if (now != told) {
            told = now;
            lock.unlock();
            waiting(told);
            lock.lock();
            continue;
        }
        line_->changed.wait(lock, stop, [&] { return ahead() != told; });
    }
    return false;
}

void DriveQueue::Place::startNow() {
    line_->change(number_, [](Line::Entry& entry) { entry.startsNow = true; });
}

void DriveQueue::Place::setIdle(bool isIdle) {
    line_->change(number_, [isIdle](Line::Entry& entry) { entry.isIdle = isIdle; });
}

void DriveQueue::Place::leave() {
    line_->change(number_, [this](Line::Entry& entry) {
        line_->entries.erase(line_->entries.begin() + (&entry - line_->entries.data()));
    });
}

} // namespace ombrel
