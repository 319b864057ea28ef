#pragma once

#include "base/FileURL.h"

#include <QWidget>

#include <vector>

class QHBoxLayout;

namespace ombrel {

class BrowserModel;
class GlyphButton;
class Theme;

/// The address of a pane as a row of its folders, each a button that goes there. It begins at the home
/// folder, or at the root for what lies elsewhere. Crumbs that do not fit collapse, the first ones first,
/// into a button with a menu.
class CrumbBar final : public QWidget {
    Q_OBJECT

public:
    /// `model` and `theme` must outlive it.
    CrumbBar(BrowserModel& model, const Theme& theme, FileURL home, QWidget* parent = nullptr);

    /// Shows the address of another pane from now on, which must outlive it too.
    void setModel(BrowserModel& model);

    /// The folders of the crumbs that a location has.
    [[nodiscard]] static std::vector<FileURL> crumbs(const FileURL& location, const FileURL& home);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    class Crumb;
    void rebuild();
    void arrange();
    void showCollapsed();

    BrowserModel* model_;
    const Theme* theme_;
    FileURL home_;
    GlyphButton* collapsed_;
    std::vector<Crumb*> crumbs_;
    std::size_t firstShown_ = 0;
};

} // namespace ombrel
