#pragma once

#include "services/AppServices.h"
#include "ui/BrowserWindow.h"
#include "ui/FileView.h"
#include "ui/SystemPasteboard.h"
#include "ui/Theme.h"

#include <QApplication>
#include <QObject>

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>

#include "pane/Stretches.h"

namespace ombrel::bench {

using ProbeApplication = Stretched<QApplication>;
[[nodiscard]] ProbeApplication& application();

[[noreturn]] void failProbe(const char* what);
/// Runs the event loop until `done`, for a minute at most; ends the program when that does not come.
void runUntil(const std::function<bool()>& done);
[[nodiscard]] double millisecondsSince(std::chrono::steady_clock::time_point began);

/// A window of the program in this process, on the display that the environment names.
class ProbeWindow {
public:
    explicit ProbeWindow(const FileURL& folder);
    ~ProbeWindow();

    [[nodiscard]] BrowserWindow& window() const noexcept { return *window_; }
    [[nodiscard]] BrowserModel& model() const { return window_->model(); }
    [[nodiscard]] FileView& view() const { return window_->view(); }
    [[nodiscard]] AppServices& services() const noexcept { return *services_; }
    [[nodiscard]] const Theme& theme() const noexcept { return theme_; }

    [[nodiscard]] bool isLoaded() const;
    /// Until nothing works any more, so that one round does not pay for the one before.
    void settle() const;

private:
    Theme theme_;
    SystemPasteboard pasteboard_;
    std::unique_ptr<AppServices> services_;
    std::unique_ptr<BrowserWindow> window_;
};

/// Counts how often a view is painted.
class Frames final : public QObject {
public:
    explicit Frames(const FileView& view) : view_(&view) { view.viewport()->installEventFilter(this); }

    [[nodiscard]] std::size_t count() const noexcept { return count_; }
    /// What the main thread works, in milliseconds, from `gesture` until the next frame has been painted.
    template <typename Gesture>
    [[nodiscard]] double costOf(const Gesture& gesture) {
        const std::size_t before = count_;
        const auto began = std::chrono::steady_clock::now();
        gesture();
        const double call = millisecondsSince(began);
        (void)application().takeTotal();
        runUntil([&] { return count_ > before; });
        return call + application().takeTotal();
    }
    /// Turns the wheel by so many notches, towards the end when positive; answers what that costs.
    [[nodiscard]] double wheel(int notches);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    const FileView* view_;
    std::size_t count_ = 0;
};

} // namespace ombrel::bench
