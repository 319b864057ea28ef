#pragma once

#include <QObject>

#include <cstdint>

class QAbstractScrollArea;

namespace ombrel {

/// Whether keys are about what is selected in a view: it has the focus, or has had it until a menu or the
/// command bar of its window took the keyboard, which act on that selection.
class KeyboardHold final : public QObject {
    Q_OBJECT

public:
    /// Repaints the view's contents when it changes. `view` must outlive it.
    explicit KeyboardHold(QAbstractScrollArea& view);

    [[nodiscard]] bool isHeld() const;
    /// Whether the current item in the view is where the focus is, or will be when a menu has closed.
    [[nodiscard]] bool hasRing() const;

private:
    /// Who has the keyboard, or has lent it to a menu.
    enum class Holder : std::uint8_t { view, commandBar, other };

    void follow(const QWidget* focused);

    QAbstractScrollArea* view_;
    Holder holder_ = Holder::other;
};

} // namespace ombrel
