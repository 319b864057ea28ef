#pragma once

#include "ui/Glyphs.h"

#include <QWidget>

#include <cstdint>
#include <vector>

class QButtonGroup;
class QStackedWidget;
class QVBoxLayout;

namespace ombrel {

class AppServices;
class SettingsPage;
class Theme;

/// The settings: pages beside a list of them. Every change applies at once. Deletes itself when closed.
class SettingsWindow final : public QWidget {
    Q_OBJECT

public:
    enum class Page : std::uint8_t { general, keyboard, language, locations, updates };

    /// Both must outlive it.
    SettingsWindow(const Theme& theme, AppServices& services);

    /// There is one: it is shown and brought to the front.
    static SettingsWindow& open(const Theme& theme, AppServices& services);

    /// Nothing for a page that there is not.
    void select(Page page);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    class PageButton;

    void add(Page page, Glyph glyph, const QString& title, SettingsPage* view);
    void showFolderOptions();

    const Theme* theme_;
    AppServices* services_;
    QVBoxLayout* list_;
    QStackedWidget* pages_;
    QButtonGroup* group_;
};

} // namespace ombrel
