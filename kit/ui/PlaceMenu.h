#pragma once

#include "ui/PlaceIntents.h"

#include <QUuid>

#include <optional>

class QMenu;

namespace ombrel {

class HomeModel;

/// The context menus of the places in the navigation tree and on the home page.
class PlaceMenu {
public:
    /// What the menu is for.
    struct Place {
        std::optional<FileURL> url; ///< nothing for the home page, and for a location never found
        bool isHome = false;
        bool canOpen = true;
        std::optional<QUuid> location = std::nullopt; ///< of a granted location
        bool needsPermission = false;
        bool canBeEjected = false;
        bool isEjecting = false;
        bool isPinned = false;
    };

    /// Both must outlive the menus.
    PlaceMenu(HomeModel& home, const PlaceIntents& intents) : home_(&home), intents_(&intents) {}

    /// As on the page of tiles and cards: without what needs the folder to be open.
    enum class Extent { page, tree };
    void fill(QMenu& menu, const Place& place, Extent extent) const;

private:
    HomeModel* home_;
    const PlaceIntents* intents_;
};

} // namespace ombrel
