#pragma once

#include <QSplitter>

#include <array>
#include <cstdint>

namespace ombrel {

class Theme;

/// The navigation tree, the file views and the details pane beside one another, the outer two as wide as the
/// user drags them.
///
/// A side gives way while the window is too narrow for it, and comes back as wide as it was. The tree folds
/// away when it is dragged below its least width, and can be dragged out again.
class PaneSplitter final : public QSplitter {
    Q_OBJECT

public:
    enum class Side : std::uint8_t { tree, details };

    /// `theme` must outlive it; `centre` stands between the sides.
    PaneSplitter(const Theme& theme, QWidget* centre, QWidget* parent = nullptr);

    /// Takes `widget` over.
    void put(Side side, QWidget* widget);
    /// Whether a side is to be seen where there is room for it. At first it is.
    void setWanted(Side side, bool isWanted);
    [[nodiscard]] bool isShown(Side side) const;

    /// What the user has chosen, in device-independent pixels, whether or not there is room for it now; 0 for
    /// a tree that is folded away.
    [[nodiscard]] int width(Side side) const;
    using QSplitter::width;
    void setWidth(Side side, int width);

protected:
    QSplitterHandle* createHandle() override;
    void resizeEvent(QResizeEvent* event) override;

private:
    class Grip;
    struct Place {
        QWidget* widget = nullptr;
        int width = 0;
        bool isWanted = true;
    };

    [[nodiscard]] Place& at(Side side) noexcept { return places_[static_cast<std::size_t>(side)]; }
    [[nodiscard]] const Place& at(Side side) const noexcept {
        return places_[static_cast<std::size_t>(side)];
    }
    [[nodiscard]] bool hasRoom(Side side) const;
    void takeSizes();
    void arrange();
    void noteWidths();

    const Theme* theme_;
    QWidget* centre_;
    std::array<Place, 2> places_;
};

} // namespace ombrel
