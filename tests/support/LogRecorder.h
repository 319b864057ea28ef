#pragma once

#include "base/Log.h"

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace ombrel::testing {

/// Takes the log over while it lives; nobody gets it afterwards. One at a time.
class LogRecorder {
public:
    LogRecorder() {
        Log::connect([lines = lines_](Log::Category category, Log::Level level, const std::string& line) {
            const std::scoped_lock lock(lines->mutex);
            lines->all.push_back(std::string(level == Log::Level::error ? "error " : "info ") +
                                 std::string(Log::name(category)) + ": " + line);
        });
    }
    ~LogRecorder() { Log::connect({}); }
    LogRecorder(const LogRecorder&) = delete;
    LogRecorder& operator=(const LogRecorder&) = delete;

    /// Each as "error volumes: what happened".
    [[nodiscard]] std::vector<std::string> lines() const {
        const std::scoped_lock lock(lines_->mutex);
        return lines_->all;
    }

private:
    struct Lines {
        std::mutex mutex; // guards all
        std::vector<std::string> all;
    };
    /// A call that is under way may outlast the recorder.
    std::shared_ptr<Lines> lines_ = std::make_shared<Lines>();
};

} // namespace ombrel::testing
