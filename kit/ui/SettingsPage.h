#pragma once

#include "ui/Theme.h"

#include <QWidget>

class QVBoxLayout;

namespace ombrel {

/// A page of the settings: its title, and below it what the page adds. It scrolls where there is no room.
class SettingsPage : public QWidget {
    Q_OBJECT

public:
    /// `theme` must outlive it.
    SettingsPage(const Theme& theme, const QString& title, QWidget* parent = nullptr);

protected:
    [[nodiscard]] QVBoxLayout& column() const noexcept { return *column_; }
    [[nodiscard]] const Theme& theme() const noexcept { return *theme_; }
    /// What the page holds stands on it.
    [[nodiscard]] QWidget* content() const noexcept { return content_; }
    void addCaption(const QString& words);

private:
    const Theme* theme_;
    QWidget* content_;
    QVBoxLayout* column_;
};

} // namespace ombrel
