#include "ui/FocusCycle.h"

#include <QApplication>
#include <QWidget>

#include <algorithm>

namespace ombrel::FocusCycle {
namespace {

bool takesFocus(const QWidget& widget) {
    return widget.isVisible() && widget.isEnabled() && (widget.focusPolicy() & Qt::TabFocus) == Qt::TabFocus;
}

} // namespace

bool enter(QWidget& area) {
    if (!area.isVisible()) return false;
    QWidget* candidate = &area;
    while (QWidget* const proxy = candidate->focusProxy())
        candidate = proxy;
    // The chain goes once around the window.
    for (const QWidget* const first = candidate;
         !takesFocus(*candidate) || !(candidate == &area || area.isAncestorOf(candidate));) {
        candidate = candidate->nextInFocusChain();
        if (candidate == first) return false;
    }
    candidate->setFocus(Qt::TabFocusReason);
    return true;
}

void advance(const std::vector<QWidget*>& stops, Direction direction) {
    const QWidget* const focused = QApplication::focusWidget();
    const auto holds = [focused](const QWidget* stop) {
        return stop == focused || stop->isAncestorOf(focused);
    };
    const auto standsBeside = [focused](const QWidget* stop) {
        const QWidget* const parent = stop->parentWidget();
        return parent && !parent->isWindow() && parent->isAncestorOf(focused);
    };
    const auto count = static_cast<std::ptrdiff_t>(stops.size());
    auto found = std::ranges::find_if(stops, holds);
    if (found == stops.end()) found = std::ranges::find_if(stops, standsBeside);
    const std::ptrdiff_t step = direction == Direction::forward ? 1 : -1;
    std::ptrdiff_t index = found == stops.end() ? (step > 0 ? -1 : 0) : found - stops.begin();
    for (std::ptrdiff_t tries = 0; tries < count; ++tries) {
        index = (index + step + count) % count;
        if (enter(*stops[static_cast<std::size_t>(index)])) return;
    }
}

} // namespace ombrel::FocusCycle
