#include "ui/SearchField.h"

#include "browser/BrowserTabsModel.h"
#include "ui/GlyphButton.h"
#include "ui/LocalizedText.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>

#include <chrono>

namespace ombrel {
namespace {

/// How long the typing rests before a search begins by itself, and from how many characters on.
constexpr std::chrono::milliseconds typingRest(400);
constexpr qsizetype fewestCharacters = 2;

} // namespace

SearchField::SearchField(BrowserTabsModel& tabs, const Theme& theme, QWidget* parent)
    : FieldFrame(theme, parent), pane_(tabs), field_(new QLineEdit(this)),
      clear_(new GlyphButton(theme, Glyph::close, ThemeSize::smallButton, this)) {
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    field_->setFrame(false);
    field_->setAccessibleName(localized("ui.command.focusSearch"));
    field_->installEventFilter(this);
    clear_->setAccessibleName(localized("ui.search.clear"));
    clear_->setToolTip(clear_->accessibleName());
    clear_->setInk(ThemeColor::textSecondary);
    clear_->setFocusPolicy(Qt::NoFocus);
    clear_->hide();
    rest_.setSingleShot(true);
    rest_.setInterval(typingRest);
    connect(&rest_, &QTimer::timeout, this, &SearchField::search);
    connect(field_, &QLineEdit::textEdited, this, &SearchField::takeText);
    connect(field_, &QLineEdit::textChanged, this, [this](const QString& text) {
        clear_->setVisible(!text.isEmpty());
        arrange();
    });
    connect(clear_, &QAbstractButton::clicked, this, &SearchField::clear);
    connect(&tabs, &BrowserTabsModel::titleChanged, this, &SearchField::refreshInvitation);
    pane_.follow([this](BrowserModel& pane, QObject& context) { followPane(pane, context); });
    arrange();
}

void SearchField::followPane(BrowserModel& pane, QObject& context) {
    pane.requestSearchFocus = [this] { focus(); };
    connect(&pane, &BrowserModel::locationChanged, &context, [this] { follow(); });
    connect(&pane, &BrowserModel::listingStateChanged, &context, [this] { refreshAbility(); });
    follow();
}

void SearchField::follow() {
    rest_.stop();
    const QString query = QString::fromStdString(pane_->searchQuery());
    if (query != field_->text()) field_->setText(query);
    refreshInvitation();
    refreshAbility();
}

void SearchField::refreshInvitation() {
    field_->setPlaceholderText(pane_->currentURL()
                                   ? localized("ui.search.in", {isolated(pane_->title().toStdString())})
                                   : localized("ui.search.openFolder"));
}

void SearchField::refreshAbility() {
    // There is something to search in, or to go back from.
    const auto state = pane_->listingState().which();
    const bool isCovered = state == ListingState::Case::failed || state == ListingState::Case::invalidated ||
                           state == ListingState::Case::noLocation;
    setEnabled(!pane_->isHome() && (!isCovered || pane_->showsSearch()));
    update();
}

void SearchField::takeText(const QString& text) {
    if (text.isEmpty() && pane_->showsSearch()) return pane_->leaveSearch();
    if (text.trimmed().size() >= fewestCharacters)
        rest_.start();
    else
        rest_.stop();
}

void SearchField::search() {
    rest_.stop();
    const QString text = field_->text();
    if (text.trimmed().isEmpty() || text.toStdString() == pane_->searchQuery()) return;
    pane_->search(text.toStdString());
}

void SearchField::clear() {
    rest_.stop();
    field_->clear();
    if (pane_->showsSearch()) pane_->leaveSearch();
}

void SearchField::focus() {
    if (!isEnabled()) return;
    field_->setFocus(Qt::ShortcutFocusReason);
    field_->selectAll();
}

bool SearchField::eventFilter(QObject* watched, QEvent* event) {
    if (watched != field_) return FieldFrame::eventFilter(watched, event);
    switch (event->type()) {
    case QEvent::FocusIn:
        pane_->setTextEditing(true);
        update();
        break;
    case QEvent::FocusOut:
        pane_->setTextEditing(false);
        update();
        break;
    case QEvent::KeyPress: {
        switch (static_cast<QKeyEvent*>(event)->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            search();
            if (pane_->showsSearch()) Q_EMIT finished();
            return true;
        case Qt::Key_Escape:
            if (field_->text().isEmpty())
                Q_EMIT finished();
            else
                clear();
            return true;
        case Qt::Key_Down: Q_EMIT finished(); return true;
        default: break;
        }
        break;
    }
    default: break;
    }
    return FieldFrame::eventFilter(watched, event);
}

// ---- How it looks

QSize SearchField::sizeHint() const {
    return {theme_->size(ThemeSize::searchWidth), theme_->size(ThemeSize::field)};
}

QSize SearchField::minimumSizeHint() const {
    return {theme_->size(ThemeSize::searchMinimumWidth), theme_->size(ThemeSize::field)};
}

void SearchField::arrange() {
    setMaximumWidth(sizeHint().width());
    QPalette colors = palette();
    colors.setColor(QPalette::Base, Qt::transparent);
    field_->setPalette(colors);
    const int button = theme_->size(ThemeSize::smallButton), inset = theme_->size(ThemeSize::focusRing);
    const int left =
        theme_->size(ThemeSize::space12) + theme_->size(ThemeSize::glyph) + theme_->size(ThemeSize::space4);
    const int right = width() - theme_->size(ThemeSize::space4) - (clear_->isHidden() ? 0 : button);
    field_->setGeometry(mirrored(QRect(left, inset, right - left, height() - 2 * inset)));
    clear_->setGeometry(mirrored(QRect(right, (height() - button) / 2, button, button)));
    update();
}

void SearchField::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) focus();
}

void SearchField::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const bool hasKeyboard = field_->hasFocus();
    paintFrame(painter, hasKeyboard ? ThemeColor::accent : ThemeColor::border, hasKeyboard);
    const int glyph = theme_->size(ThemeSize::glyph);
    const QRect box(theme_->size(ThemeSize::space12) - theme_->size(ThemeSize::space2),
                    (height() - glyph) / 2, glyph, glyph);
    Glyphs::draw(painter, Glyph::search, mirrored(box),
                 theme_->color(isEnabled() ? ThemeColor::textSecondary : ThemeColor::textDisabled));
}

} // namespace ombrel
