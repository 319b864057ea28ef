#pragma once

#include "services/IconSize.h"
#include "ui/FileView.h"
#include "ui/NameLines.h"
#include "ui/TextLines.h"

#include <optional>

namespace ombrel {

/// A pane's items as cells with a large icon or thumbnail, spread evenly over the width.
class IconsView final : public FileView {
    Q_OBJECT

public:
    IconsView(BrowserModel& model, const Theme& theme, QWidget* parent = nullptr);

    [[nodiscard]] IconSize iconSize() const noexcept { return size_; }
    /// The item of `anchor`, else what the user looks at, keeps its place.
    void setIconSize(IconSize size, std::optional<Anchor> anchor = std::nullopt);
    /// How many cells stand side by side.
    [[nodiscard]] int columns() const noexcept { return columns_; }

    void layOut() override;
    [[nodiscard]] qint64 contentHeight() const override;
    using FileView::contentRect;
    [[nodiscard]] ContentRect contentRect(std::size_t row) const override;
    [[nodiscard]] std::vector<RowRange> rowsTouching(const ContentRect& area) const override;
    [[nodiscard]] NamePlace namePlace(std::size_t row) const override;
    [[nodiscard]] Part partAt(std::size_t row, QPoint viewportPoint) override;
    [[nodiscard]] std::size_t stepped(std::size_t row, Step step) const override;
    [[nodiscard]] std::size_t rowsPerPage() const override;
    [[nodiscard]] int scrollStep() const override;

protected:
    void paintRow(QPainter& painter, std::size_t row, const QRect& rect, const RowState& state) override;
    /// A cell that shows its name to the end: the current one, and the only selected one.
    [[nodiscard]] bool isRaised(std::size_t row, const RowState& state) override;
    void paintPlaceholder(QPainter& painter, int index) override;
    [[nodiscard]] QString toolTipAt(std::size_t row, QPoint viewportPoint) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    /// The parts of a cell.
    struct Measures {
        QSize image;
        QSize cell;
        int lines = 2; ///< of a name
        int lineHeight = 1;
        int top = 0;       ///< of the image's box in the cell
        int textTop = 0;   ///< of the first line
        int linePitch = 1; ///< from one line of cells to the next
        int inset = 0;
    };

    [[nodiscard]] Measures measures() const;
    /// From the left of the contents.
    [[nodiscard]] int cellLeft(int column) const;
    [[nodiscard]] std::size_t lineCount() const;
    [[nodiscard]] QRect imageRect(const QRect& cell) const;
    [[nodiscard]] QRect textRect(const QRect& cell, int lines) const;
    [[nodiscard]] QRect checkBoxRect(const QRect& cell) const;
    void paintPicture(QPainter& painter, std::size_t row, const QRect& cell);

    IconSize size_ = IconSize::large;
    Measures measures_;
    int columns_ = 1;
    NameLines names_;
    TextLines texts_;
};

} // namespace ombrel
