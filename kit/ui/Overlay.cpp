#include "ui/Overlay.h"

#include "browser/BrowserModel.h"
#include "ui/LocalizedText.h"

#include <QAccessible>
#include <QEvent>
#include <QGraphicsOpacityEffect>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPropertyAnimation>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace ombrel {
namespace {

using Action = OverlayContent::Action;
using Badge = BadgedFolder::Badge;

/// The folder, and in its lower right corner what is wrong with it.
class Picture final : public QWidget {
public:
    Picture(const Theme& theme, const std::optional<Badge>& badge, QWidget* parent)
        : QWidget(parent), theme_(&theme), badge_(&badge) {}

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        BadgedFolder::draw(painter, *theme_, *badge_, rect(), ThemeColor::surface);
    }

private:
    const Theme* theme_;
    const std::optional<Badge>* badge_;
};

OverlayContent failure(DirectoryError error, const BrowserModel& model) {
    const auto& folder = model.currentURL();
    const std::string name = folder ? isolated(folder->title()) : std::string();
    const Badge warning{Glyph::warning, ThemeColor::warning, ThemeColor::warningSoft};
    switch (error.which()) {
    case DirectoryError::Case::permissionDenied:
        return {localized("overlay.permissionDenied.title"),
                localized("overlay.permissionDenied.message", {name}),
                Badge{Glyph::lock, ThemeColor::warning, ThemeColor::warningSoft},
                {Action::allowAccess, Action::tryAgain}};
    case DirectoryError::Case::volumeUnavailable:
        return {localized("overlay.volumeUnavailable.title"),
                localized("overlay.volumeUnavailable.message"),
                Badge{Glyph::unplugged, ThemeColor::warning, ThemeColor::warningSoft},
                {Action::tryAgain, Action::goHome}};
    case DirectoryError::Case::notFound:
    case DirectoryError::Case::notADirectory:
    case DirectoryError::Case::io: break;
    }
    return {localized("overlay.failed.title"),
            localized("overlay.failed.message", {error.localizedDescription()}),
            warning,
            {Action::tryAgain, Action::goUp}};
}

QString labelOf(Action action) {
    switch (action) {
    case Action::tryAgain: return localized("overlay.tryAgain");
    case Action::goUp: return localized("overlay.goUp");
    case Action::goHome: return localized("overlay.goHome");
    case Action::allowAccess: return localized("overlay.allowAccess");
    case Action::clearSearch: return localized("overlay.clearSearch");
    }
    std::unreachable();
}

} // namespace

std::optional<OverlayContent> OverlayContent::of(const BrowserModel& model) {
    switch (model.listingState().which()) {
    case ListingState::Case::failed: return failure(model.listingState().error(), model);
    case ListingState::Case::invalidated:
        return OverlayContent{localized("overlay.invalidated.title"),
                              localized("overlay.invalidated.message"),
                              Badge{Glyph::gone, ThemeColor::warning, ThemeColor::warningSoft},
                              {Action::goUp, Action::tryAgain}};
    case ListingState::Case::noLocation:
        return OverlayContent{localized("overlay.noLocation.title"),
                              localized("overlay.noLocation.message"),
                              {},
                              {Action::goHome}};
    case ListingState::Case::loaded:
        if (!model.currentURL() || !model.items().empty()) return std::nullopt;
        if (model.showsSearch())
            return OverlayContent{
                localized("overlay.noMatch.title", {isolated(model.searchQuery())}),
                localized("overlay.noMatch.message"),
                Badge{Glyph::search, ThemeColor::textSecondary, ThemeColor::selectionInactive},
                {Action::clearSearch}};
        return OverlayContent{
            localized("overlay.empty.title"), {}, {}, {}, localized("overlay.empty.dropHere")};
    case ListingState::Case::loading: return std::nullopt;
    }
    std::unreachable();
}

Overlay::Overlay(BrowserModel& model, const Theme& theme, QWidget* view)
    : QWidget(view), model_(&model), theme_(&theme), picture_(new Picture(theme, badge_, this)),
      title_(new QLabel(this)), message_(new QLabel(this)), buttonRow_(new QWidget(this)) {
    constexpr int above = 3, below = 4; // parts of the room that is left
    auto* const column = new QVBoxLayout(this);
    // It looks centred a little above the middle.
    column->addStretch(above);
    column->addWidget(picture_, 0, Qt::AlignHCenter);
    for (QLabel* label : {title_, message_}) {
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
        label->setAlignment(Qt::AlignHCenter);
        label->setForegroundRole(QPalette::WindowText);
        column->addWidget(label, 0, Qt::AlignHCenter);
    }
    column->addWidget(buttonRow_, 0, Qt::AlignHCenter);
    column->addStretch(below);
    new QHBoxLayout(buttonRow_);
    view->installEventFilter(this);
    hide();
    connect(&model, &BrowserModel::listingStateChanged, this, &Overlay::refresh);
    connect(&model, &BrowserModel::itemsChanged, this, &Overlay::refresh);
    connect(&theme, &Theme::changed, this, &Overlay::takeSizes);
    takeSizes();
    refresh();
}

void Overlay::lieOver(QWidget* view) {
    const bool wasShown = !isHidden();
    parentWidget()->removeEventFilter(this);
    setParent(view);
    view->installEventFilter(this);
    setGeometry(view->rect());
    if (!wasShown) return;
    QWidget::show();
    raise();
}

QString Overlay::title() const {
    return title_->text();
}

