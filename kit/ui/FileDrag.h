#pragma once

#include "browser/DropPlan.h"
#include "services/Pasteboard.h"

#include <QMap>
#include <QMimeData>
#include <QPointer>

#include <functional>
#include <memory>
#include <utility>
#include <vector>

class QDropEvent;

namespace ombrel {

class FileView;

/// What is being dragged out of a file view: the selected items, in the forms that other programs take. These
/// are made when somebody asks, for there may be a million.
class FileDrag final : public QMimeData {
    Q_OBJECT

public:
    /// Drags what is selected in `view` and returns when the drag is over. What a drag has
    /// opened that is given up is shown as it was before.
    static void run(FileView& view, Qt::MouseButton button);
    /// The drag of this program that an event tells of; nothing for those of others.
    [[nodiscard]] static FileDrag* of(const QDropEvent& event);

    [[nodiscard]] const std::shared_ptr<const DraggedItems>& items() const noexcept { return items_; }
    /// By the right button, which asks at the end.
    [[nodiscard]] bool asks() const noexcept { return asks_; }
    /// The drag is about to open something. `back` is called when it is given up and `about` still lives; of
    /// several about the same thing the first one.
    void noteSpring(QObject& about, std::function<void()> back);

    [[nodiscard]] bool hasFormat(const QString& format) const override { return formats().contains(format); }
    [[nodiscard]] QStringList formats() const override;

protected:
    QVariant retrieveData(const QString& format, QMetaType type) const override;

private:
    struct Spring {
        QPointer<QObject> about;
        std::function<void()> back;
    };

    FileDrag(std::vector<FileReference> items, bool asks)
        : items_(std::make_shared<const DraggedItems>(std::move(items))), asks_(asks) {}

    std::shared_ptr<const DraggedItems> items_;
    bool asks_;
    std::shared_ptr<std::vector<Spring>> springs_ = std::make_shared<std::vector<Spring>>();
    mutable std::vector<Pasteboard::Entry> entries_; ///< who makes the forms, once one has been asked for
    mutable QMap<QString, QByteArray> made_;         ///< the forms that were asked for
};

} // namespace ombrel
