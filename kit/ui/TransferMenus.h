#pragma once

#include "browser/BrowserModel.h"
#include "browser/DropPlan.h"
#include "services/FolderPicker.h"

#include <QObject>

#include <cstdint>
#include <memory>

class QMenu;
class QWidget;

namespace ombrel {

class AppServices;
class CommandDispatcher;
class Theme;
class TransferActions;

/// "Copy to" and "Move to" in the menus of a window: the folders that things were brought to lately, and the
/// way to every other one.
class TransferMenus final : public QObject {
    Q_OBJECT

public:
    struct Setting {
        const Theme& theme;
        AppServices& services;
        const CommandDispatcher& commands;
        const TransferActions& transfers;
    };

    /// Belongs to `window`; all of `setting` must outlive it. `picker` asks for other folders.
    TransferMenus(QWidget& window, const Setting& setting, std::unique_ptr<FolderPicker> picker);

    /// Appends both menus for what is selected in `pane`. What cannot be done now is disabled, and so are
    /// folders that the items lie in already, or that are among them.
    void addTo(QMenu& menu, BrowserModel& pane);

private:
    enum class Kind : std::uint8_t { copy, move };

    void add(QMenu& menu, Kind kind, BrowserModel& pane, const DraggedItems& items);
    void choose(Kind kind, BrowserModel& pane);
    void transfer(Kind kind, BrowserModel& pane, const FileURL& folder);
    [[nodiscard]] bool canDo(Kind kind, const BrowserModel& pane) const;

    Setting setting_;
    std::unique_ptr<FolderPicker> picker_;
};

} // namespace ombrel
