#pragma once

#include <QStyledItemDelegate>

namespace ombrel {

class Theme;

/// The rows of a list of folders that floats like a menu: an icon and the text of the model, in its font
/// where it has one. Long texts are cut in their middle.
class FolderRowDelegate final : public QStyledItemDelegate {
    Q_OBJECT

public:
    /// `theme` must outlive it.
    explicit FolderRowDelegate(const Theme& theme, QObject* parent = nullptr);

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;

private:
    const Theme* theme_;
};

} // namespace ombrel
