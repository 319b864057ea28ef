#include "ui/FolderList.h"

#include "base/FileName.h"
#include "browser/AddressCrumbs.h"
#include "ui/FileIconDrawing.h"
#include "ui/LocalizedText.h"
#include "ui/OmbrelStyle.h"
#include "ui/Theme.h"

#include <QAbstractListModel>
#include <QKeyEvent>
#include <QLabel>
#include <QListView>
#include <QPainter>
#include <QScreen>
#include <QStyledItemDelegate>
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
    explicit Model(QObject* parent) : QAbstractListModel(parent) {}

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
        if (role != Qt::DisplayRole && role != Qt::AccessibleTextRole) return {};
        return QString::fromStdString(
            FileName::displayText(folders_[static_cast<std::size_t>(index.row())].name()));
    }

private:
    FileItemList folders_;
};

class FolderList::Rows final : public QStyledItemDelegate {
public:
    Rows(const Theme& theme, std::optional<FileURL> current, const Model& model, QObject* parent)
        : QStyledItemDelegate(parent), theme_(&theme), current_(std::move(current)), model_(&model) {}

    [[nodiscard]] bool isCurrent(int row) const {
        return current_ && model_->folders()[static_cast<std::size_t>(row)].name() == current_->name();
    }
    QSize sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const override {
        return {theme_->size(ThemeSize::menuMinimumWidth), theme_->size(ThemeSize::menuRow)};
    }
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        const int inset = theme_->size(ThemeSize::space4), icon = theme_->size(ThemeSize::smallIcon);
        const QRect row = option.rect;
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        const bool isPicked = option.state & QStyle::State_Selected;
        if (isPicked || option.state & QStyle::State_MouseOver) {
            painter->setPen(Qt::NoPen);
            painter->setBrush(theme_->color(ThemeColor::hover));
            const int radius = theme_->size(ThemeSize::radiusRow);
            painter->drawRoundedRect(row.adjusted(inset, 0, -inset, 0), radius, radius);
            if (isPicked)
                OmbrelStyle::drawInnerRing(*painter, *theme_, row.adjusted(inset, 0, -inset, 0), radius);
        }
        const auto mirrored = [&](const QRect& part) {
            return QStyle::visualRect(option.direction, row, part);
        };
        const QRect box(row.left() + theme_->size(ThemeSize::space12), row.center().y() - icon / 2, icon,
                        icon);
        FileIconDrawing::draw(*painter, *theme_, FileClass::folder, mirrored(box));
        const QRect text(box.right() + 1 + theme_->size(ThemeSize::space8), row.top(),
                         row.right() - box.right() - 2 * theme_->size(ThemeSize::space8) - inset,
                         row.height());
        painter->setFont(theme_->font(isCurrent(index.row()) ? ThemeFont::bodyStrong : ThemeFont::body));
        painter->setPen(theme_->color(ThemeColor::text));
        painter->drawText(
            mirrored(text), Qt::AlignLeading | Qt::AlignVCenter | Qt::TextSingleLine,
            painter->fontMetrics().elidedText(index.data().toString(), Qt::ElideMiddle, text.width()));
        painter->restore();
    }

private:
    const Theme* theme_;
    std::optional<FileURL> current_;
    const Model* model_;
};

FolderList::FolderList(const Theme& theme, const FileURL& folder, const std::optional<FileURL>& current,
                       const ItemFilter& filter, QWidget* parent)
    : QFrame(parent, Qt::Popup), theme_(&theme), children_(new CrumbChildren(this)), model_(new Model(this)),
      list_(new QListView(this)), note_(new QLabel(this)) {
    setAttribute(Qt::WA_DeleteOnClose);
    // A click on the button that opened it only closes it.
    setAttribute(Qt::WA_NoMouseReplay);
    setFrameStyle(QFrame::StyledPanel | QFrame::Plain);
    QPalette colors = palette();
    colors.setColor(QPalette::Window, theme.color(ThemeColor::menu));
    colors.setColor(QPalette::Base, theme.color(ThemeColor::menu));
    setPalette(colors);
    auto* const column = new QVBoxLayout(this);
    const int inset = theme.size(ThemeSize::space4);
    column->setContentsMargins(theme.size(ThemeSize::hairline), inset, theme.size(ThemeSize::hairline),
                               inset);
    column->setSpacing(0);
    column->addWidget(list_);
    column->addWidget(note_);
    note_->setTextFormat(Qt::PlainText);
    note_->setMargin(theme.size(ThemeSize::space8));
    note_->setWordWrap(true);
    note_->setMinimumWidth(theme.size(ThemeSize::menuMinimumWidth));
    note_->setForegroundRole(QPalette::PlaceholderText);
    list_->setModel(model_);
    list_->setItemDelegate(new Rows(theme, current, *model_, list_));
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
    const auto& rows = static_cast<const Rows&>(*list_->itemDelegate());
    int current = 0;
    for (int row = 0; row < model_->rowCount(); ++row)
        if (rows.isCurrent(row)) current = row;
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
    const int frame = 2 * (theme_->size(ThemeSize::space4) + frameWidth());
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
    return QFrame::eventFilter(watched, event);
}

} // namespace ombrel
