#include "ui/FileViewDrop.h"

#include "browser/FileActions.h"
#include "services/ClipboardFormats.h"
#include "ui/FileDrag.h"
#include "ui/FileView.h"
#include "ui/LocalizedText.h"
#include "ui/Theme.h"

#include <QDragMoveEvent>
#include <QMenu>
#include <QMimeData>
#include <QPainter>

#include <algorithm>
#include <chrono>
#include <utility>

namespace ombrel {
namespace {

constexpr std::chrono::milliseconds edgeScrollInterval(16);
constexpr std::chrono::milliseconds springDelay(900);

/// The contents of a drag, to be read as those of a clipboard are.
class DragContents final : public Pasteboard {
public:
    explicit DragContents(const QMimeData& data) : data_(&data) {}
    void write(std::vector<Entry>) override {}
    bool has(std::string_view format) const override { return data_->hasFormat(textOf(format)); }
    std::optional<std::string> read(std::string_view format) const override {
        return data_->data(textOf(format)).toStdString();
    }

private:
    static QString textOf(std::string_view format) {
        return QString::fromUtf8(format.data(), static_cast<qsizetype>(format.size()));
    }
    const QMimeData* data_;
};

/// What a drop would do, beside the pointer and over whatever covers the view.
class EffectLabel final : public QWidget {
public:
    EffectLabel(QWidget* parent, const Theme& theme) : QWidget(parent), theme_(&theme) {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setFont(theme.font(ThemeFont::body));
    }
    void say(const QString& text, bool isRefusal, QPoint pointer) {
        text_ = text;
        isRefusal_ = isRefusal;
        const int margin = theme_->size(ThemeSize::space8), away = theme_->size(ThemeSize::space16);
        const QRect room = parentWidget()->rect();
        const int widest = std::min(theme_->size(ThemeSize::menuMaximumWidth), room.width());
        shown_ = fontMetrics().elidedText(text, Qt::ElideMiddle, widest - 2 * margin);
        const QSize size(fontMetrics().horizontalAdvance(shown_) + 2 * margin,
                         fontMetrics().height() + margin);
        const int x = std::clamp(pointer.x() + away, 0, std::max(0, room.width() - size.width()));
        const int y = std::clamp(pointer.y() + away, 0, std::max(0, room.height() - size.height()));
        setGeometry(QRect(QPoint(x, y), size));
        setVisible(!text.isEmpty());
        raise();
        update();
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        const int radius = theme_->size(ThemeSize::radiusButton);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(theme_->color(ThemeColor::borderStrong), theme_->size(ThemeSize::hairline)));
        painter.setBrush(theme_->color(ThemeColor::menu));
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
        painter.setPen(theme_->color(isRefusal_ ? ThemeColor::danger : ThemeColor::text));
        painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine, shown_);
    }

private:
    const Theme* theme_;
    QString text_, shown_;
    bool isRefusal_ = false;
};

DropPlan::Wish wishOf(Qt::KeyboardModifiers modifiers) {
    if (modifiers & Qt::ControlModifier) return DropPlan::Wish::copy;
    return modifiers & Qt::ShiftModifier ? DropPlan::Wish::move : DropPlan::Wish::none;
}

Qt::DropAction actionOf(DropPlan::Case action) {
    switch (action) {
    case DropPlan::Case::copy: return Qt::CopyAction;
    case DropPlan::Case::move: return Qt::MoveAction;
    case DropPlan::Case::forbidden: return Qt::IgnoreAction;
    }
    std::unreachable();
}

} // namespace

FileViewDrop::FileViewDrop(FileView& view) : view_(&view) {
    edgeScroll_.setInterval(edgeScrollInterval);
    connect(&edgeScroll_, &QTimer::timeout, this, &FileViewDrop::scrollAtEdge);
    spring_.setSingleShot(true);
    spring_.setInterval(springDelay);
    connect(&spring_, &QTimer::timeout, this, &FileViewDrop::spring);
}

