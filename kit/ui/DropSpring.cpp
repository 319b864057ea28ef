#include "ui/DropSpring.h"

#include "ui/Theme.h"

#include <QTimerEvent>

namespace ombrel {

DropSpring::DropSpring(const Theme& theme, std::chrono::milliseconds patience, QObject* parent)
    : QObject(parent), theme_(&theme), patience_(patience) {}

void DropSpring::over(std::optional<std::size_t> target) {
    if (target == target_) return;
    target_ = target;
    waiting_.stop();
    if (target) waiting_.start(static_cast<int>(patience_.count()), this);
}

void DropSpring::timerEvent(QTimerEvent* event) {
    if (event->timerId() == flash_.timerId()) {
        flash_.stop();
        flashing_ = std::nullopt;
        Q_EMIT flashChanged();
    } else if (event->timerId() == waiting_.timerId()) {
        waiting_.stop();
        const int duration = theme_->duration(ThemeDuration::springFlash);
        if (duration > 0) {
            flashing_ = target_;
            flash_.start(duration, this);
            Q_EMIT flashChanged();
        }
        Q_EMIT opened(*target_);
    }
}

} // namespace ombrel
