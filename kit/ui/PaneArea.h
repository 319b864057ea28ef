#pragma once

#include "ui/FileView.h"

#include <QWidget>

#include <optional>

namespace ombrel {

class DetailsView;
class IconsView;
class Overlay;

/// What one tab shows of its pane: the items in one of the file views, and over them why there are none.
class PaneArea final : public QWidget {
    Q_OBJECT

public:
    /// All must outlive it; `keys` is where keys go that mean commands.
    PaneArea(BrowserModel& model, const Theme& theme, const KeyRouter& keys,
             const FileView::Sources& sources = {}, QWidget* parent = nullptr);

    [[nodiscard]] BrowserModel& model() const noexcept { return *model_; }
    /// The file view that shows the items.
    [[nodiscard]] FileView& view() const noexcept { return *view_; }
    [[nodiscard]] Overlay& overlay() const noexcept { return *overlay_; }

    /// What is shown while the pane is at home; the area takes it over.
    void setHomePage(QWidget* page);

    /// Gives the keyboard to what the area shows.
    void focusContent();

Q_SIGNALS:
    /// A double click on a row.
    void openRequested(std::size_t row);
    /// A middle click on a row.
    void tabRequested(std::size_t row);
    /// `view` is another one than before.
    void viewChanged();

private:
    void showHomeOrFolder();
    void equip(FileView& view);
    void followMode();
    void zoom(int step, QPoint at);

    BrowserModel* model_;
    const Theme* theme_;
    const KeyRouter* keys_;
    FileView::Sources sources_;
    DetailsView* details_;
    IconsView* icons_ = nullptr; ///< made when it is first looked at
    FileView* view_;
    Overlay* overlay_;
    QWidget* homePage_ = nullptr;
    std::optional<FileView::Anchor> anchor_; ///< what is to keep its place in the next view
};

} // namespace ombrel
