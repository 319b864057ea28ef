#include "ui/ViewModeActions.h"

#include "browser/BrowserTabsModel.h"
#include "services/AppServices.h"
#include "ui/GlyphIcon.h"
#include "ui/LocalizedText.h"

#include <QActionGroup>
#include <QMenu>

#include <string_view>

namespace ombrel {
namespace {

constexpr std::array<std::string_view, ViewModeActions::count> textKeys = {
    "ui.view.details", "ui.view.smallIcons", "ui.view.mediumIcons", "ui.view.largeIcons",
    "ui.view.extraLargeIcons"};

} // namespace

ViewModeActions::ViewModeActions(QWidget& window, const Theme& theme, BrowserTabsModel& tabs,
                                 AppServices& services)
    : QObject(&window), pane_(tabs), services_(&services) {
    auto* const group = new QActionGroup(this);
    for (std::size_t i = 0; i < count; ++i) {
        auto* const action = new QAction(localized(textKeys[i]), &window);
        action->setCheckable(true);
        action->setIcon(glyphIcon(theme, i == 0 ? Glyph::list : Glyph::grid));
        group->addAction(action);
        connect(action, &QAction::triggered, this, [this, i] { choose(i); });
        actions_[i] = action;
    }
    connect(&services.settings(), &AppSettings::changed, this, &ViewModeActions::refresh);
    pane_.follow([this](const BrowserModel& pane, QObject& context) {
        connect(&pane, &BrowserModel::viewModeChanged, &context, [this] { refresh(); });
        refresh();
    });
}

void ViewModeActions::addTo(QMenu& menu) const {
    for (QAction* const action : actions_)
        menu.addAction(action);
}

void ViewModeActions::setEnabled(bool isEnabled) {
    for (QAction* const action : actions_)
        action->setEnabled(isEnabled);
}

void ViewModeActions::choose(std::size_t index) {
    AppSettings& settings = services_->settings();
    const bool isIcons = index > 0;
    if (isIcons) settings.setIconSize(static_cast<IconSize>(index - 1));
    settings.setShowsIcons(isIcons);
    pane_->setViewMode(isIcons ? ViewMode::icons : ViewMode::details);
    refresh();
}

void ViewModeActions::refresh() {
    const bool isIcons = pane_->viewMode() == ViewMode::icons;
    const auto size = static_cast<std::size_t>(services_->settings().iconSize());
    actions_[isIcons ? 1 + size : 0]->setChecked(true);
}

} // namespace ombrel
