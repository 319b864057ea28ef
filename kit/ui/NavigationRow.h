#pragma once

#include "base/FileURL.h"
#include "ui/ActivePane.h"

#include <QWidget>

class QAction;

namespace ombrel {

class AddressBar;
class AppServices;
class BrowserTabsModel;
class GlyphButton;
class SearchField;
class Theme;

/// Back, forward, up, refresh, and the address of the active tab.
class NavigationRow final : public QWidget {
    Q_OBJECT

public:
    struct Actions {
        QAction* back;
        QAction* forward;
        QAction* up;
        QAction* refresh;
    };

    /// `tabs`, `services` and `theme` must outlive it; the actions are the window's.
    NavigationRow(BrowserTabsModel& tabs, AppServices& services, const Theme& theme, const FileURL& home,
                  const Actions& actions, QWidget* parent = nullptr);

    [[nodiscard]] AddressBar& addressBar() const noexcept { return *address_; }
    [[nodiscard]] SearchField& searchField() const noexcept { return *search_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void takeSizes();
    void refreshStop();

    const Theme* theme_;
    ActivePane pane_;
    AddressBar* address_ = nullptr;
    SearchField* search_ = nullptr;
    GlyphButton* refresh_ = nullptr;
    QAction* refreshing_;
    QAction* stop_;
};

} // namespace ombrel
