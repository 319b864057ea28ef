#pragma once

#include "base/FileURL.h"
#include "browser/DropPlan.h"

#include <QMetaObject>
#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QString>
#include <QTimer>

#include <cstddef>
#include <memory>
#include <optional>

class QDragMoveEvent;
class QDropEvent;
class QEvent;
class QWidget;

namespace ombrel {

class FileView;

/// What a drag does over a file view: it shows what a drop would do, scrolls at the edges, opens folders that
/// it rests on, and at the end carries the drop out or, for the right button, asks first.
class FileViewDrop final : public QObject {
    Q_OBJECT

public:
    explicit FileViewDrop(FileView& view);
    ~FileViewDrop() override;

    /// Takes an event of the viewport, when it is one of a drag.
    [[nodiscard]] bool take(QEvent& event);
    /// The folder that the drop would go into, where it is one of the rows and the drop is allowed.
    [[nodiscard]] std::optional<std::size_t> targetRow() const noexcept;
    /// "Copy to Reports", or why it cannot be; empty when there is nothing to say.
    [[nodiscard]] const QString& effect() const noexcept { return effect_; }

private:
    void enter(const QDropEvent& event);
    void follow(QDragMoveEvent& event);
    void plan();
    void drop(QDropEvent& event);
    void ask(const FileURL& folder, QPoint at);
    void perform(const FileURL& folder, DropPlan::Case action);
    void leave();
    void setEffect(const QString& effect);
    void scrollAtEdge();
    void spring();
    [[nodiscard]] bool isDragged(std::size_t row) const;

    FileView* view_;
    QPointer<QWidget> label_;
    std::shared_ptr<const DraggedItems> dragged_;
    QPoint pointer_;
    DropPlan::Wish wish_ = DropPlan::Wish::none;
    bool asks_ = false;
    std::optional<std::size_t> row_; ///< the folder under the pointer
    std::optional<FileURL> folder_;  ///< where a drop would go
    DropPlan plan_;
    QString effect_;
    bool isFlashing_ = false;
    QTimer edgeScroll_;
    QTimer spring_;
    QMetaObject::Connection learned_;
    QPointer<class FileDrag> ours_;
};

} // namespace ombrel
