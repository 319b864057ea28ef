#pragma once

#include "browser/BrowserModel.h"

#include <QHeaderView>
#include <QTimer>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace ombrel {

class Theme;

/// The columns of the details view, by their number in the header's model.
enum class DetailsColumn : std::uint8_t {
    checkBox,
    name,
    dateModified,
    type,
    size,
    folder, ///< where a search found the item
};
inline constexpr std::size_t detailsColumnCount = 6;

/// The header of the details view: a click sorts, edges are dragged, columns are moved and hidden.
///
/// Together the columns are always as wide as the view: what one gains its neighbour gives, and the name
/// takes what is left, so that the list scrolls sideways only where the least widths do not fit.
class DetailsHeader final : public QHeaderView {
    Q_OBJECT

public:
    /// `model` and `theme` must outlive it.
    DetailsHeader(BrowserModel& model, const Theme& theme, QWidget* parent);

    /// Spreads the columns over `width` pixels.
    void fitInto(int width);
    /// Where a column begins, from the left of the contents, and how wide it is; 0 wide when it is hidden.
    [[nodiscard]] int left(DetailsColumn column) const;
    [[nodiscard]] int width(DetailsColumn column) const;
    [[nodiscard]] int totalWidth() const { return length(); }
    /// Makes a column as wide as `content`, its margins not counted, as far as the others keep their place in
    /// the view: none of them becomes narrower than it usually is, but the name.
    void fit(DetailsColumn column, int content);
    void resetColumns();
    /// The columns in their order, with widths and whether they are hidden: to be kept and given back.
    [[nodiscard]] std::vector<std::string> arrangement() const;
    /// The usual arrangement without one; what cannot be understood is left out.
    void arrange(const std::vector<std::string>& columns);
    void setShowsCheckBoxes(bool on);
    /// The column of the items' folders, for results of a search.
    void setShowsFolders(bool on);

    [[nodiscard]] static QString label(DetailsColumn column);

Q_SIGNALS:
    void columnsChanged();
    /// The user has changed the arrangement.
    void arranged();
    void toggleAllRequested();
    void fitRequested(ombrel::DetailsColumn column);

protected:
    void paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const override;
    QSize sizeHint() const override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void paintLabel(QPainter& painter, const QRect& rect, DetailsColumn column) const;
    void paintCheckBox(QPainter& painter, const QRect& rect) const;
    void setShown(DetailsColumn column, bool on);
    void sortBy(DetailsColumn column);
    void shareEdge(int logicalIndex, int before, int after);
    void keepFirstColumns();
    void growName(int wanted);
    [[nodiscard]] int roomFor(DetailsColumn column) const;
    void setWidth(DetailsColumn column, int width);
    [[nodiscard]] int leastWidth(DetailsColumn column) const;
    [[nodiscard]] int usualWidth(DetailsColumn column) const;
    [[nodiscard]] bool isShown(DetailsColumn column) const;

    BrowserModel* model_;
    const Theme* theme_;
    int available_ = 0;
    int hovered_ = -1;
    bool isArranging_ = false;
    QTimer settling_; ///< until an edge that is being dragged has come to rest
};

} // namespace ombrel
