#pragma once

#include "services/AppSettings.h"

#include <QDialog>

#include <utility>
#include <vector>

class QCheckBox;
class QVBoxLayout;

namespace ombrel {

class Theme;

/// What is shown of folders and windows: six switches that apply together. Modal to its window; deletes
/// itself.
class FolderOptionsDialog final : public QDialog {
    Q_OBJECT

public:
    /// Both must outlive it.
    FolderOptionsDialog(const Theme& theme, AppSettings& settings, QWidget* parent);

    /// As the check boxes stand now.
    [[nodiscard]] AppSettings::FolderOptions options() const;
    void show(const AppSettings::FolderOptions& options);
    using QDialog::show;

private:
    using Option = bool AppSettings::FolderOptions::*;

    void addGroup(const QString& title, QVBoxLayout& column);
    QCheckBox* addOption(const QString& label, Option option, QVBoxLayout& column);
    void askAboutProtected();

    const Theme* theme_;
    AppSettings* settings_;
    std::vector<std::pair<Option, QCheckBox*>> boxes_;
    QCheckBox* hideProtected_ = nullptr;
    bool hasAsked_ = false;
};

} // namespace ombrel
