#pragma once

#include "base/FileURL.h"

#include <QWidget>

class QAction;

namespace ombrel {

class BrowserModel;
class Theme;

/// Back, forward, up, refresh, and the address.
class NavigationRow final : public QWidget {
    Q_OBJECT

public:
    struct Actions {
        QAction* back;
        QAction* forward;
        QAction* up;
        QAction* refresh;
    };

    /// `model` and `theme` must outlive it; the actions are the window's.
    NavigationRow(BrowserModel& model, const Theme& theme, const FileURL& home, const Actions& actions,
                  QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void takeSizes();
    const Theme* theme_;
};

} // namespace ombrel
