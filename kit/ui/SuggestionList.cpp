#include "ui/SuggestionList.h"

#include "ui/FolderRowDelegate.h"
#include "ui/LocalizedText.h"
#include "ui/Theme.h"

#include <QListView>
#include <QVBoxLayout>

#include <algorithm>

namespace ombrel {

SuggestionList::SuggestionList(const Theme& theme, QWidget* field)
    : MenuFrame(theme, field), rows_(new QListView(this)) {
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins({});
    column->addWidget(rows_);
    rows_->setFocusPolicy(Qt::NoFocus);
    rows_->setFocusProxy(field);
    rows_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    rows_->setUniformItemSizes(true);
    rows_->setMouseTracking(true);
    rows_->setFrameStyle(QFrame::NoFrame);
    rows_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    rows_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    rows_->setItemDelegate(new FolderRowDelegate(theme, rows_));
    rows_->setAccessibleName(localized("ui.address.suggestions"));
    hide();
}

void SuggestionList::showBelow(const QWidget& bar) {
    QWidget* const window = bar.window();
    if (parentWidget() != window) setParent(window);
    const int count = rows_->model()->rowCount();
    const int row = std::max(rows_->sizeHintForRow(0), 1);
    const QMargins around = contentsMargins();
    const int wanted = row * count + around.top() + around.bottom();
    const QPoint below = bar.mapTo(window, QPoint(0, bar.height()));
    setGeometry(QRect(below, QSize(bar.width(), std::min(wanted, window->height() - below.y()))));
    show();
    raise();
}

} // namespace ombrel
