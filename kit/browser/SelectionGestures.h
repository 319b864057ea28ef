#pragma once

#include "browser/BrowserModel.h"
#include "browser/ItemSet.h"
#include "browser/RowRange.h"

#include <QObject>

#include <cstdint>
#include <memory>
#include <optional>
#include <span>

namespace ombrel {

/// What clicks, keys and the rubber band do to a pane's selection, its current row and its anchor. Main
/// thread only.
class SelectionGestures {
public:
    enum class How : std::uint8_t {
        only,        ///< this row and no other
        toggle,      ///< this row in or out, the others kept
        range,       ///< from the anchor to this row and no other
        addRange,    ///< from the anchor to this row, the others kept
        currentOnly, ///< the current row moves and nothing is selected
    };

    /// `model` must outlive it.
    explicit SelectionGestures(BrowserModel& model) : model_(&model) {}

    void select(std::size_t row, How how);
    /// A click beside all rows.
    void clear();
    void selectAll();
    /// A click on the header's box: everything, or nothing when everything is selected.
    void toggleAll();

    // ---- The rubber band

    enum class BandMode : std::uint8_t { replace, add, flip };
    void beginBand(BandMode mode);
    /// The rows that the band touches now; what it touched before and no longer does is as it was. The items
    /// may have changed meanwhile.
    void moveBand(std::span<const RowRange> rows, std::optional<std::size_t> nearest);
    void endBand() { band_.reset(); }
    [[nodiscard]] bool hasBand() const noexcept { return band_.has_value(); }

private:
    struct Band {
        BandMode mode;
        ItemSet before;
        std::unique_ptr<QObject> follower; ///< of the items, as long as the band lasts
    };

    BrowserModel* model_;
    std::optional<Band> band_;
};

} // namespace ombrel
