#include "ui/EdgeScroll.h"

#include "ui/Theme.h"

#include <QTimerEvent>

#include <algorithm>

namespace ombrel {

void EdgeScroll::over(int y, int height) {
    constexpr int interval = 16; // milliseconds: one picture of the screen
    const int edge = theme_->size(ThemeSize::dragEdge);
    const int above = edge - y, below = y - (height - edge);
    pixels_ = above > 0 ? -above : std::max(0, below);
    if (pixels_ == 0)
        beat_.stop();
    else if (!beat_.isActive())
        beat_.start(interval, this);
}

void EdgeScroll::timerEvent(QTimerEvent* event) {
    if (event->timerId() == beat_.timerId()) Q_EMIT step(pixels_);
}

} // namespace ombrel
