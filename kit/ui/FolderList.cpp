#include "ui/FolderList.h"

#include "base/FileName.h"
#include "browser/AddressCrumbs.h"
#include "ui/FolderRowDelegate.h"
#include "ui/LocalizedText.h"
#include "ui/Theme.h"

#include <QAbstractListModel>
#include <QKeyEvent>
#include <QLabel>
#include <QListView>
#include <QScreen>
#include <QVBoxLayout>

#include <algorithm>
#include <chrono>
#include <climits>

namespace ombrel {
namespace {

/// Shorter waits show nothing.
constexpr std::chrono::milliseconds shortWait(200);
constexpr int mostRows = 16;
/// Names that are looked at for the width.
constexpr std::size_t measured = 200;

} // namespace

/// The folders as they were listed; a name is made into text for the rows that are painted.
class FolderList::Model final : public QAbstractListModel {
public:
    Model(const Theme& theme, std::optional<FileURL> current, QObject* parent)
        : QAbstractListModel(parent), theme_(&theme), current_(std::move(current)) {}

    [[nodiscard]] bool isCurrent(int row) const {
        return current_ && folders_[static_cast<std::size_t>(row)].name() == current_->name();
    }

    void setFolders(const FileItemList& folders) {
        beginResetModel();
        folders_ = folders;
        endResetModel();
    }
    [[nodiscard]] const FileItemList& folders() const noexcept { return folders_; }
    int rowCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : static_cast<int>(std::min<std::size_t>(folders_.size(), INT_MAX));
    }
    QVariant data(const QModelIndex& index, int role) const override {
        if (role == Qt::FontRole)
            return theme_->font(isCurrent(index.row()) ? ThemeFont::bodyStrong : ThemeFont::body);
        if (role != Qt::DisplayRole && role != Qt::AccessibleTextRole) return {};
        return QString::fromStdString(
            FileName::displayText(folders_[static_cast<std::size_t>(index.row())].name()));
    }

private:
    const Theme* theme_;
    std::optional<FileURL> current_;
    FileItemList folders_;
};

FolderList::FolderList(const Theme& theme, const FileURL& folder, const std::optional<FileURL>& current,
                       const ItemFilter& filter, QWidget* parent)
    : MenuFrame(theme, parent, Qt::Popup), children_(new CrumbChildren(this)),
      model_(new Model(theme, current, this)), list_(new QListView(this)), note_(new QLabel(this)) {
    setAttribute(Qt::WA_DeleteOnClose);
    // A click on the button that opened it only closes it.
    setAttribute(Qt::WA_NoMouseReplay);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins({});
    column->setSpacing(0);
    column->addWidget(list_);
    column->addWidget(note_);
    note_->setTextFormat(Qt::PlainText);
    note_->setMargin(theme.size(ThemeSize::space8));
    note_->setWordWrap(true);
    note_->setMinimumWidth(theme.size(ThemeSize::menuMinimumWidth));
    note_->setForegroundRole(QPalette::PlaceholderText);
    list_->setModel(model_);
    list_->setItemDelegate(new FolderRowDelegate(theme, list_));
    list_->setUniformItemSizes(true);
    list_->setFrameStyle(QFrame::NoFrame);
    list_->setMouseTracking(true);
    list_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list_->setAccessibleName(localized("ui.address.foldersIn", {isolated(AddressCrumbs::nameOf(folder))}));
    list_->installEventFilter(this);
    connect(list_, &QListView::clicked, this, &FolderList::choose);
    connect(children_, &CrumbChildren::changed, this, &FolderList::follow);
    children_->read(folder, filter);
}

void FolderList::popUp(const QRect& button) {
    button_ = button;
    if (children_->state() == CrumbChildren::State::reading)
        startTimer(static_cast<int>(shortWait.count()));
    else
        follow();
}

void FolderList::timerEvent(QTimerEvent* event) {
    killTimer(event->timerId());
    if (children_->state() == CrumbChildren::State::reading) follow();
}

void FolderList::follow() {
    model_->setFolders(children_->folders());
    const bool isEmpty = children_->folders().empty();
    list_->setVisible(!isEmpty);
    note_->setVisible(isEmpty);
    switch (children_->state()) {
    case CrumbChildren::State::reading: note_->setText(localized("ui.address.reading")); break;
    case CrumbChildren::State::ready: note_->setText(localized("ui.address.noFolders")); break;
    case CrumbChildren::State::failed: note_->setText(localized(children_->error().text())); break;
    }
    fit();
    if (!isVisible()) show();
    if (isEmpty) return;
    int current = 0;
    for (int row = 0; row < model_->rowCount(); ++row)
        if (model_->isCurrent(row)) current = row;
    list_->setCurrentIndex(model_->index(current));
    list_->scrollTo(model_->index(current), QAbstractItemView::PositionAtCenter);
    list_->setFocus(Qt::PopupFocusReason);
}

void FolderList::fit() {
    const FileItemList& folders = children_->folders();
    const QFontMetrics metrics(theme_->font(ThemeFont::bodyStrong));
    const int beside = theme_->size(ThemeSize::smallIcon) + theme_->size(ThemeSize::scrollBar) +
                       3 * theme_->size(ThemeSize::space12);
    int width = theme_->size(ThemeSize::menuMinimumWidth);
    for (std::size_t i = 0; i < std::min(folders.size(), measured); ++i)
        width = std::max(width, beside + metrics.horizontalAdvance(QString::fromStdString(
                                             FileName::displayText(folders[i].name()))));
    width = std::min(width, theme_->size(ThemeSize::menuMaximumWidth));
    const int frame = 2 * theme_->size(ThemeSize::space4);
    const QScreen* const screen = parentWidget()->screen();
    const QRect area = screen ? screen->availableGeometry() : QRect(button_.topLeft(), QSize(width, width));
    const int below = area.bottom() - button_.bottom(), above = button_.top() - area.top();
    int height = note_->heightForWidth(width) + frame;
    if (!folders.empty()) {
        const int rows = std::min(model_->rowCount(), mostRows);
        height = rows * theme_->size(ThemeSize::menuRow) + frame;
    }
    const bool goesUp = height > below && above > below;
    height = std::min(height, std::max(goesUp ? above : below, theme_->size(ThemeSize::menuRow) + frame));
    QRect place(button_.left(), goesUp ? button_.top() - height : button_.bottom() + 1, width, height);
    if (layoutDirection() == Qt::RightToLeft) place.moveRight(button_.right());
    place.moveLeft(std::clamp(place.left(), area.left(), std::max(area.left(), area.right() - width + 1)));
    setGeometry(place);
}

void FolderList::choose(const QModelIndex& index) {
    if (!index.isValid()) return;
    const FileURL folder = model_->folders()[static_cast<std::size_t>(index.row())].url();
    close();
    Q_EMIT folderChosen(folder);
}

bool FolderList::eventFilter(QObject* watched, QEvent* event) {
    if (watched == list_ && event->type() == QEvent::KeyPress) {
        switch (static_cast<QKeyEvent*>(event)->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter: choose(list_->currentIndex()); return true;
        case Qt::Key_Escape: close(); return true;
        default: break;
        }
    }
    return MenuFrame::eventFilter(watched, event);
}

} // namespace ombrel
