#pragma once

#include "browser/KeyRouter.h"

#include <QObject>

class QKeyEvent;
class QWidget;

namespace ombrel {

/// Offers every key that is pressed in a window to the window's commands before the widget with the focus
/// sees it. Dialogs and menus are windows of their own and keep their keys.
class WindowKeys final : public QObject {
    Q_OBJECT

public:
    /// Lives as long as `window`, which `router` must outlive.
    WindowKeys(QWidget& window, const KeyRouter& router);

    /// Whether a key press is the first of the key, or comes from holding it down.
    [[nodiscard]] static KeyRouter::Press pressOf(const QKeyEvent& event);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* window_;
    const KeyRouter* router_;
    bool hasMarkedText_ = false;
};

} // namespace ombrel
