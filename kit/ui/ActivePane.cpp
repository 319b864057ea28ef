#include "ui/ActivePane.h"

#include "browser/BrowserTabsModel.h"

#include <utility>

namespace ombrel {

BrowserModel& ActivePane::operator*() const {
    return tabs_->activeTab();
}

void ActivePane::follow(Follow take) {
    take_ = std::move(take);
    QObject::connect(tabs_, &BrowserTabsModel::activeTabChanged, &tabsContext_, [this] { takeActive(); });
    takeActive();
}

void ActivePane::takeActive() {
    paneContext_ = std::make_unique<QObject>();
    take_(**this, *paneContext_);
}

} // namespace ombrel
