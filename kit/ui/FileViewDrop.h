#pragma once

#include "base/FileURL.h"
#include "ui/EdgeScroll.h"

#include <QObject>
#include <QPoint>
#include <QString>
#include <QTimer>

#include <cstddef>
#include <memory>
#include <optional>

class QDragMoveEvent;
class QDropEvent;
class QEvent;

namespace ombrel {

class FileView;
class FolderDrop;

/// What a drag does over a file view: it goes for the folder under the pointer or the one that is shown,
/// scrolls at the edges and opens folders that it rests on.
class FileViewDrop final : public QObject {
    Q_OBJECT

public:
    explicit FileViewDrop(FileView& view);
    ~FileViewDrop() override;

    /// Takes an event of the viewport, when it is one of a drag.
    [[nodiscard]] bool take(QEvent& event);
    /// The folder that the drop would go into, where it is one of the rows and the drop is allowed.
    [[nodiscard]] std::optional<std::size_t> targetRow() const noexcept;
    /// Whether something that is dragged would be taken where it is.
    [[nodiscard]] bool isAllowed() const noexcept;
    /// "Copy to Reports", or why it cannot be; empty when there is nothing to say.
    [[nodiscard]] QString effect() const;

private:
    [[nodiscard]] FolderDrop& folders();
    void enter(QDropEvent& event);
    void follow(QDragMoveEvent& event);
    void drop(QDropEvent& event);
    void leave();
    void lookUnder(QPoint pointer);
    [[nodiscard]] std::optional<FileURL> folder() const;
    void scrollBy(int pixels);
    void spring();

    FileView* view_;
    std::unique_ptr<FolderDrop> folders_; ///< made when the first drag comes
    QPoint pointer_;
    std::optional<std::size_t> row_; ///< the folder under the pointer
    std::optional<FileURL> under_;   ///< and where it is, for rows come and go
    bool isFlashing_ = false;
    EdgeScroll edges_;
    QTimer spring_;
};

} // namespace ombrel
