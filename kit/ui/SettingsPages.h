#pragma once

#include "services/AppSettings.h"
#include "ui/SettingsPage.h"

#include <functional>
#include <utility>
#include <vector>

class QCheckBox;
class QRadioButton;

namespace ombrel {

class PresetCard;
class SoftwareUpdater;
class TextLabel;

/// Switches that have no place elsewhere.
class GeneralPage final : public SettingsPage {
    Q_OBJECT

public:
    /// Both must outlive it; `showFolderOptions` opens that dialog.
    GeneralPage(const Theme& theme, AppSettings& settings, std::function<void()> showFolderOptions,
                QWidget* parent = nullptr);

private:
    void refresh();

    AppSettings* settings_;
    std::vector<std::pair<Setting, QCheckBox*>> switches_;
};

/// The keyboard scheme.
class KeyboardPage final : public SettingsPage {
    Q_OBJECT

public:
    /// Both must outlive it.
    KeyboardPage(const Theme& theme, AppSettings& settings, QWidget* parent = nullptr);

private:
    void refresh();

    AppSettings* settings_;
    std::vector<PresetCard*> cards_;
};

/// The language of the interface, which counts from the next start on.
class LanguagePage final : public SettingsPage {
    Q_OBJECT

public:
    /// Both must outlive it.
    LanguagePage(const Theme& theme, AppSettings& settings, QWidget* parent = nullptr);

    /// What a language calls itself.
    [[nodiscard]] static QString nameOf(std::string_view code);

private:
    void add(const QString& name, const std::optional<std::string>& code);
    void refresh();

    AppSettings* settings_;
    std::vector<std::pair<std::optional<std::string>, QRadioButton*>> choices_;
    QWidget* note_;
};

/// What the updater does by itself.
class UpdatesPage final : public SettingsPage {
    Q_OBJECT

public:
    /// Both must outlive it.
    UpdatesPage(const Theme& theme, SoftwareUpdater& updater, QWidget* parent = nullptr);

private:
    QCheckBox* add(const QString& label, void (SoftwareUpdater::*set)(bool));
    void refresh();

    SoftwareUpdater* updater_;
    QCheckBox* checks_;
    QCheckBox* downloads_;
    QCheckBox* beta_;
    TextLabel* last_;
};

} // namespace ombrel
