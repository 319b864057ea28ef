#include "ui/FileViewDrop.h"

#include "ui/FileView.h"
#include "ui/FolderDrop.h"
#include "ui/Theme.h"

#include <QDragMoveEvent>

#include <utility>

namespace ombrel {
FileViewDrop::FileViewDrop(FileView& view) : view_(&view), edges_(view.theme()) {
    connect(&edges_, &EdgeScroll::step, this, &FileViewDrop::scrollBy);
    spring_.setSingleShot(true);
    spring_.setInterval(Theme::delay(ThemeDelay::springItem));
    connect(&spring_, &QTimer::timeout, this, &FileViewDrop::spring);
}

FileViewDrop::~FileViewDrop() = default;

FolderDrop& FileViewDrop::folders() {
    if (folders_) return *folders_;
    folders_ = std::make_unique<FolderDrop>(*view_->sources().actions, view_->theme(),
                                            [this]() -> BrowserModel& { return view_->model(); });
    connect(folders_.get(), &FolderDrop::effectChanged, view_, &FileView::dropEffectChanged);
    connect(folders_.get(), &FolderDrop::planned, view_->viewport(), qOverload<>(&QWidget::update));
    return *folders_;
}

std::optional<std::size_t> FileViewDrop::targetRow() const noexcept {
    return isAllowed() && !isFlashing_ ? row_ : std::nullopt;
}

bool FileViewDrop::isAllowed() const noexcept {
    return folders_ && folders_->isAllowed();
}

QString FileViewDrop::effect() const {
    return folders_ ? folders_->effect() : QString();
}

bool FileViewDrop::take(QEvent& event) {
    if (!view_->sources().actions) return false;
    switch (event.type()) {
    case QEvent::DragEnter: enter(static_cast<QDropEvent&>(event)); return true;
    case QEvent::DragMove: follow(static_cast<QDragMoveEvent&>(event)); return true;
    case QEvent::DragLeave: leave(); return true;
    case QEvent::Drop: drop(static_cast<QDropEvent&>(event)); return true;
    default: return false;
    }
}

void FileViewDrop::enter(QDropEvent& event) {
    leave();
    if (!folders().enter(event, *view_->viewport())) return event.ignore();
    lookUnder(event.position().toPoint());
    folders().aim(folder(), !row_);
    // Who refuses a drag that enters does not hear of the rest of its way.
    event.accept();
}

void FileViewDrop::follow(QDragMoveEvent& event) {
    lookUnder(event.position().toPoint());
    folders().follow(event, folder(), !row_);
    edges_.over(pointer_.y(), view_->viewport()->height());
}

void FileViewDrop::drop(QDropEvent& event) {
    lookUnder(event.position().toPoint());
    folders().drop(event, folder(), !row_);
    leave();
}

/// Finds the folder under the pointer.
void FileViewDrop::lookUnder(QPoint pointer) {
    pointer_ = pointer;
    const DraggedItems* const dragged = folders().dragged();
    const auto before = std::exchange(under_, std::nullopt);
    row_.reset();
    if (const auto row = dragged ? view_->rowAt(pointer) : std::nullopt) {
        const FileItemView item = view_->model().items()[*row];
        const bool isFolder = item.isDirectoryLike() || item.isPackage();
        const bool isDragged = folders().isOurs() && dragged->hold(item.url());
        if (isFolder && !isDragged) {
            row_ = row;
            under_ = item.url();
        }
    }
    if (under_ == before) return;
    isFlashing_ = false;
    row_ ? spring_.start() : spring_.stop();
}

/// Where a drop would go.
std::optional<FileURL> FileViewDrop::folder() const {
    if (under_) return under_;
    const BrowserModel& pane = view_->model();
    return pane.showsSearch() ? std::nullopt : pane.currentURL();
}

void FileViewDrop::leave() {
    edges_.stop();
    spring_.stop();
    row_.reset();
    under_.reset();
    isFlashing_ = false;
    if (folders_) folders_->leave();
    view_->viewport()->update();
}

// ---- While it rests

void FileViewDrop::scrollBy(int pixels) {
    const qint64 before = view_->offset();
    view_->scrollTo(before + pixels);
    if (view_->offset() == before) return;
    lookUnder(pointer_);
    folders().aim(folder(), !row_);
}

void FileViewDrop::spring() {
    if (!under_) return;
    isFlashing_ = true;
    view_->viewport()->update();
    QTimer::singleShot(view_->theme().duration(ThemeDuration::springFlash), this, [this, opened = *under_] {
        // The pointer may have gone on meanwhile.
        if (!isFlashing_ || under_ != opened) return;
        isFlashing_ = false;
        folders().rememberPlace();
        row_.reset();
        under_.reset();
        view_->model().navigate(opened);
        folders().aim(folder(), true);
    });
}

} // namespace ombrel