FileViewDrop::~FileViewDrop() = default;

std::optional<std::size_t> FileViewDrop::targetRow() const noexcept {
    const bool isAllowed = plan_.which != DropPlan::Case::forbidden && !isFlashing_;
    return isAllowed ? row_ : std::nullopt;
}

bool FileViewDrop::take(QEvent& event) {
    if (!view_->sources().actions) return false;
    switch (event.type()) {
    case QEvent::DragEnter:
        enter(static_cast<QDropEvent&>(event));
        follow(static_cast<QDragMoveEvent&>(event));
        return true;
    case QEvent::DragMove: follow(static_cast<QDragMoveEvent&>(event)); return true;
    case QEvent::DragLeave: leave(); return true;
    case QEvent::Drop: drop(static_cast<QDropEvent&>(event)); return true;
    default: return false;
    }
}

void FileViewDrop::enter(const QDropEvent& event) {
    leave();
    ours_ = FileDrag::of(event);
    if (ours_) {
        dragged_ = ours_->items();
        asks_ = ours_->asks();
    } else {
        std::vector<FileReference> items;
        for (const FileURL& url : ClipboardFormats::filesOn(DragContents(*event.mimeData())))
            items.push_back({url, std::nullopt});
        if (items.empty()) return;
        const DraggedItems::Offer offer{.copy = event.possibleActions().testFlag(Qt::CopyAction),
                                        .move = event.possibleActions().testFlag(Qt::MoveAction)};
        dragged_ = std::make_shared<const DraggedItems>(std::move(items), offer);
        asks_ = event.buttons().testFlag(Qt::RightButton);
    }
    auto& targets = view_->sources().actions->dropTargets();
    learned_ = connect(&targets, &DropTargets::learned, this, &FileViewDrop::plan);
    edgeScroll_.start();
}

bool FileViewDrop::isDragged(std::size_t row) const {
    return ours_ && dragged_->hold(view_->model().items()[row].url());
}

void FileViewDrop::follow(QDragMoveEvent& event) {
    if (!dragged_) return event.ignore();
    pointer_ = event.position().toPoint();
    wish_ = wishOf(event.modifiers());
    plan();
    if (plan_.which == DropPlan::Case::forbidden) return event.ignore();
    event.setDropAction(actionOf(plan_.which));
    event.accept();
}

/// Decides anew what a drop would do where the pointer is.
void FileViewDrop::plan() {
    if (!dragged_) return;
    const BrowserModel& pane = view_->model();
    const auto before = std::exchange(row_, std::nullopt);
    folder_.reset();
    if (const auto row = view_->rowAt(pointer_)) {
        const FileItemView item = pane.items()[*row];
        if ((item.isDirectoryLike() || item.isPackage()) && !isDragged(*row)) row_ = row;
    }
    if (row_)
        folder_ = pane.items()[*row_].url();
    else if (!pane.isSearching())
        folder_ = pane.currentURL();
    if (row_ != before) {
        isFlashing_ = false;
        row_ ? spring_.start() : spring_.stop();
    }
    plan_ = {};
    QString effect;
    if (folder_) {
        auto& targets = view_->sources().actions->dropTargets();
        plan_ = DropPlan::of(*dragged_, *folder_, targets.about(*folder_), wish_);
        // That things are where they are needs no words.
        const bool isAtHome =
            !row_ && plan_.which == DropPlan::Case::forbidden && dragged_->areAllIn(*folder_);
        if (const auto text = plan_.label(*folder_); text && !isAtHome) effect = localized(*text);
    }
    setEffect(effect);
    view_->viewport()->update();
}

