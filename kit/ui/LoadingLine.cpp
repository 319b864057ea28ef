#include "ui/LoadingLine.h"

#include "browser/BrowserModel.h"
#include "ui/Theme.h"

#include <QPainter>

#include <chrono>

namespace ombrel {
namespace {

constexpr std::chrono::milliseconds shortLoading(250);

} // namespace

LoadingLine::LoadingLine(const BrowserModel& model, const Theme& theme, QWidget* parent)
    : QWidget(parent), model_(&model), theme_(&theme) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    hide();
    delay_.setSingleShot(true);
    delay_.setInterval(shortLoading);
    connect(&delay_, &QTimer::timeout, this, [this] {
        show();
        raise();
        grow();
    });
    connect(&motion_, &QVariantAnimation::valueChanged, this, [this](const QVariant& value) {
        share_ = value.toDouble();
        update();
    });
    connect(&motion_, &QVariantAnimation::finished, this, [this] {
        if (!delay_.isActive() && model_->listingState() != ListingState::Case::loading) hide();
    });
    connect(&model, &BrowserModel::locationChanged, this, &LoadingLine::begin);
    connect(&model, &BrowserModel::itemsChanged, this, [this] {
        if (model_->allItems().empty()) return;
        ++states_;
        grow();
    });
    connect(&model, &BrowserModel::listingStateChanged, this, &LoadingLine::follow);
    begin();
    follow();
}

void LoadingLine::begin() {
    motion_.stop();
    hide();
    states_ = 0;
    share_ = 0;
    delay_.start();
}

void LoadingLine::grow() {
    if (isVisible()) moveTo(states_ / (states_ + 1.0));
}

void LoadingLine::follow() {
    if (model_->listingState() == ListingState::Case::loading) return;
    delay_.stop();
    if (model_->listingState() == ListingState::Case::loaded && isVisible())
        moveTo(1);
    else
        hide();
}

void LoadingLine::moveTo(double share) {
    motion_.stop();
    motion_.setDuration(theme_->duration(ThemeDuration::progress));
    motion_.setStartValue(share_);
    motion_.setEndValue(share);
    motion_.start();
}

void LoadingLine::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    QRectF line(rect());
    line.setWidth(line.width() * share_);
    if (layoutDirection() == Qt::RightToLeft) line.moveRight(width());
    painter.fillRect(line, theme_->color(ThemeColor::accent));
}

} // namespace ombrel
