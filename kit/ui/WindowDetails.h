#pragma once

#include "base/FileURL.h"

#include <QObject>

class QWidget;

namespace ombrel {

class AppServices;
class BrowserModel;
class BrowserTabsModel;
class CommandDispatcher;
class DetailsPane;
class Theme;

/// The details pane of one window, which follows the active tab, and the windows with properties that are
/// asked for there.
class WindowDetails final : public QObject {
    Q_OBJECT

public:
    struct Setting {
        const Theme& theme; ///< all must outlive the window
        AppServices& services;
        BrowserTabsModel& tabs;
        CommandDispatcher& commands;
        FileURL home;
    };

    /// It belongs to `window`. From now on the command for properties is carried out.
    WindowDetails(QWidget& window, const Setting& setting);

    /// It is nobody's child until it is put somewhere.
    [[nodiscard]] DetailsPane& pane() const noexcept { return *pane_; }

    /// Of the selected items, or of the folder where nothing is selected.
    void showProperties(const BrowserModel& pane) const;
    void showPropertiesOfFolder(const BrowserModel& pane) const;

private:
    const Theme* theme_;
    DetailsPane* pane_;
};

} // namespace ombrel
