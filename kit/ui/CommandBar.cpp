#include "ui/CommandBar.h"

#include "ui/BarButton.h"
#include "ui/LocalizedText.h"
#include "ui/Theme.h"
#include "ui/ViewModeActions.h"
#include "ui/WindowActions.h"
#include "ui/WindowMenus.h"

#include <QAction>
#include <QEvent>
#include <QMenu>
#include <QPainter>
#include <QStyle>

#include <array>

namespace ombrel {

using Labelled = BarButton::Labelled;

CommandBar::CommandBar(const Theme& theme, WindowActions& actions, WindowMenus& menus, QWidget* parent)
    : QWidget(parent), theme_(&theme), actions_(&actions), menus_(&menus) {
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    makeButtons(theme, actions);
    connect(&actions, &WindowActions::refreshed, this, &CommandBar::refreshMenus);
    connect(&menus, &WindowMenus::moreIsFilled, this, &CommandBar::putLeftOutInto);
    connect(&theme, &Theme::changed, this, &CommandBar::arrange);
    refreshMenus();
    followViewMode(menus.viewModes());
}

/// The button shows what the pane looks like.
void CommandBar::followViewMode(const ViewModeActions& modes) {
    const auto show = [this, details = modes.details()] {
        view_->setGlyph(details->isChecked() ? Glyph::list : Glyph::grid);
    };
    connect(modes.details(), &QAction::toggled, this, show);
    show();
}

void CommandBar::makeButtons(const Theme& theme, WindowActions& actions) {
    const auto withMenu = [&](Glyph glyph, std::string_view textKey, WindowMenus::Kind kind) {
        auto* const button = new BarButton(theme, glyph, this);
        button->setLabel(localized(textKey));
        button->setToolTip(localized(textKey));
        button->setMenu(menus_->make(kind, this));
        return button;
    };
    new_ = withMenu(Glyph::newItem, "ui.bar.new", WindowMenus::Kind::create);
    new_->setGlyphColor(ThemeColor::accent);
    struct Command {
        Glyph glyph;
        FileCommand command;
    };
    constexpr std::array commands = {
        Command{Glyph::cut, FileCommand::cut}, Command{Glyph::copy, FileCommand::copy},
        Command{Glyph::paste, FileCommand::paste}, Command{Glyph::rename, FileCommand::rename},
        Command{Glyph::trash, FileCommand::moveToTrash}};
    Group editing;
    for (const Command& each : commands) {
        auto* const button = new BarButton(theme, each.glyph, this);
        button->follow(actions.of(each.command));
        editing.buttons.push_back(button);
    }
    sort_ = withMenu(Glyph::sort, "ui.bar.sort", WindowMenus::Kind::sort);
    view_ = withMenu(Glyph::list, "ui.bar.view", WindowMenus::Kind::view);
    more_ = withMenu(Glyph::more, "ui.bar.more", WindowMenus::Kind::more);
    details_ = new BarButton(theme, Glyph::detailsPane, this);
    details_->setLabel(localized("ui.bar.details"));
    details_->follow(actions.of(FileCommand::toggleDetailsPane));
    groups_ = {{{new_}}, std::move(editing), {{sort_, view_}}};
}

void CommandBar::refreshMenus() {
    new_->setEnabled(menus_->isUseful(WindowMenus::Kind::create));
    sort_->setEnabled(menus_->isUseful(WindowMenus::Kind::sort));
    view_->setEnabled(menus_->isUseful(WindowMenus::Kind::view));
}

void CommandBar::focusFirst() {
    for (const Group& group : groups_)
        for (BarButton* const button : group.buttons)
            if (button->isVisible() && button->isEnabled()) return button->setFocus(Qt::TabFocusReason);
    more_->setFocus(Qt::TabFocusReason);
}

void CommandBar::setTail(QWidget* tail) {
    if (tail_) tail_->removeEventFilter(this);
    tail_ = tail;
    if (tail_) tail_->installEventFilter(this);
    arrange();
}

QSize CommandBar::sizeHint() const {
    return {0, theme_->size(ThemeSize::commandBar)};
}

QSize CommandBar::minimumSizeHint() const {
    return sizeHint();
}

// ---- What there is room for

int CommandBar::between() const {
    // A line in the middle of its own space.
    return 2 * theme_->size(ThemeSize::space8) + theme_->size(ThemeSize::space6);
}

int CommandBar::widthOf(std::size_t groupCount) const {
    const int gap = theme_->size(ThemeSize::space4);
    int width =
        2 * theme_->size(ThemeSize::space12) + more_->sizeHint().width() + gap + details_->sizeHint().width();
    for (std::size_t i = 0; i < groupCount; ++i) {
        for (const BarButton* button : groups_[i].buttons)
            width += button->sizeHint().width() + gap;
        width += between() - gap;
    }
    if (tail_ && !tail_->isHidden()) width += tail_->sizeHint().width() + gap;
    return width;
}

bool CommandBar::fits(std::size_t groupCount) const {
    return widthOf(groupCount) <= width();
}

void CommandBar::arrange() {
    const std::array labelled = {details_, view_, sort_, new_}; // in the order in which the labels go
    for (BarButton* const button : labelled)
        button->setLabelled(Labelled::yes);
    groupsShown_ = groups_.size();
    for (BarButton* const button : labelled) {
        if (fits(groupsShown_)) break;
        button->setLabelled(Labelled::no);
    }
    while (groupsShown_ > 0 && !fits(groupsShown_))
        --groupsShown_;

    separators_.clear();
    const int gap = theme_->size(ThemeSize::space4), height = theme_->size(ThemeSize::button);
    const int top = (this->height() - theme_->size(ThemeSize::hairline) - height) / 2;
    int x = theme_->size(ThemeSize::space12);
    const auto place = [&](QWidget* widget, int left) {
        const QRect bounds(left, top, widget->sizeHint().width(), height);
        widget->setGeometry(QStyle::visualRect(layoutDirection(), rect(), bounds));
    };
    for (std::size_t i = 0; i < groups_.size(); ++i) {
        for (BarButton* const button : groups_[i].buttons) {
            button->setVisible(i < groupsShown_);
            if (i >= groupsShown_) continue;
            place(button, x);
            x += button->sizeHint().width() + gap;
        }
        if (i >= groupsShown_) continue;
        x += between() - gap;
        separators_.push_back(x - between() / 2);
    }
    place(more_, x);
    int right = width() - theme_->size(ThemeSize::space12);
    right -= details_->sizeHint().width();
    place(details_, right);
    if (tail_ && tail_->parentWidget() == this) place(tail_, right - gap - tail_->sizeHint().width());
    setFixedHeight(theme_->size(ThemeSize::commandBar));
    update();
}

void CommandBar::putLeftOutInto(QMenu& menu) const {
    const auto subMenu = [&](const BarButton* button, WindowMenus::Kind kind) {
        auto* const made = menus_->make(kind, &menu);
        made->setTitle(button->text());
        made->setEnabled(button->isEnabled());
        menu.addMenu(made);
    };
    if (groupsShown_ < 1) subMenu(new_, WindowMenus::Kind::create);
    if (groupsShown_ < 2)
        for (const FileCommand command : {FileCommand::cut, FileCommand::copy, FileCommand::paste,
                                          FileCommand::rename, FileCommand::moveToTrash})
            menu.addAction(actions_->of(command));
    if (groupsShown_ < 3) {
        subMenu(sort_, WindowMenus::Kind::sort);
        subMenu(view_, WindowMenus::Kind::view);
    }
}

// ---- Events

void CommandBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const int hairline = theme_->size(ThemeSize::hairline), tall = theme_->size(ThemeSize::space20);
    const QColor line = theme_->color(ThemeColor::border);
    painter.fillRect(rect(), theme_->color(ThemeColor::chromeRaised));
    painter.fillRect(QRect(0, height() - hairline, width(), hairline), line);
    for (const int x : separators_)
        painter.fillRect(
            QStyle::visualRect(layoutDirection(), rect(), QRect(x, (height() - tall) / 2, hairline, tall)),
            line);
}

void CommandBar::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    arrange();
}

void CommandBar::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::LayoutDirectionChange) arrange();
}

bool CommandBar::eventFilter(QObject* watched, QEvent* event) {
    const bool changesRoom = event->type() == QEvent::ShowToParent || event->type() == QEvent::HideToParent ||
                             event->type() == QEvent::ParentChange;
    if (watched == tail_ && changesRoom) arrange();
    return QWidget::eventFilter(watched, event);
}

} // namespace ombrel
