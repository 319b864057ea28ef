#include "base/SerialWorker.h"

#include <deque>
#include <mutex>
#include <system_error>
#include <utility>

namespace ombrel {

struct SerialWorker::Queue {
    const char* name;
    std::mutex mutex; // guards what follows
    std::deque<Task> tasks;
    bool isRunning = false;

    explicit Queue(const char* named) : name(named) {}

    /// The next task; empty, and the worker's end, when there is none.
    Task next() {
        const std::scoped_lock lock(mutex);
        isRunning = !tasks.empty();
        if (tasks.empty()) return {};
        auto task = std::move(tasks.front());
        tasks.pop_front();
        return task;
    }
};

SerialWorker::SerialWorker(const char* name) : queue_(std::make_shared<Queue>(name)) {}

void SerialWorker::run(Task task) {
    const std::scoped_lock lock(queue_->mutex);
    queue_->tasks.push_back(std::move(task));
    if (queue_->isRunning) return;
    try {
        Worker(queue_->name, [queue = queue_](std::stop_token) {
            while (auto next = queue->next())
                next();
        }).detach();
        queue_->isRunning = true;
    } catch (const std::system_error&) {
        // The task stays in the queue.
    }
}

} // namespace ombrel
