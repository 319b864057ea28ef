#include "base/Log.h"

#include <memory>
#include <mutex>

namespace ombrel::Log {
namespace {

// Never destroyed: a worker that outlives main() may still log.
struct Shared {
    std::mutex mutex; // guards sink
    std::shared_ptr<const Sink> sink;
};

Shared& shared() {
    static auto& instance = *new Shared;
    return instance;
}

void write(Category category, Level level, const std::string& line) {
    std::shared_ptr<const Sink> sink;
    {
        const std::scoped_lock lock(shared().mutex);
        sink = shared().sink;
    }
    if (sink && *sink) (*sink)(category, level, line);
}

} // namespace

void connect(Sink sink) {
    auto next = std::make_shared<const Sink>(std::move(sink));
    const std::scoped_lock lock(shared().mutex);
    shared().sink = std::move(next);
}

void info(Category category, const std::string& line) {
    write(category, Level::info, line);
}

void error(Category category, const std::string& line) {
    write(category, Level::error, line);
}

std::string_view name(Category category) noexcept {
    switch (category) {
    case Category::access: return "access";
    case Category::directory: return "directory";
    case Category::operations: return "operations";
    case Category::volumes: return "volumes";
    case Category::ui: return "ui";
    }
    return {};
}

} // namespace ombrel::Log
