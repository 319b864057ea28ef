#pragma once

#include "ui/Glyphs.h"
#include "ui/Theme.h"

#include <QWidget>

#include <cstdint>
#include <optional>

namespace ombrel {

/// What a pill says: a state in one or two words, on a ground that goes with it. The words always say it too.
enum class PillKind : std::uint8_t {
    available,
    needsPermission,
    notAvailable,
    newer,
    larger,
    failed,
    skipped,
    cancelled,
    originalKept,
};

/// A small rounded label for a state.
class Pill final : public QWidget {
    Q_OBJECT

public:
    /// `theme` must outlive it.
    Pill(const Theme& theme, PillKind kind, QWidget* parent = nullptr);

    [[nodiscard]] PillKind kind() const noexcept { return kind_; }
    void setKind(PillKind kind);

    [[nodiscard]] static QString textOf(PillKind kind);
    /// How much room it takes, for those who draw it themselves.
    [[nodiscard]] static QSize sizeOf(const Theme& theme, PillKind kind);
    static void draw(QPainter& painter, const Theme& theme, PillKind kind, const QRect& box);

    QSize sizeHint() const override { return sizeOf(*theme_, kind_); }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Theme* theme_;
    PillKind kind_;
};

} // namespace ombrel
