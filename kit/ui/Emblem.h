#pragma once

#include "ui/Theme.h"

#include <QWidget>

namespace ombrel {

/// The program's sign: an open sunshade.
class Emblem final : public QWidget {
    Q_OBJECT

public:
    /// `theme` must outlive it.
    explicit Emblem(const Theme& theme, ThemeSize side, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Theme* theme_;
};

} // namespace ombrel
