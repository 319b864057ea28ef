#pragma once

#include <QBasicTimer>
#include <QObject>

namespace ombrel {

class Theme;

/// Scrolls a view while something is dragged along its upper or lower edge, the faster the nearer.
class EdgeScroll final : public QObject {
    Q_OBJECT

public:
    /// `theme` must outlive it.
    explicit EdgeScroll(const Theme& theme, QObject* parent = nullptr) : QObject(parent), theme_(&theme) {}

    /// The drag is at `y` of a view that is `height` high.
    void over(int y, int height);
    void stop() { beat_.stop(); }

Q_SIGNALS:
    /// Now go on by so many pixels, downwards when positive.
    void step(int pixels);

protected:
    void timerEvent(QTimerEvent* event) override;

private:
    const Theme* theme_;
    int pixels_ = 0;
    QBasicTimer beat_;
};

} // namespace ombrel
