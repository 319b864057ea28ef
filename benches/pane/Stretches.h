#pragma once

#include <QCoreApplication>

#include <algorithm>
#include <chrono>
#include <utility>

namespace ombrel::bench {

/// An application that knows how long its main thread was busy with one event at a time, and so deaf to the
/// user. `Application` is one of Qt's.
template <typename Application>
class Stretched final : public Application {
public:
    using Application::Application;

    bool notify(QObject* receiver, QEvent* event) override {
        if (depth_++ == 0) began_ = Clock::now();
        const bool isDone = Application::notify(receiver, event);
        if (--depth_ == 0) {
            const auto stretch = Clock::now() - began_;
            longest_ = std::max(longest_, stretch);
            total_ += stretch;
        }
        return isDone;
    }

    /// The longest since the last call, in milliseconds.
    [[nodiscard]] double takeLongest() { return milliseconds(std::exchange(longest_, {})); }
    /// All together since the last call, in milliseconds.
    [[nodiscard]] double takeTotal() { return milliseconds(std::exchange(total_, {})); }

private:
    using Clock = std::chrono::steady_clock;
    static double milliseconds(Clock::duration duration) {
        return std::chrono::duration<double, std::milli>(duration).count();
    }

    Clock::time_point began_;
    Clock::duration longest_{};
    Clock::duration total_{};
    int depth_ = 0;
};

} // namespace ombrel::bench
