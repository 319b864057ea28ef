#pragma once

#include "browser/FileActions.h"
#include "browser/HomeModel.h"
#include "browser/ModelWorld.h"
#include "browser/ServicesWorld.h"
#include "ui/FolderDrop.h"
#include "ui/PinDrag.h"
#include "ui/PlaceIntents.h"
#include "ui/ViewWorld.h"

#include <QDropEvent>

#include <memory>
#include <string>
#include <vector>

namespace ombrel::testing {

/// Pinned folders "a", "b", "c" and a granted "place" with folders in it, and a record of what was wanted.
class PlaceWorld : public ::testing::Test {
protected:
    PlaceWorld() {
        std::vector<PinnedFolder> pins;
        for (const char* name : {"a", "b", "c"})
            pins.emplace_back(tree.folder(name));
        services.services->settings().setPinnedFolders(pins);
        for (const char* name : {"place", "place/inner", "place/inner/deep", "place/other"})
            tree.folder(name);
        services.store->add(tree.path("place"));
        services.services->access().restore();
        (void)runUntil([&] { return !services.services->access().isBusy(); });
        home = std::make_unique<HomeModel>(*services.services, tree.url());
    }

    [[nodiscard]] PlaceIntents intents() {
        const auto note = [this](const char* what) {
            return [this, what](const FileURL& folder) {
                wanted.push_back(std::string(what) + ' ' + std::string(folder.name()));
            };
        };
        PlaceIntents all;
        all.open = note("open");
        all.openHome = [this] { wanted.emplace_back("home"); };
        all.openInNewTab = note("tab");
        all.openInTabBehind = note("behind");
        all.copyPath = note("path");
        all.drops = &drops;
        return all;
    }
    [[nodiscard]] std::vector<std::string> pins() const {
        std::vector<std::string> titles;
        for (const auto& pin : home->pins())
            titles.push_back(pin.title.toStdString());
        return titles;
    }
    /// The location loses its permission.
    void forbidPlace() {
        services.scopes->refused.insert(tree.path("place"));
        services.scopes->unreadable.insert(tree.path("place"));
        services.services->access().activate(services.services->access().grants().front());
        ASSERT_TRUE(runUntil([&] { return home->locations().front().needsPermission(); }));
    }

    // ---- A drag that some program began
    void dragOver(QAbstractScrollArea& view, const QMimeData& data, QPoint at,
                  Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QDragEnterEvent enter(at, allActions, &data, Qt::LeftButton, modifiers);
        QApplication::sendEvent(view.viewport(), &enter);
        hasEntered = enter.isAccepted();
        QDragMoveEvent move(at, allActions, &data, Qt::LeftButton, modifiers);
        QApplication::sendEvent(view.viewport(), &move);
        isAccepted = move.isAccepted();
    }
    void drop(QAbstractScrollArea& view, const QMimeData& data, QPoint at,
              Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        dragOver(view, data, at, modifiers);
        QDropEvent event(at, allActions, &data, Qt::LeftButton, modifiers);
        QApplication::sendEvent(view.viewport(), &event);
    }

    static constexpr Qt::DropActions allActions = Qt::CopyAction | Qt::MoveAction | Qt::LinkAction;
    const Theme& theme = quietTheme();
    ServicesWorld services;
    TempTree tree;
    std::unique_ptr<HomeModel> home;
    FileActions actions{*services.services};
    BrowserModel pane{realListings()};
    FolderDrop drops{actions, theme, [this]() -> BrowserModel& { return pane; }};
    std::vector<std::string> wanted;
    bool hasEntered = false;
    bool isAccepted = false; ///< where the drag was last
};

} // namespace ombrel::testing
