#pragma once

#include "ui/ActivePane.h"

#include <QObject>

#include <array>
#include <cstddef>

class QAction;
class QMenu;
class QWidget;

namespace ombrel {

class AppServices;
class BrowserTabsModel;
class Theme;

/// The ways in which the active pane can show its items, as actions of a window of which one is checked:
/// details, then icons from small to extra large. What is chosen is what new tabs begin with.
class ViewModeActions final : public QObject {
    Q_OBJECT

public:
    static constexpr std::size_t count = 5;

    /// The actions belong to `window`; all must outlive it.
    ViewModeActions(QWidget& window, const Theme& theme, BrowserTabsModel& tabs, AppServices& services);

    [[nodiscard]] QAction* details() const noexcept { return actions_[0]; }
    [[nodiscard]] QAction* largeIcons() const noexcept { return actions_[3]; }
    void addTo(QMenu& menu) const;
    void setEnabled(bool isEnabled);

private:
    void choose(std::size_t index);
    void refresh();

    ActivePane pane_;
    AppServices* services_;
    std::array<QAction*, count> actions_{};
};

} // namespace ombrel
