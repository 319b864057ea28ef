#include "browser/LiveReload.h"

#include <utility>

namespace ombrel {

LiveReload::LiveReload(std::function<void()> reload) : reload_(std::move(reload)) {
    alarm_.setSingleShot(true);
    QObject::connect(&alarm_, &QTimer::timeout, &alarm_, [this] { reloadWhenPossible(); });
}

void LiveReload::listingBegan() {
    began_ = Clock::now();
    isOutdated_ = false;
    alarm_.stop();
}

void LiveReload::listingEnded() {
    if (!began_) return;
    const auto now = Clock::now();
    restsUntil_ = now + restPerListing * (now - *began_);
    began_.reset();
    reloadWhenPossible();
}

void LiveReload::noteChange() {
    isOutdated_ = true;
    reloadWhenPossible();
}

void LiveReload::setHeld(bool held) {
    isHeld_ = held;
    reloadWhenPossible();
}

void LiveReload::forget() {
    began_.reset();
    isOutdated_ = false;
    alarm_.stop();
}

void LiveReload::reloadWhenPossible() {
    if (!isOutdated_ || isHeld_ || began_) return;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(restsUntil_ - Clock::now());
    if (left.count() > 0)
        alarm_.start(left);
    else
        reload_();
}

} // namespace ombrel
