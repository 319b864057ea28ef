#include "browser/SelectionGestures.h"

#include <utility>

namespace ombrel {

using Place = BrowserModel::Place;
using Change = FileSelection::Change;

void SelectionGestures::select(std::size_t row, How how) {
    const std::size_t anchor = model_->row(Place::anchor).value_or(model_->row(Place::current).value_or(row));
    auto selection = model_->selection();
    if (how == How::only || how == How::range) selection.clear();
    switch (how) {
    case How::only: selection.change(row, Change::add); break;
    case How::toggle: selection.change(row, Change::flip); break;
    case How::range:
    case How::addRange: selection.change(RowRange::between(anchor, row), Change::add); break;
    case How::currentOnly: break;
    }
    const bool setsAnchor = how == How::only || how == How::toggle;
    if (how != How::currentOnly) model_->setRow(Place::anchor, setsAnchor ? row : anchor);
    model_->setRow(Place::current, row);
    model_->setSelection(std::move(selection));
}

void SelectionGestures::clear() {
    auto selection = model_->selection();
    selection.clear();
    model_->setSelection(std::move(selection));
}

void SelectionGestures::selectAll() {
    auto selection = model_->selection();
    selection.selectAll();
    model_->setSelection(std::move(selection));
}

void SelectionGestures::toggleAll() {
    model_->selection().isEverything() ? clear() : selectAll();
}

void SelectionGestures::beginBand(BandMode mode) {
    band_ = Band{mode, mode == BandMode::replace ? ItemSet() : model_->selection().set(),
                 std::make_unique<QObject>()};
    QObject::connect(
        model_, &BrowserModel::itemsSucceeded, band_->follower.get(),
        [this](const ItemSuccession& succession) { band_->before = succession.successors(band_->before); });
}

void SelectionGestures::moveBand(std::span<const RowRange> rows, std::optional<std::size_t> nearest) {
    if (!band_) return;
    auto selection = model_->selection();
    selection.select(band_->before);
    for (const RowRange& range : rows)
        selection.change(range, band_->mode == BandMode::flip ? Change::flip : Change::add);
    if (nearest) {
        model_->setRow(Place::current, nearest);
        model_->setRow(Place::anchor, nearest);
    }
    model_->setSelection(std::move(selection));
}

} // namespace ombrel
