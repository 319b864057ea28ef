#include "base/MainThread.h"

#include <memory>
#include <mutex>
#include <thread>

namespace ombrel::MainThread {
namespace {

// Never destroyed: a worker that outlives main() may still post.
struct Shared {
    std::mutex mutex; // guards both
    std::shared_ptr<const std::function<void(Task)>> post;
    std::thread::id thread;
};

Shared& shared() {
    static auto& instance = *new Shared;
    return instance;
}

} // namespace

void connect(std::function<void(Task)> post) {
    auto next = post ? std::make_shared<const std::function<void(Task)>>(std::move(post)) : nullptr;
    const std::scoped_lock lock(shared().mutex);
    shared().post = std::move(next);
    shared().thread = std::this_thread::get_id();
}

void post(Task task) {
    std::shared_ptr<const std::function<void(Task)>> door;
    {
        const std::scoped_lock lock(shared().mutex);
        door = shared().post;
    }
    if (door) (*door)(std::move(task));
}

bool isCurrent() noexcept {
    const std::scoped_lock lock(shared().mutex);
    return shared().thread == std::this_thread::get_id();
}

} // namespace ombrel::MainThread