QString Overlay::message() const {
    return message_->text();
}

void Overlay::takeSizes() {
    const int icon = theme_->size(ThemeSize::overlayIcon);
    picture_->setFixedSize(icon, icon);
    title_->setFont(theme_->font(ThemeFont::title));
    QPalette colors = palette();
    colors.setColor(QPalette::WindowText, theme_->color(ThemeColor::textSecondary));
    message_->setPalette(colors);
    const int gap = theme_->size(ThemeSize::space8);
    layout()->setSpacing(gap);
    title_->setContentsMargins(0, gap, 0, 0);
    buttonRow_->layout()->setContentsMargins(0, theme_->size(ThemeSize::space12), 0, 0);
    buttonRow_->layout()->setSpacing(theme_->size(ThemeSize::space8) + theme_->size(ThemeSize::space2));
    fit();
}

void Overlay::fit() {
    const int room = width() - 2 * theme_->size(ThemeSize::space16);
    const int wide = std::max(1, std::min(theme_->size(ThemeSize::overlayWidth), room));
    const QString message = message_->text();
    message_->setText(widest_);
    message_->setVisible(!widest_.isEmpty());
    // A centred label takes the height of a single line by itself, and no less than it had to be before.
    for (QLabel* label : {title_, message_}) {
        label->setMinimumHeight(0);
        if (!label->text().isEmpty()) label->setFixedSize(wide, label->heightForWidth(wide));
    }
    message_->setText(message);
    auto* const row = qobject_cast<QBoxLayout*>(buttonRow_->layout());
    row->setDirection(QBoxLayout::LeftToRight);
    if (row->sizeHint().width() > room) row->setDirection(QBoxLayout::TopToBottom);
    picture_->show();
    picture_->setVisible(layout()->minimumSize().height() <= height());
    // What is shown is where it belongs at once, to be clicked.
    row->activate();
    layout()->activate();
}

void Overlay::refresh() {
    const auto content = OverlayContent::of(*model_);
    if (content) return show(*content);
    // A widget remembers whoever had the keyboard in it last; only the window knows who has it.
    const QWidget* const focused = window()->focusWidget();
    const bool hadFocus = focused && isAncestorOf(focused);
    hide();
    if (hadFocus && parentWidget()->parentWidget())
        parentWidget()->parentWidget()->setFocus(Qt::OtherFocusReason);
}

void Overlay::inviteDrop(bool invites) {
    if (std::exchange(invitesDrop_, invites) != invites) refresh();
}

void Overlay::setTexts(const QString& title, const QString& message, const QString& widest) {
    title_->setText(title);
    message_->setText(message);
    widest_ = widest;
}

void Overlay::show(const OverlayContent& content) {
    const QString& message =
        invitesDrop_ && !content.invitation.isEmpty() ? content.invitation : content.message;
    const bool isSame = isVisible() && content.title == title();
    if (isSame && message == this->message()) return;
    // Room is kept for the invitation, so that nothing moves when a drag comes.
    setTexts(content.title, message, content.invitation.isEmpty() ? content.message : content.invitation);
    if (isSame && !content.invitation.isEmpty()) return;
    badge_ = content.badge;
    picture_->update();
    for (QPushButton* button : buttons_)
        button->deleteLater();
    buttons_.clear();
    for (const Action action : content.actions) {
        auto* const button = new QPushButton(labelOf(action), buttonRow_);
        button->setDefault(buttons_.empty());
        connect(button, &QPushButton::clicked, this, [this, action] { perform(action); });
        buttonRow_->layout()->addWidget(button);
        buttons_.push_back(button);
    }
    setGeometry(parentWidget()->rect());
    fit();
    fadeIn();
    QWidget::show();
    raise();
    const QWidget* const view = parentWidget()->parentWidget();
    if (!buttons_.empty() && (!view || view->hasFocus())) buttons_.front()->setFocus(Qt::OtherFocusReason);
    setAccessibleName(content.title);
    setAccessibleDescription(content.message);
    QAccessibleEvent announcement(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&announcement);
}

void Overlay::fadeIn() {
    const int duration = theme_->duration(ThemeDuration::fade);
    if (duration == 0) return;
    auto* const effect = new QGraphicsOpacityEffect(this);
    setGraphicsEffect(effect);
    auto* const motion = new QPropertyAnimation(effect, "opacity", effect);
    motion->setDuration(duration);
    motion->setStartValue(0.0);
    motion->setEndValue(1.0);
    // Without the effect the widget is drawn directly again.
    connect(motion, &QPropertyAnimation::finished, this, [this] { setGraphicsEffect(nullptr); });
    motion->start();
}

void Overlay::perform(Action action) {
    switch (action) {
    case Action::tryAgain: model_->refresh(); break;
    case Action::goUp: model_->goUp(); break;
    case Action::goHome: model_->navigateHome(); break;
    case Action::allowAccess: model_->requestAccess(); break;
    case Action::clearSearch: model_->leaveSearch(); break;
    }
}

void Overlay::paintEvent(QPaintEvent*) {
    QPainter(this).fillRect(rect(), theme_->color(ThemeColor::surface));
}

void Overlay::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    fit();
}

bool Overlay::eventFilter(QObject* watched, QEvent* event) {
    if (watched == parentWidget() && event->type() == QEvent::Resize) setGeometry(parentWidget()->rect());
    return QWidget::eventFilter(watched, event);
}

} // namespace ombrel
