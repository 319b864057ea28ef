#include "ui/DetailsPane.h"

#include "base/FileName.h"
#include "browser/AddressCrumbs.h"
#include "browser/Places.h"
#include "services/AppServices.h"
#include "ui/FactRows.h"
#include "ui/FactTable.h"
#include "ui/ItemPreview.h"
#include "ui/LocalizedText.h"
#include "ui/OutlineButton.h"
#include "ui/TextLabel.h"
#include "ui/WrappedName.h"

#include <QBoxLayout>
#include <QPainter>
#include <QScrollArea>
#include <QScrollBar>

namespace ombrel {

DetailsPane::DetailsPane(const Setting& setting, QWidget* parent)
    : QWidget(parent), theme_(&setting.theme), services_(&setting.services), home_(setting.home),
      values_(Theme::delay(ThemeDelay::selectionQuiet)), scroll_(new QScrollArea(this)),
      content_(new QWidget), preview_(new ItemPreview(setting.theme, setting.thumbnails, content_)),
      name_(new WrappedName(setting.theme, content_)),
      type_(new ElidedLabel(setting.theme, Qt::ElideRight, ThemeColor::textSecondary, content_)),
      facts_(new FactTable(setting.theme, ThemeSize::detailsCaptions, content_)), buttons_(new QHBoxLayout),
      open_(new OutlineButton(setting.theme, Glyph::openItem, localized("ui.command.open"), content_)),
      properties_(
          new OutlineButton(setting.theme, Glyph::properties, localized("ui.command.showInfo"), content_)) {
    setAccessibleName(localized("ui.command.toggleDetailsPane"));
    layOut();
    connect(&setting.theme, &Theme::changed, this, &DetailsPane::takeSizes);
    takeSizes();
    connect(&values_, &DetailsValues::changed, this, &DetailsPane::refresh);
    connect(open_, &QAbstractButton::clicked, this, &DetailsPane::openRequested);
    connect(properties_, &QAbstractButton::clicked, this, &DetailsPane::propertiesRequested);
    refresh();
}

void DetailsPane::layOut() {
    auto* const all = new QVBoxLayout(this);
    all->setContentsMargins({});
    all->addWidget(scroll_);
    scroll_->setFrameShape(QFrame::NoFrame);
    scroll_->setWidgetResizable(true);
    scroll_->setFocusPolicy(Qt::NoFocus);
    scroll_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // Its room is always kept, within the margin, so that nothing moves when it is needed.
    scroll_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    scroll_->viewport()->setAutoFillBackground(false);
    content_->setAutoFillBackground(false);
    auto* const column = new QVBoxLayout(content_);
    column->setSpacing(0);
    column->addWidget(preview_);
    column->addSpacing(theme_->size(ThemeSize::space12));
    column->addWidget(name_);
    column->addSpacing(theme_->size(ThemeSize::space2));
    column->addWidget(type_);
    column->addSpacing(theme_->size(ThemeSize::space8));
    column->addWidget(facts_);
    column->addSpacing(theme_->size(ThemeSize::space16));
    column->addLayout(buttons_);
    column->addStretch(1);
    buttons_->addWidget(open_, 0, Qt::AlignLeading);
    buttons_->addWidget(properties_, 0, Qt::AlignLeading);
    buttons_->addStretch(1);
    scroll_->setWidget(content_);
    content_->setAutoFillBackground(false);
}

void DetailsPane::takeSizes() {
    const int margin = theme_->size(ThemeSize::space16);
    const int beside = margin - theme_->size(ThemeSize::scrollBar);
    const bool isRightToLeft = layoutDirection() == Qt::RightToLeft;
    content_->layout()->setContentsMargins(isRightToLeft ? beside : margin, margin,
                                           isRightToLeft ? margin : beside, margin);
    buttons_->setSpacing(theme_->size(ThemeSize::space8));
    QPalette ground = theme_->palette();
    ground.setColor(QPalette::Base, theme_->color(ThemeColor::surfaceAlt));
    scroll_->verticalScrollBar()->setPalette(ground);
    arrangeButtons();
    update();
}

/// One below the other where they do not fit beside each other.
void DetailsPane::arrangeButtons() {
    const int room = width() - 2 * theme_->size(ThemeSize::space16);
    const int wanted = open_->sizeHint().width() + buttons_->spacing() + properties_->sizeHint().width();
    buttons_->setDirection(wanted <= room ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
}

void DetailsPane::follow(BrowserModel& pane) {
    disconnect(following_);
    following_ = connect(&pane, &BrowserModel::selectionChanged, this, &DetailsPane::refreshButtons);
    values_.follow(pane);
    refreshButtons();
}

bool DetailsPane::isSettled() const {
    return !isVisible() || (values_.isSettled() && preview_->isSettled());
}

std::optional<OverlayContent> DetailsPane::troubleNow() const {
    const BrowserModel* const pane = values_.pane();
    const auto& about = values_.content().facts.url;
    if (!pane || !pane->selection().empty() || pane->currentURL() != about) return std::nullopt;
    const ListingState& state = pane->listingState();
    const bool isLost = state == ListingState::Case::failed || state == ListingState::Case::invalidated;
    return isLost ? OverlayContent::of(*pane) : std::nullopt;
}

QString DetailsPane::nameNow() const {
    const auto& content = values_.content();
    if (content.count > 1) return localized("ui.status.selected", static_cast<std::int64_t>(content.count));
    const FileItem* const item = content.previews.empty() ? nullptr : &content.previews.front();
    // As the rows of the file view call it, endings left out where the user wants that.
    if (!item || content.facts.url.isRoot() || item->name() != content.facts.url.name())
        return QString::fromStdString(AddressCrumbs::titleOf(content.facts.url, services_));
    return QString::fromStdString(FileName::displayText(services_->settings().displayName(*item)));
}

QString DetailsPane::typeNow() const {
    const auto& content = values_.content();
    if (content.count > 1) return QString::fromStdString(content.common.type);
    if (content.facts.problem) return FactRows::problem(*content.facts.problem);
    return QString::fromStdString(content.facts.type);
}

void DetailsPane::refresh() {
    const auto& content = values_.content();
    content_->setVisible(content.count > 0);
    if (content.count == 0) return;
    const auto trouble = troubleNow();
    if (trouble)
        preview_->setFolderInTrouble(trouble->badge);
    else
        preview_->setItems(content.previews, content.count > 1 ? ItemPreview::Arrangement::fan
                                                               : ItemPreview::Arrangement::card);
    name_->setName(trouble ? FactRows::nameOf(content.facts.url) : nameNow());
    const QString type = trouble ? trouble->title : typeNow();
    type_->setText(type);
    // That of one item may still come.
    type_->setVisible(content.count == 1 || !type.isEmpty());
    facts_->setFacts(FactRows::inBrief(values_, [this](const FileURL& folder) {
        return Places::trail(folder, services_->access(), home_);
    }));
    refreshButtons();
}

void DetailsPane::refreshButtons() {
    open_->setEnabled(values_.pane() && !values_.pane()->selection().empty());
}

void DetailsPane::paintEvent(QPaintEvent*) {
    QPainter(this).fillRect(rect(), theme_->color(ThemeColor::surfaceAlt));
}

void DetailsPane::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    arrangeButtons();
}

void DetailsPane::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    values_.setActive(true);
}

void DetailsPane::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    values_.setActive(false);
}

} // namespace ombrel
