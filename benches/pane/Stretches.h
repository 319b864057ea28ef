#pragma once

#include <QCoreApplication>

#include <algorithm>
#include <chrono>
#include <utility>

namespace ombrel::bench {

/// An application that knows how long its main thread was busy with one event at a time, and so deaf to the
/// user.
class StretchedApplication final : public QCoreApplication {
public:
    using QCoreApplication::QCoreApplication;

    bool notify(QObject* receiver, QEvent* event) override {
        if (depth_++ == 0) began_ = Clock::now();
        const bool isDone = QCoreApplication::notify(receiver, event);
        if (--depth_ == 0) longest_ = std::max(longest_, Clock::now() - began_);
        return isDone;
    }

    /// The longest since the last call, in milliseconds.
    [[nodiscard]] double takeLongest() {
        return std::chrono::duration<double, std::milli>(std::exchange(longest_, {})).count();
    }

private:
    using Clock = std::chrono::steady_clock;
    Clock::time_point began_;
    Clock::duration longest_{};
    int depth_ = 0;
};

} // namespace ombrel::bench
