#pragma once

#include "ui/DetailsHeader.h"
#include "ui/FileView.h"
#include "ui/TextLines.h"

namespace ombrel {

/// A pane's items as a list of rows with columns.
class DetailsView final : public FileView {
    Q_OBJECT

public:
    DetailsView(BrowserModel& model, const Theme& theme, QWidget* parent = nullptr);
    ~DetailsView() override;

    [[nodiscard]] DetailsHeader& header() const noexcept { return *header_; }

    void layOut() override;
    [[nodiscard]] qint64 contentHeight() const override;
    [[nodiscard]] int contentWidth() const override;
    using FileView::contentRect;
    [[nodiscard]] ContentRect contentRect(std::size_t row) const override;
    [[nodiscard]] std::vector<RowRange> rowsTouching(const ContentRect& area) const override;
    [[nodiscard]] NamePlace namePlace(std::size_t row) const override;
    [[nodiscard]] Part partAt(std::size_t row, QPoint viewportPoint) override;
    [[nodiscard]] std::size_t stepped(std::size_t row, Step step) const override;
    [[nodiscard]] std::size_t rowsPerPage() const override;
    [[nodiscard]] int scrollStep() const override { return rowHeight_; }

protected:
    void paintRow(QPainter& painter, std::size_t row, const QRect& rect, const RowState& state) override;
    void paintPlaceholder(QPainter& painter, int index) override;
    [[nodiscard]] QString toolTipAt(std::size_t row, QPoint viewportPoint) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    void placeHeader();
    /// Of an item that a search has found: where it lies, from the folder that was searched.
    [[nodiscard]] QString folderText(std::size_t row) const;
    void fitColumn(DetailsColumn column);
    [[nodiscard]] int iconSize() const;
    [[nodiscard]] int inset() const;
    [[nodiscard]] int besideColumns() const;
    /// A column's part of a row, in the viewport.
    [[nodiscard]] QRect cell(const QRect& row, DetailsColumn column) const;
    [[nodiscard]] QRect mirrored(const QRect& in, const QRect& rect) const;
    [[nodiscard]] QRect nameTextRect(const QRect& row) const;
    void paintIcon(QPainter& painter, std::size_t row, const QRect& rect);
    void paintText(QPainter& painter, const QRect& row, DetailsColumn column, const QString& text);

    int rowHeight_ = 1;
    TextLines lines_;
    DetailsHeader* header_;
    QWidget* besideHeader_; ///< keeps the vertical scroll bar below the header
};

} // namespace ombrel
