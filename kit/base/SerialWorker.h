#pragma once

#include "base/Worker.h"

#include <functional>
#include <memory>

namespace ombrel {

/// Runs tasks one after another, in their order, on a worker that exists only while there are tasks. Nobody
/// waits for it: when the handle goes, the tasks that were given still run, so they own everything they
/// touch. Any thread.
class SerialWorker {
public:
    using Task = std::move_only_function<void()>;

    /// `name` as for `Worker`.
    explicit SerialWorker(const char* name);

    /// When the system has no thread left, the task waits for the next call.
    void run(Task task);

private:
    struct Queue;
    std::shared_ptr<Queue> queue_;
};

} // namespace ombrel
