#pragma once

#include "services/AccessManager.h"
#include "ui/Pill.h"

#include <QWidget>

class QPushButton;

namespace ombrel {

/// One granted folder in a list: icon, name, state, path, and since when or why not.
class LocationRow final : public QWidget {
    Q_OBJECT

public:
    /// `theme` must outlive it.
    LocationRow(const Theme& theme, const AccessManager::Grant& grant, const QString& added,
                QWidget* parent = nullptr);

    [[nodiscard]] static PillKind pillOf(const AccessGrant& grant);

Q_SIGNALS:
    void allowRequested();
    void removeRequested();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Theme* theme_;
};

} // namespace ombrel
