#pragma once

#include <QDialog>

namespace ombrel {

class Theme;

/// What this program is. Modal to its window; deletes itself.
class AboutDialog final : public QDialog {
    Q_OBJECT

public:
    /// `theme` must outlive it.
    AboutDialog(const Theme& theme, QWidget* parent);
};

} // namespace ombrel
