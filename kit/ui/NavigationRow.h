#pragma once

#include "base/FileURL.h"

#include <QWidget>

class QAction;

namespace ombrel {

class BrowserTabsModel;
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

    /// `tabs` and `theme` must outlive it; the actions are the window's.
    NavigationRow(BrowserTabsModel& tabs, const Theme& theme, const FileURL& home, const Actions& actions,
                  QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void takeSizes();
    const Theme* theme_;
};

} // namespace ombrel