void FileViewDrop::setEffect(const QString& effect) {
    if (!label_ && !effect.isEmpty()) label_ = new EffectLabel(view_->viewport(), view_->theme());
    if (label_)
        static_cast<EffectLabel*>(label_.data())
            ->say(effect, plan_.which == DropPlan::Case::forbidden, pointer_);
    if (std::exchange(effect_, effect) != effect) Q_EMIT view_->dropEffectChanged(effect);
}

void FileViewDrop::leave() {
    disconnect(learned_);
    edgeScroll_.stop();
    spring_.stop();
    dragged_.reset();
    row_.reset();
    folder_.reset();
    plan_ = {};
    isFlashing_ = false;
    setEffect({});
    view_->viewport()->update();
}

// ---- Dropping

void FileViewDrop::drop(QDropEvent& event) {
    if (dragged_) {
        pointer_ = event.position().toPoint();
        wish_ = wishOf(event.modifiers());
        plan();
    }
    if (!dragged_ || !folder_ || plan_.which == DropPlan::Case::forbidden) {
        leave();
        return event.ignore();
    }
    event.setDropAction(actionOf(plan_.which));
    event.accept();
    const FileURL folder = *folder_;
    if (asks_) {
        // The drag has to be over before a menu can have the mouse.
        QMetaObject::invokeMethod(
            view_,
            [this, folder, dragged = dragged_, at = view_->viewport()->mapToGlobal(pointer_)]() mutable {
                dragged_ = std::move(dragged);
                ask(folder, at);
            },
            Qt::QueuedConnection);
    } else {
        perform(folder, plan_.which);
    }
    leave();
}

void FileViewDrop::ask(const FileURL& folder, QPoint at) {
    auto& actions = *view_->sources().actions;
    QMenu menu(view_);
    const auto offer = [&](DropPlan::Wish wish, DropPlan::Case action, std::string_view key) {
        const auto planned = DropPlan::of(*dragged_, folder, actions.dropTargets().about(folder), wish);
        auto* const entry = menu.addAction(localized(key));
        entry->setEnabled(planned.which == action);
        entry->setData(static_cast<int>(action));
    };
    offer(DropPlan::Wish::copy, DropPlan::Case::copy, "ui.drop.copyHere");
    offer(DropPlan::Wish::move, DropPlan::Case::move, "ui.drop.moveHere");
    menu.addSeparator();
    menu.addAction(localized("ui.drop.cancel"));
    const QPointer safe(this);
    const QAction* const chosen = menu.exec(at);
    if (!safe) return;
    if (chosen && chosen->data().isValid())
        perform(folder, static_cast<DropPlan::Case>(chosen->data().toInt()));
    leave();
}

void FileViewDrop::perform(const FileURL& folder, DropPlan::Case action) {
    auto& actions = *view_->sources().actions;
    actions.transfers().drop(view_->model(), *dragged_, folder, action);
    actions.dropTargets().forget();
}

// ---- While it rests

void FileViewDrop::scrollAtEdge() {
    const int edge = view_->theme().size(ThemeSize::dragEdge), height = view_->viewport()->height();
    const int above = edge - pointer_.y(), below = pointer_.y() - (height - edge);
    const int distance = above > 0 ? -above : std::max(0, below);
    const qint64 before = view_->offset();
    if (distance != 0) view_->scrollTo(before + distance);
    if (view_->offset() != before) plan();
}

void FileViewDrop::spring() {
    if (!row_ || !dragged_) return;
    const FileURL folder = view_->model().items()[*row_].url();
    isFlashing_ = true;
    view_->viewport()->update();
    QTimer::singleShot(view_->theme().duration(ThemeDuration::springFlash), this, [this, folder] {
        // The pointer may have gone on meanwhile.
        if (!isFlashing_ || !dragged_ || folder_ != folder) return;
        isFlashing_ = false;
        BrowserModel& pane = view_->model();
        if (ours_ && pane.currentURL()) ours_->noteSpring(pane, *pane.currentURL());
        row_.reset();
        pane.navigate(folder);
        plan();
    });
}

} // namespace ombrel
