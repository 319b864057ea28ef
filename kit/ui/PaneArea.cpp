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
    connect(&model, &BrowserModel::locationChanged, this, &PaneArea::showHomeOrFolder);
}

FileView& PaneArea::view() const noexcept {
    return *details_;
}

void PaneArea::setHomePage(QWidget* page) {
    homePage_ = page;
    layout()->addWidget(page);
    showHomeOrFolder();
}

void PaneArea::showHomeOrFolder() {
    if (!homePage_) return;
    const bool isHome = !model_->currentURL();
    const QWidget* const focused = window()->focusWidget();
    const bool hadFocus = focused && isAncestorOf(focused);
    homePage_->setVisible(isHome);
    details_->setVisible(!isHome);
    setFocusProxy(isHome ? homePage_ : static_cast<QWidget*>(details_));
    if (hadFocus) focusContent();
}

void PaneArea::focusContent() {
    focusProxy()->setFocus(Qt::OtherFocusReason);
}

} // namespace ombrel
