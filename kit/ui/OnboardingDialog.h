#pragma once

#include "listing/KnownFolder.h"

#include <QDialog>

#include <optional>
#include <string>
#include <utility>
#include <vector>

class QCheckBox;
class QPushButton;
class QStackedWidget;
class QVBoxLayout;

namespace ombrel {

class AppServices;
class LinkButton;
class PresetCard;
class TextLabel;
class Theme;

/// The first start: a welcome, the keyboard, the folders. Nothing in it is required; leaving it early keeps
/// what is set and counts as done. Deletes itself.
class OnboardingDialog final : public QDialog {
    Q_OBJECT

public:
    /// Both must outlive it.
    OnboardingDialog(const Theme& theme, AppServices& services, QWidget* parent = nullptr);

    [[nodiscard]] int step() const;
    void done(int result) override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    class Dots;

    /// A page with its heading; what it shows is added to the answered column.
    QVBoxLayout& addStep(const QString& title, const QString& caption);
    void addWelcome();
    void addKeys();
    void addFolders();
    void addFooter(QVBoxLayout& column);
    void chooseLanguage();
    void refreshLocations();
    void go(int step);
    void apply();

    const Theme* theme_;
    AppServices* services_;
    QStackedWidget* steps_;
    Dots* dots_;
    TextLabel* counter_;
    QPushButton* back_;
    QPushButton* next_;
    LinkButton* language_ = nullptr;
    std::vector<PresetCard*> presets_;
    std::vector<std::pair<KnownFolder, QCheckBox*>> folders_;
    QVBoxLayout* locations_ = nullptr;
};

} // namespace ombrel
