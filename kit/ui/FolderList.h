#pragma once

#include "browser/CrumbChildren.h"
#include "ui/MenuFrame.h"

#include <optional>

class QLabel;
class QListView;

namespace ombrel {

/// The list that a crumb opens: the subfolders of its folder, in a popup that stays quick with many
/// thousands. Typing jumps; the one that the address goes through is bold. Deletes itself when it closes.
class FolderList final : public MenuFrame {
    Q_OBJECT

public:
    /// `current` is the subfolder that is bold. `theme` must outlive it.
    FolderList(const Theme& theme, const FileURL& folder, const std::optional<FileURL>& current,
               const ItemFilter& filter, QWidget* parent);

    /// Opens under a button, or above it where there is no room. It appears when the folders are known, or a
    /// moment later, saying that they are being read.
    void popUp(const QRect& button);

    [[nodiscard]] const CrumbChildren& children() const noexcept { return *children_; }
    [[nodiscard]] QListView& list() const noexcept { return *list_; }

Q_SIGNALS:
    void folderChosen(const ombrel::FileURL& folder);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    class Model;
    void follow();
    void fit();
    void choose(const QModelIndex& index);

    CrumbChildren* children_;
    Model* model_;
    QListView* list_;
    QLabel* note_;
    QRect button_;
};

} // namespace ombrel
