#pragma once

#include "base/FileURL.h"
#include "services/DesktopApplication.h"

#include <QDialog>

#include <functional>
#include <optional>
#include <string>
#include <vector>

class QCheckBox;
class QLineEdit;
class QPushButton;
class QStackedWidget;

namespace ombrel {

class ApplicationList;
class TextLabel;
class Theme;

/// Asks which application is to open some files, now or from now on. At first none is chosen, so that Enter
/// opens nothing by mistake. Modal to its window; deletes itself.
class ApplicationChooser final : public QDialog {
    Q_OBJECT

public:
    /// The chosen one, and the types that it is to open by itself from now on.
    using Done = std::function<void(const DesktopApplication& application,
                                    const std::vector<std::string>& typesForAlways)>;

    /// `theme` must outlive it. `done` is called when one was chosen, not when the dialog was cancelled.
    ApplicationChooser(const Theme& theme, const std::vector<FileURL>& items, Done done, QWidget* parent);

    /// To be called when it is known what opens the items, and what is installed besides.
    void offer(const ApplicationChoice& choice, const std::vector<DesktopApplication>& all);

    [[nodiscard]] QLineEdit& filter() const noexcept { return *filter_; }
    [[nodiscard]] ApplicationList& list() const noexcept { return *list_; }
    [[nodiscard]] QCheckBox& always() const noexcept { return *always_; }
    [[nodiscard]] QPushButton& openButton() const noexcept { return *open_; }
    /// What stands in the place of an empty list.
    [[nodiscard]] QString note() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void layOut(const QString& title);
    void refresh();
    void openChosen();

    const Theme* theme_;
    Done done_;
    std::optional<std::vector<std::string>> types_; ///< nothing before it is known what there is
    QLineEdit* filter_;
    QStackedWidget* pages_;
    ApplicationList* list_;
    TextLabel* note_;
    QCheckBox* always_;
    QPushButton* open_;
};

} // namespace ombrel
