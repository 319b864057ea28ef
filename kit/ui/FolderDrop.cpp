#include "ui/FolderDrop.h"

#include "browser/BrowserModel.h"
#include "browser/FileActions.h"
#include "services/ClipboardFormats.h"
#include "ui/DropLabel.h"
#include "ui/FileDrag.h"
#include "ui/LocalizedText.h"

#include <QDropEvent>
#include <QMenu>
#include <QMimeData>

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>
#include <vector>

namespace ombrel {
namespace {

using Case = DropPlan::Case;
using Wish = DropPlan::Wish;

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

Wish wishOf(Qt::KeyboardModifiers modifiers) {
    if (modifiers & Qt::ControlModifier) return Wish::copy;
    return modifiers & Qt::ShiftModifier ? Wish::move : Wish::none;
}

std::shared_ptr<const DraggedItems> itemsOf(const QDropEvent& event) {
    std::vector<FileReference> items;
    for (const FileURL& url : ClipboardFormats::filesOn(DragContents(*event.mimeData())))
        items.push_back({url, std::nullopt});
    if (items.empty()) return nullptr;
    const DraggedItems::Offer offer{.copy = event.possibleActions().testFlag(Qt::CopyAction),
                                    .move = event.possibleActions().testFlag(Qt::MoveAction)};
    return std::make_shared<const DraggedItems>(std::move(items), offer);
}

} // namespace

FolderDrop::FolderDrop(FileActions& actions, const Theme& theme, std::function<BrowserModel&()> pane,
                       QObject* parent)
    : QObject(parent), actions_(&actions), theme_(&theme), pane_(std::move(pane)) {}

FolderDrop::~FolderDrop() {
    // A window that goes may be about to delete it itself.
    if (label_) label_->deleteLater();
}

bool FolderDrop::enter(const QDropEvent& event, QWidget& target) {
    leave();
    ours_ = FileDrag::of(event);
    asks_ = ours_ ? ours_->asks() : event.buttons().testFlag(Qt::RightButton);
    dragged_ = ours_ ? ours_->items() : itemsOf(event);
    if (!dragged_) return false;
    // Since another drag things may have changed on the disk.
    if (!ours_ || ours_ != lastKnown_) actions_->dropTargets().forget();
    lastKnown_ = ours_;
    target_ = &target;
    learned_ = connect(&actions_->dropTargets(), &DropTargets::learned, this, &FolderDrop::plan);
    note(event);
    return true;
}

void FolderDrop::note(const QDropEvent& event) {
    pointer_ = event.position().toPoint();
    wish_ = wishOf(event.modifiers());
}

void FolderDrop::follow(QDropEvent& event, const std::optional<FileURL>& folder, bool isGround) {
    if (!dragged_) return event.ignore();
    note(event);
    aim(folder, isGround);
    if (!isAllowed()) return event.ignore();
    event.setDropAction(plan_.which == Case::move ? Qt::MoveAction : Qt::CopyAction);
    event.accept();
}

void FolderDrop::aim(const std::optional<FileURL>& folder, bool isGround) {
    folder_ = folder;
    isGround_ = isGround;
    plan();
}

DropPlan FolderDrop::planFor(Wish wish) const {
    return DropPlan::of(*dragged_, *folder_, actions_->dropTargets().about(*folder_), wish);
}

void FolderDrop::plan() {
    if (!dragged_) return;
    plan_ = folder_ ? planFor(wish_) : DropPlan();
    // Who is asked may choose the other.
    for (const Wish other : {Wish::copy, Wish::move})
        if (folder_ && asks_ && !isAllowed())
            if (const DropPlan possible = planFor(other); possible.which != Case::forbidden) plan_ = possible;
    const bool isAtHome = isGround_ && !isAllowed() && folder_ && dragged_->areAllIn(*folder_);
    const auto text = folder_ && !isAtHome ? plan_.label(*folder_) : std::nullopt;
    say(text ? localized(*text) : QString());
    Q_EMIT planned();
}

void FolderDrop::say(const QString& effect) {
    if (target_ && !effect.isEmpty()) {
        QWidget* const window = target_->window();
        if (label_ && label_->parentWidget() != window) {
            label_->hide();
            std::exchange(label_, nullptr)->deleteLater();
        }
        if (!label_) label_ = new DropLabel(window, *theme_);
        label_->say(effect, !isAllowed(), target_->mapTo(window, pointer_));
    } else if (label_) {
        label_->say({}, false, {});
    }
    if (std::exchange(effect_, effect) != effect) Q_EMIT effectChanged(effect);
}

void FolderDrop::leave() {
    disconnect(learned_);
    dragged_.reset();
    ours_ = nullptr;
    asks_ = false;
    folder_.reset();
    isGround_ = false;
    plan_ = {};
    say({});
    target_ = nullptr;
}

// ---- Dropping

void FolderDrop::drop(QDropEvent& event, const std::optional<FileURL>& folder, bool isGround) {
    follow(event, folder, isGround);
    if (!event.isAccepted()) return leave();
    // The source must not remove anything: whoever moves does so itself.
    event.setDropAction(plan_.which == Case::move ? Qt::TargetMoveAction : Qt::CopyAction);
    const Dropped dropped{dragged_, *folder_};
    const auto action = plan_.which;
    if (asks_) {
        const bool mayCopy = planFor(Wish::copy).which == Case::copy;
        const bool mayMove = planFor(Wish::move).which == Case::move;
        // The drag has to be over before a menu can have the mouse.
        QMetaObject::invokeMethod(
            this,
            [this, dropped, mayCopy, mayMove, over = target_, at = target_->mapToGlobal(pointer_)] {
                ask(dropped, mayCopy, mayMove, over, at);
            },
            Qt::QueuedConnection);
        return leave();
    }
    leave();
    perform(dropped, action);
}

void FolderDrop::ask(const Dropped& dropped, bool mayCopy, bool mayMove, const QPointer<QWidget>& over,
                     QPoint at) {
    if (!over) return;
    auto* const menu = new QMenu(over);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const auto offer = [&](std::string_view key, Case action, bool isPossible) {
        auto* const entry = menu->addAction(localized(key));
        entry->setEnabled(isPossible);
        connect(entry, &QAction::triggered, this, [this, dropped, action] { perform(dropped, action); });
    };
    offer("ui.drop.copyHere", Case::copy, mayCopy);
    offer("ui.drop.moveHere", Case::move, mayMove);
    menu->addSeparator();
    menu->addAction(localized("ui.drop.cancel"));
    menu->popup(at);
}

void FolderDrop::perform(const Dropped& dropped, Case action) {
    actions_->transfers().drop(pane_(), *dropped.items, dropped.folder, action);
    actions_->dropTargets().forget();
}

// ---- What a drag opens

void FolderDrop::rememberPlace() {
    BrowserModel& pane = pane_();
    leadBack(pane, [&pane, origin = Location(pane.location()), selection = FileSelection(pane.selection())] {
        std::vector<FileURL> selected;
        std::ranges::transform(selection.items(), std::back_inserter(selected), &FileItem::url);
        pane.go(origin, true, selected);
    });
}

void FolderDrop::leadBack(QObject& about, std::function<void()> back) {
    if (ours_) ours_->noteSpring(about, std::move(back));
}

} // namespace ombrel
