#pragma once

#include <QWidget>

#include <cstdint>

namespace ombrel {

class Theme;

/// How full a volume is.
class CapacityBar final : public QWidget {
    Q_OBJECT

public:
    struct Level {
        double used = 0; ///< 0 to 1
        bool isNearlyFull = false;
    };

    /// `theme` must outlive it.
    explicit CapacityBar(const Theme& theme, QWidget* parent = nullptr);

    /// `name` says the same in words.
    void setLevel(const Level& level, const QString& name);
    [[nodiscard]] double used() const noexcept { return level_.used; }

    /// What the bar lies on.
    enum class Ground : std::uint8_t {
        plain,
        selection, ///< as selected things look while their view has the keyboard
        selectionInactive,
    };
    /// For those who paint it into something else. Track and filling differ from every ground.
    static void paint(QPainter& painter, const Theme& theme, const QRect& track, const Level& level,
                      Ground ground, Qt::LayoutDirection direction);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Theme* theme_;
    Level level_;
};

} // namespace ombrel
