#include "ui/PlaceMenu.h"

#include "browser/HomeModel.h"
#include "ui/LocalizedText.h"

#include <QAction>
#include <QMenu>

#include <string_view>
#include <utility>

namespace ombrel {
namespace {

/// Adds groups of actions with lines between them.
class Groups {
public:
    explicit Groups(QMenu& menu) : menu_(&menu) {}

    void add(std::string_view key, bool isEnabled, std::function<void()> perform) {
        if (std::exchange(isDue_, false)) menu_->addSeparator();
        auto* const action = menu_->addAction(localized(key));
        action->setEnabled(isEnabled);
        QObject::connect(action, &QAction::triggered, menu_, std::move(perform));
    }
    void endGroup() { isDue_ = !menu_->isEmpty(); }

private:
    QMenu* menu_;
    bool isDue_ = false;
};

} // namespace

void PlaceMenu::fill(QMenu& menu, const Place& place, Extent extent) const {
    Groups groups(menu);
    HomeModel* const home = home_;
    const auto onFolder = [&](std::string_view key, const PlaceIntents::OnFolder& intent,
                              bool isEnabled = true) {
        if (intent && place.url) groups.add(key, isEnabled, [intent, url = *place.url] { intent(url); });
    };
    if (place.isHome) {
        if (intents_->openHome) groups.add("ui.command.open", true, intents_->openHome);
        return;
    }
    onFolder("ui.command.open", intents_->open, place.canOpen);
    onFolder("ui.command.openInNewTab", intents_->openInNewTab, place.canOpen);
    onFolder("ui.command.openInNewWindow", intents_->openInNewWindow, place.canOpen);
    if (extent == Extent::tree)
        onFolder("ui.command.openInTerminal", intents_->openInTerminal, place.canOpen);
    groups.endGroup();
    if (place.url && place.isPinned)
        groups.add("ui.command.unpin", true, [home, url = *place.url] { home->unpin(url); });
    else if (place.url && place.canOpen)
        groups.add("ui.command.pin", true,
                   [home, url = *place.url] { home->pin({url}, home->pins().size()); });
    onFolder("ui.command.copyPath", intents_->copyPath);
    if (extent == Extent::tree)
        onFolder("ui.command.paste", intents_->pasteInto,
                 place.canOpen && intents_->canPaste && intents_->canPaste());
    groups.endGroup();
    if (place.location) {
        const QUuid id = *place.location;
        if (place.needsPermission)
            groups.add("settings.locations.reauthorize", true, [home, id] { home->allowAgain(id); });
        groups.add("ui.location.remove", true, [home, id] { home->removeLocation(id); });
    }
    if (place.canBeEjected && place.url)
        groups.add("ui.volume.eject", !place.isEjecting, [home, url = *place.url] { home->eject(url); });
    groups.endGroup();
    onFolder("ui.command.showInfo", intents_->showProperties, place.canOpen);
}

} // namespace ombrel
