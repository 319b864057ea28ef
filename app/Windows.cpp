#include "app/Windows.h"

#include "base/PathInput.h"
#include "ui/BrowserWindow.h"
#include "ui/Theme.h"

#include <QApplication>
#include <QScreen>

#include <algorithm>

namespace ombrel {

Windows::Windows(const Theme& theme, AppServices& services) : theme_(&theme), services_(&services) {
    services.openNewWindow = [this] { open(std::nullopt); };
    services.openWindowAt = [this](const FileURL& folder) { open(folder); };
}

Windows::~Windows() {
    services_->openNewWindow = nullptr;
    services_->openWindowAt = nullptr;
    for (auto* const window : shown())
        delete window;
}

BrowserWindow* Windows::make(const std::optional<FileURL>& folder) const {
    return new BrowserWindow({.theme = *theme_,
                              .services = *services_,
                              .home = PathInput::userHomeDirectory(),
                              .startingAt = folder});
}

void Windows::open(const std::optional<FileURL>& folder) {
    auto* const window = make(folder);
    connect(window, &BrowserWindow::closing, this, [this, window] { keepState(*window); });
    place(*window);
    window->show();
    window->activateWindow();
}

void Windows::open(const std::vector<FileURL>& folders) {
    if (folders.empty()) return open(std::nullopt);
    for (const FileURL& folder : folders)
        open(std::optional(folder));
}

std::vector<BrowserWindow*> Windows::shown() {
    std::vector<BrowserWindow*> found;
    const auto all = QApplication::topLevelWidgets();
    for (QWidget* const each : all) {
        auto* const window = qobject_cast<BrowserWindow*>(each);
        if (window && window->isVisible()) found.push_back(window);
    }
    return found;
}

BrowserWindow* Windows::latest() const {
    const auto windows = shown();
    const auto isLatest = [this](BrowserWindow* window) {
        return static_cast<QObject*>(&window->tabs()) == services_->activeWindowTabs();
    };
    const auto found = std::ranges::find_if(windows, isLatest);
    if (found != windows.end()) return *found;
    return windows.empty() ? nullptr : windows.front();
}

void Windows::place(BrowserWindow& window) const {
    auto state = services_->settings().windowState();
    const BrowserWindow* const beside = latest();
    if (beside) state = beside->state();
    const QScreen* const screen = beside ? beside->screen() : QGuiApplication::primaryScreen();
    const QRect room = screen->availableGeometry();
    if (state) window.setState(*state);
    const QSize size =
        (state ? QSize(state->width, state->height) : BrowserWindow::firstSize(*theme_, room.size()))
            .boundedTo(room.size());
    QRect place(QPoint(), size);
    if (beside && !beside->isMaximized()) {
        const int step = theme_->size(ThemeSize::cascade);
        place.moveTopLeft(beside->geometry().topLeft() + QPoint(step, step));
        // Beyond the edge the cascade begins anew.
        if (!room.contains(place)) place.moveTopLeft(room.topLeft() + QPoint(step, step));
    } else {
        place.moveCenter(room.center());
    }
    window.setGeometry(place);
}

void Windows::keepState(const BrowserWindow& closing) {
    const auto windows = shown();
    const bool isLast = std::ranges::all_of(windows, [&](const auto* each) { return each == &closing; });
    if (isLast) services_->settings().setWindowState(closing.state());
}

} // namespace ombrel
