#pragma once

#include <QWidget>

namespace ombrel {

class BrowserModel;
class DetailsView;
class FileView;
class KeyRouter;
class Overlay;
class Theme;

/// What one tab shows of its pane: the items in a file view, and over them why there are none.
class PaneArea final : public QWidget {
    Q_OBJECT

public:
    /// All must outlive it; `keys` is where keys go that mean commands.
    PaneArea(BrowserModel& model, const Theme& theme, const KeyRouter& keys, QWidget* parent = nullptr);

    [[nodiscard]] BrowserModel& model() const noexcept { return *model_; }
    /// The file view that shows the items.
    [[nodiscard]] FileView& view() const noexcept;
    [[nodiscard]] Overlay& overlay() const noexcept { return *overlay_; }

    /// What is shown while the pane is at home; the area takes it over.
    void setHomePage(QWidget* page);

    /// Gives the keyboard to what the area shows.
    void focusContent();

Q_SIGNALS:
    /// A double click on a row.
    void openRequested(std::size_t row);
    /// `view` is another one than before.
    void viewChanged();

private:
    void showHomeOrFolder();

    BrowserModel* model_;
    DetailsView* details_;
    Overlay* overlay_;
    QWidget* homePage_ = nullptr;
};

} // namespace ombrel
