#pragma once

#include <QBasicTimer>
#include <QObject>

#include <chrono>
#include <cstddef>
#include <optional>

namespace ombrel {

class Theme;

/// Opens what something is dragged over for a while, and says so by one flash of the target.
class DropSpring final : public QObject {
    Q_OBJECT

public:
    /// `theme` must outlive it.
    DropSpring(const Theme& theme, std::chrono::milliseconds patience, QObject* parent);

    /// The drag is over `target` now; nothing: over nothing that opens. The time counts from the first of
    /// several calls with the same target.
    void over(std::optional<std::size_t> target);
    [[nodiscard]] bool isFlashing(std::size_t target) const noexcept { return flashing_ == target; }

Q_SIGNALS:
    void opened(std::size_t target);
    /// `isFlashing` answers otherwise than before.
    void flashChanged();

protected:
    void timerEvent(QTimerEvent* event) override;

private:
    const Theme* theme_;
    std::chrono::milliseconds patience_;
    std::optional<std::size_t> target_;
    std::optional<std::size_t> flashing_;
    QBasicTimer waiting_;
    QBasicTimer flash_;
};

} // namespace ombrel
