#include "ui/PaneArea.h"

#include "ui/DetailsView.h"
#include "ui/Overlay.h"

#include <QVBoxLayout>

namespace ombrel {

PaneArea::PaneArea(BrowserModel& model, const Theme& theme, const KeyRouter& keys, QWidget* parent)
    : QWidget(parent), model_(&model), details_(new DetailsView(model, theme, this)),
      overlay_(new Overlay(model, theme, details_->viewport())) {
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins({});
    column->addWidget(details_);
    details_->setKeys(keys);
    setFocusProxy(details_);
    connect(details_, &FileView::openRequested, this, &PaneArea::openRequested);
}

FileView& PaneArea::view() const noexcept {
    return *details_;
}

void PaneArea::focusContent() {
    details_->setFocus(Qt::OtherFocusReason);
}

} // namespace ombrel
