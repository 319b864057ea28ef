#include "ui/PaneArea.h"

#include "services/AppSettings.h"
#include "ui/DetailsView.h"
#include "ui/IconsView.h"
#include "ui/Overlay.h"

#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace ombrel {

PaneArea::PaneArea(BrowserModel& model, const Theme& theme, const KeyRouter& keys,
                   const FileView::Sources& sources, QWidget* parent)
    : QWidget(parent), model_(&model), theme_(&theme), keys_(&keys), sources_(sources),
      details_(new DetailsView(model, theme, this)), view_(details_),
      overlay_(new Overlay(model, theme, details_->viewport())) {
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins({});
    equip(*details_);
    setFocusProxy(details_);
    connect(&model, &BrowserModel::locationChanged, this, &PaneArea::showHomeOrFolder);
    connect(&model, &BrowserModel::viewModeChanged, this, &PaneArea::followMode);
    followMode();
    model.requestRename = [this](std::size_t row) { view_->beginRename(row); };
}

void PaneArea::equip(FileView& view) {
    view.setKeys(*keys_);
    view.setSources(sources_);
    layout()->addWidget(&view);
    connect(&view, &FileView::openRequested, this, &PaneArea::openRequested);
    connect(&view, &FileView::tabRequested, this, &PaneArea::tabRequested);
    connect(&view, &FileView::zoomRequested, this, &PaneArea::zoom);
    connect(&view, &FileView::dropEffectChanged, overlay_,
            [this, &view] { overlay_->inviteDrop(view.drop().isAllowed()); });
}

void PaneArea::followMode() {
    const bool showsIcons = model_->viewMode() == ViewMode::icons;
    if (showsIcons && !icons_) {
        icons_ = new IconsView(*model_, *theme_, this);
        equip(*icons_);
    }
    FileView* const shown = showsIcons ? static_cast<FileView*>(icons_) : details_;
    if (shown == view_) return;
    FileView* const before = std::exchange(view_, shown);
    // What the user looks at is to be seen in the other view too.
    const bool isZooming = anchor_.has_value();
    const auto anchor = isZooming ? std::exchange(anchor_, std::nullopt)
                                  : before->anchorAt(before->viewport()->rect().center());
    const bool keepsPlace = anchor && (before->offset() > 0 || isZooming);
    const bool hadFocus = before->hasFocus();
    before->hide();
    const bool isAtHome = homePage_ && !model_->currentURL();
    view_->setVisible(!isAtHome);
    if (!isAtHome) setFocusProxy(view_);
    layout()->activate();
    if (keepsPlace)
        view_->restore(*anchor);
    else
        view_->scrollTo(0);
    overlay_->lieOver(view_->viewport());
    if (hadFocus) view_->setFocus(Qt::OtherFocusReason);
    if (sources_.settings) sources_.settings->setShowsIcons(showsIcons);
    Q_EMIT viewChanged();
}

/// Details, and then icons from the smallest to the largest.
void PaneArea::zoom(int step, QPoint at) {
    const auto anchor = view_->anchorAt(at);
    const bool isDetails = model_->viewMode() == ViewMode::details;
    const int largest = static_cast<int>(iconSizeCount);
    const int now = isDetails || !icons_ ? 0 : 1 + std::to_underlying(icons_->iconSize());
    const int wanted = std::clamp(now + step, 0, largest);
    if (wanted == now) return;
    if (wanted == 0) {
        anchor_ = anchor;
        model_->setViewMode(ViewMode::details);
        return;
    }
    const auto size = static_cast<IconSize>(wanted - 1);
    if (!isDetails) return icons_->setIconSize(size, anchor);
    if (sources_.settings) sources_.settings->setIconSize(size);
    anchor_ = anchor;
    model_->setViewMode(ViewMode::icons);
    icons_->setIconSize(size, anchor);
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
    view_->setVisible(!isHome);
    setFocusProxy(isHome ? homePage_ : static_cast<QWidget*>(view_));
    if (hadFocus) focusContent();
}

void PaneArea::focusContent() {
    focusProxy()->setFocus(Qt::OtherFocusReason);
}

} // namespace ombrel
