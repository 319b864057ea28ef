#include "browser/FileActions.h"
#include "services/AppSettings.h"
#include "ui/FileView.h"

#include <utility>

namespace ombrel {

using Place = BrowserModel::Place;

void FileView::beginRename(std::size_t row) {
    if (!sources_.actions || !sources_.settings || row >= model_->items().size()) return;
    if (editor_) endRename(editor_, RenameEditor::Then::rest);
    touch();
    gestures_.select(row, SelectionGestures::How::only);
    reveal(row);
    const FileItem item = model_->items().item(row);
    auto commit = [this, item](std::string_view text, const RenameEditor::Answer& answer) {
        sources_.actions->renaming().commit(*model_, item, text, answer);
    };
    // Rows must not slip away under the field.
    model_->setHeld(true);
    renamed_ = model_->items().order()[row];
    auto* const editor =
        new RenameEditor(viewport(), *theme_, RenameRules::of(item, *sources_.settings), std::move(commit));
    editor_ = editor;
    editor->setAlignment(namePlace(row).alignment | Qt::AlignVCenter);
    placeEditor();
    connect(editor, &RenameEditor::ended, this,
            [this, editor](RenameEditor::Then then) { endRename(editor, then); });
}

void FileView::placeEditor() {
    const auto row = editor_ && renamed_ ? model_->rowOf(*renamed_) : std::nullopt;
    if (!row) return;
    const NamePlace place = namePlace(*row);
    editor_->place(place.name, place.room);
}

void FileView::endRename(RenameEditor* editor, RenameEditor::Then then) {
    if (editor != editor_) return;
    const bool hadFocus = editor->hasFocus();
    const auto row = renamed_ ? model_->rowOf(*renamed_) : std::nullopt;
    // Until the listing tells of it.
    if (renamed_ && editor->hasRenamed()) facts_.setName(*renamed_, editor->text());
    editor_ = nullptr;
    renamed_.reset();
    editor->hide();
    editor->deleteLater();
    if (hadFocus) setFocus(Qt::OtherFocusReason);
    viewport()->update();
    std::optional<std::size_t> next;
    const std::size_t count = model_->items().size();
    if (row && then == RenameEditor::Then::next && *row + 1 < count) next = *row + 1;
    if (row && then == RenameEditor::Then::previous && *row > 0) next = *row - 1;
    // The next one becomes the current item before anything that has waited moves the rows.
    if (next) gestures_.select(*next, SelectionGestures::How::only);
    model_->setHeld(false);
    const auto current = model_->row(Place::current);
    if (next && current) beginRename(*current);
}

} // namespace ombrel
