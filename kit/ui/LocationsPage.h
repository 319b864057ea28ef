#pragma once

#include "services/AccessManager.h"
#include "ui/SettingsPage.h"

class QPushButton;

namespace ombrel {

class TextLabel;

/// The folders that the user has granted, each with its state and what can be done about it.
class LocationsPage final : public SettingsPage {
    Q_OBJECT

public:
    /// Both must outlive it.
    LocationsPage(const Theme& theme, AccessManager& access, QWidget* parent = nullptr);

private:
    void refresh();
    void confirmRemoving(const AccessManager::Grant& grant);

    AccessManager* access_;
    QWidget* list_;
    TextLabel* empty_;
    TextLabel* problem_;
};

} // namespace ombrel
