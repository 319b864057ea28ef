#pragma once

#include "base/FileURL.h"
#include "browser/BrowserPrompter.h"

#include <QDialog>
#include <QString>

#include <functional>
#include <optional>

class QCheckBox;
class QHBoxLayout;
class QPushButton;
class QVBoxLayout;

namespace ombrel {

struct ItemGlance;
class Theme;

/// Asks before something is done, or tells what was not: modal to its window, with the safe answer focused.
/// Deletes itself.
class ConfirmationDialog final : public QDialog {
    Q_OBJECT

public:
    struct Content {
        QString title;
        QString message = {};
        std::optional<FileURL> item = std::nullopt; ///< shown with icon, type, size and date
        QString accept = {};                        ///< no such button when empty; likewise below
        QString alternative = {};
        QString decline = {};
        QString checkBox = {};
        bool isDanger = false;     ///< accepting destroys something
        bool isAcceptSafe = false; ///< accepting can be taken back
    };
    using Done = std::function<void(const BrowserAnswer&)>;

    /// `theme` must outlive it. `done` is called once when the user has answered, or closed the dialog, which
    /// declines.
    ConfirmationDialog(const Theme& theme, const Content& content, Done done, QWidget* parent);

private:
    void layOutItem(const FileURL& item, QHBoxLayout& row);
    void layOutButtons(const Content& content, QVBoxLayout& column);
    QPushButton* addButton(const QString& label, BrowserAnswer::Choice choice, QHBoxLayout& row);

    const Theme* theme_;
    BrowserAnswer answer_;
    QCheckBox* checkBox_ = nullptr;
};

} // namespace ombrel
