#include "browser/ListNavigationKey.h"
#include "ui/FileView.h"
#include "ui/KeyStrokes.h"
#include "ui/WindowKeys.h"

#include <QKeyEvent>

namespace ombrel {
namespace {

using Place = BrowserModel::Place;
using How = SelectionGestures::How;

How howOf(KeyStroke::Modifiers modifiers) {
    const bool isRange = modifiers & KeyStroke::shift, isControl = modifiers & KeyStroke::control;
    if (isRange) return isControl ? How::addRange : How::range;
    return isControl ? How::currentOnly : How::only;
}

std::optional<FileView::Step> stepOf(KeyStroke::Code code) {
    switch (code) {
    case KeyStroke::Code::upArrow: return FileView::Step::up;
    case KeyStroke::Code::downArrow: return FileView::Step::down;
    case KeyStroke::Code::leftArrow: return FileView::Step::left;
    case KeyStroke::Code::rightArrow: return FileView::Step::right;
    default: return std::nullopt;
    }
}

} // namespace

void FileView::keyPressEvent(QKeyEvent* event) {
    pointer_.forgetSlowClick();
    const KeyStroke stroke = KeyStrokes::of(*event);
    if (endByKey(stroke)) return event->accept();
    const bool isTyped = stroke.keyCode == KeyStroke::Code::space && !typeAhead_.text().isEmpty();
    if (!isTyped && keys_ && keys_->pressInFileView(stroke, WindowKeys::pressOf(*event))) {
        touch();
        return event->accept();
    }
    if (moveByKey(stroke) || typeByKey(stroke, event->text())) return event->accept();
    if (stepOf(stroke.keyCode)) return QAbstractScrollArea::keyPressEvent(event);
    event->ignore();
}

bool FileView::endByKey(const KeyStroke& stroke) {
    const bool hasSomething = gestures_.hasBand() || !typeAhead_.text().isEmpty();
    if (stroke.keyCode != KeyStroke::Code::escape || !hasSomething) return false;
    pointer_.cancel();
    typeAhead_.clear();
    return true;
}

std::optional<std::size_t> FileView::rowLedTo(const KeyStroke& stroke) const {
    const auto current = model_->row(Place::current);
    const std::size_t count = model_->items().size();
    KeyStroke withoutControl = stroke;
    withoutControl.modifiers &= static_cast<KeyStroke::Modifiers>(~KeyStroke::control);
    if (const auto move = ListNavigation::from(withoutControl))
        return ListNavigation::target(move->key, current, count, rowsPerPage());
    const auto step = stepOf(stroke.keyCode);
    if (!step || count == 0) return std::nullopt;
    const std::size_t row = current ? stepped(*current, *step) : 0;
    const bool isSideways = *step == Step::left || *step == Step::right;
    return isSideways && row == current ? std::nullopt : std::optional(row);
}

bool FileView::moveByKey(const KeyStroke& stroke) {
    if (stroke.modifiers & (KeyStroke::option | KeyStroke::command)) return false;
    const auto current = model_->row(Place::current);
    const bool isControlAlone = stroke.modifiers == KeyStroke::control;
    if (stroke.keyCode == KeyStroke::Code::space && isControlAlone && current) {
        gestures_.select(*current, How::toggle);
        return true;
    }
    const auto row = rowLedTo(stroke);
    if (!row) return false;
    touch();
    typeAhead_.clear();
    gestures_.select(*row, howOf(stroke.modifiers));
    reveal(*row);
    return true;
}

bool FileView::typeByKey(const KeyStroke& stroke, const QString& text) {
    const bool isPlain = (stroke.modifiers & ~KeyStroke::shift) == 0;
    if (!isPlain || text.isEmpty() || !text.front().isPrint()) return false;
    if (text == QLatin1String(" ") && typeAhead_.text().isEmpty()) return false;
    typeAhead_.type(text);
    return true;
}

} // namespace ombrel
