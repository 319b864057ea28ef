#include "ui/CrumbBar.h"

#include "ui/DropSpring.h"
#include "ui/FolderDrop.h"
#include "ui/GlyphButton.h"
#include "ui/LocalizedText.h"
#include "ui/OmbrelStyle.h"
#include "ui/Theme.h"

#include <QAbstractButton>
#include <QContextMenuEvent>
#include <QDropEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>

#include <algorithm>
#include <utility>

namespace ombrel {
/// The name of one folder of the address. Its ground is painted by the bar, together with the chevron's.
class CrumbBar::Crumb final : public QAbstractButton {
public:
    Crumb(const Theme& theme, const QString& name, QWidget* parent)
        : QAbstractButton(parent), theme_(&theme) {
        setText(name);
        setAccessibleName(name);
        setAttribute(Qt::WA_Hover);
    }

    QSize sizeHint() const override {
        return {fontMetrics().horizontalAdvance(text()) + 2 * theme_->size(ThemeSize::space6) + 1,
                theme_->size(ThemeSize::space28)};
    }
    [[nodiscard]] bool isCutShort() const { return width() < sizeHint().width(); }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        const int margin = theme_->size(ThemeSize::space6);
        painter.setPen(theme_->color(ThemeColor::text));
        painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine,
                         fontMetrics().elidedText(text(), Qt::ElideMiddle, width() - 2 * margin + 1));
    }

private:
    const Theme* theme_;
};

CrumbBar::CrumbBar(const Theme& theme, QWidget* parent)
    : QWidget(parent), theme_(&theme),
      collapsed_(new GlyphButton(theme, Glyph::collapsed, ThemeSize::space28, this)),
      spring_(new DropSpring(theme, Theme::delay(ThemeDelay::springCrumb), this)) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAcceptDrops(true);
    collapsed_->setAccessibleName(localized("ui.address.collapsed"));
    collapsed_->setToolTip(localized("ui.address.collapsed"));
    collapsed_->installEventFilter(this);
    collapsed_->hide();
    connect(collapsed_, &QAbstractButton::clicked, this, &CrumbBar::showCollapsed);
    connect(spring_, &DropSpring::opened, this, &CrumbBar::openUnderDrag);
    connect(spring_, &DropSpring::flashChanged, this, qOverload<>(&QWidget::update));
    connect(&theme, &Theme::changed, this, &CrumbBar::arrange);
}

void CrumbBar::setCrumbs(const std::vector<AddressCrumb>& crumbs) {
    if (crumbs == crumbs_ && !crumbs.empty()) return;
    crumbs_ = crumbs;
    std::vector<QString> names;
    for (const AddressCrumb& crumb : crumbs)
        names.push_back(QString::fromStdString(crumb.name));
    rebuild(names);
}

void CrumbBar::setOnly(const QString& text) {
    crumbs_.clear();
    rebuild({text});
}

void CrumbBar::rebuild(const std::vector<QString>& names) {
    const bool hadFocus = isAncestorOf(window()->focusWidget());
    setDropTarget(std::nullopt);
    for (const auto& [name, chevron] : pairs_) {
        name->deleteLater();
        if (chevron) chevron->deleteLater();
        // They may be asked for before the event loop deletes them.
        name->hide();
        if (chevron) chevron->hide();
    }
    pairs_.clear();
    for (std::size_t i = 0; i < names.size(); ++i) {
        Pair pair{new Crumb(*theme_, names[i], this), nullptr};
        // One stop for Tab: the place that is shown.
        pair.name->setFocusPolicy(i + 1 == names.size() ? Qt::TabFocus : Qt::NoFocus);
        pair.name->installEventFilter(this);
        connect(pair.name, &QAbstractButton::clicked, this, [this, i] {
            if (i >= crumbs_.size()) return Q_EMIT onlyChosen();
            // The crumb goes with the navigation that it starts.
            const FileURL folder = crumbs_[i].folder;
            Q_EMIT folderChosen(folder);
        });
        if (i < crumbs_.size()) {
            pair.chevron = new GlyphButton(*theme_, Glyph::chevronRight, ThemeSize::crumbChevron, this);
            pair.chevron->setAccessibleName(localized("ui.address.foldersIn", {isolated(crumbs_[i].name)}));
            pair.chevron->setFocusPolicy(Qt::NoFocus);
            pair.chevron->setInk(ThemeColor::textSecondary);
            pair.chevron->setBare(true);
            pair.chevron->installEventFilter(this);
            connect(pair.chevron, &QAbstractButton::pressed, this, [this, i] { requestChildren(i); });
        }
        pairs_.push_back(pair);
    }
    arrange();
    // Made last, it would come last in the window.
    if (!pairs_.empty()) setTabOrder(collapsed_, pairs_.back().name);
    setFocusProxy(pairs_.empty() ? nullptr : pairs_.back().name);
    if (hadFocus && !pairs_.empty()) pairs_.back().name->setFocus(Qt::OtherFocusReason);
}

QSize CrumbBar::sizeHint() const {
    return {theme_->size(ThemeSize::addressMinimumWidth) / 2, theme_->size(ThemeSize::space28)};
}

QSize CrumbBar::minimumSizeHint() const {
    return sizeHint();
}

void CrumbBar::arrange() {
    const int chevron = theme_->size(ThemeSize::crumbChevron), height = theme_->size(ThemeSize::space28);
    const int top = (this->height() - height) / 2, collapsed = collapsed_->sizeHint().width();
    const bool isRightToLeft = layoutDirection() == Qt::RightToLeft;
    // Something to click on stays free.
    const int room = width() - theme_->size(ThemeSize::space28);
    const auto widthFrom = [&](std::size_t first) {
        int sum = first > 0 ? collapsed : 0;
        for (std::size_t i = first; i < pairs_.size(); ++i)
            sum += pairs_[i].name->sizeHint().width() + (pairs_[i].chevron ? chevron : 0);
        return sum;
    };
    firstShown_ = 0;
    while (firstShown_ + 1 < pairs_.size() && widthFrom(firstShown_) > room)
        ++firstShown_;
    int x = 0;
    const auto place = [&](QWidget* widget, int extent, int y, int tall) {
        widget->setGeometry(QStyle::visualRect(layoutDirection(), rect(), QRect(x, y, extent, tall)));
        widget->show();
        x += extent;
    };
    collapsed_->setVisible(firstShown_ > 0);
    if (firstShown_ > 0) place(collapsed_, collapsed, (this->height() - collapsed) / 2, collapsed);
    for (std::size_t i = 0; i < pairs_.size(); ++i) {
        const auto& [name, arrow] = pairs_[i];
        if (i < firstShown_) {
            name->hide();
            if (arrow) arrow->hide();
            continue;
        }
        const int left = room - x - (arrow ? chevron : 0);
        place(name, std::min(name->sizeHint().width(), std::max(0, left)), top, height);
        name->setToolTip(name->isCutShort() ? name->text() : QString());
        if (!arrow) continue;
        arrow->setGlyph(isRightToLeft ? Glyph::chevronLeft : Glyph::chevronRight);
        place(arrow, chevron, top, height);
    }
    update();
}

void CrumbBar::showCollapsed() {
    auto* const menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    // The nearest first, as they stand beside the button.
    for (std::size_t i = firstShown_; i-- > 0;) {
        QString name = pairs_[i].name->text();
        name.replace(QLatin1Char('&'), QLatin1String("&&"));
        connect(menu->addAction(name), &QAction::triggered, this,
                [this, folder = crumbs_[i].folder] { Q_EMIT folderChosen(folder); });
    }
    menu->popup(collapsed_->mapToGlobal(QPoint(0, collapsed_->height())));
}

void CrumbBar::requestChildren(std::size_t crumb) {
    const QRect shape = shapeOf(crumb);
    // The popup takes the release of the mouse.
    if (auto* const chevron = pairs_[crumb].chevron) chevron->setDown(false);
    Q_EMIT childrenRequested(crumb, {mapToGlobal(shape.topLeft()), shape.size()});
}

// ---- Where things are

std::optional<std::size_t> CrumbBar::pairOf(const QObject* button) const {
    for (std::size_t i = 0; i < pairs_.size(); ++i)
        if (pairs_[i].name == button || pairs_[i].chevron == button) return i;
    return std::nullopt;
}

QRect CrumbBar::shapeOf(std::size_t crumb) const {
    const auto& [name, chevron] = pairs_[crumb];
    return chevron ? name->geometry().united(chevron->geometry()) : name->geometry();
}

std::optional<std::size_t> CrumbBar::crumbAt(QPoint point) const {
    for (std::size_t i = firstShown_; i < crumbs_.size(); ++i)
        if (shapeOf(i).contains(point)) return i;
    return std::nullopt;
}

void CrumbBar::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    arrange();
}

void CrumbBar::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::LayoutDirectionChange) arrange();
}

void CrumbBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const int radius = theme_->size(ThemeSize::radiusButton);
    for (std::size_t i = firstShown_; i < pairs_.size(); ++i) {
        const auto& [name, chevron] = pairs_[i];
        const bool isDown = name->isDown() || (chevron && chevron->isDown());
        const bool isHovered = name->underMouse() || (chevron && chevron->underMouse());
        if (dropTarget_ == i && (drops_->isAllowed() || spring_->isFlashing(i)))
            painter.setBrush(theme_->color(ThemeColor::selection));
        else if (isDown || isHovered)
            painter.setBrush(theme_->color(isDown ? ThemeColor::pressed : ThemeColor::hover));
        else
            continue;
        painter.drawRoundedRect(shapeOf(i), radius, radius);
        if (spring_->isFlashing(i)) OmbrelStyle::drawInnerRing(painter, *theme_, shapeOf(i), radius);
        painter.setPen(Qt::NoPen);
    }
}

// ---- Pointer and keyboard

void CrumbBar::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return event->ignore();
    isPressed_ = true;
}

void CrumbBar::mouseReleaseEvent(QMouseEvent* event) {
    if (std::exchange(isPressed_, false) && rect().contains(event->pos())) Q_EMIT emptySpaceClicked();
}

void CrumbBar::moveFocus(const QWidget* from, int step) {
    std::vector<QWidget*> stops;
    if (firstShown_ > 0) stops.push_back(collapsed_);
    for (std::size_t i = firstShown_; i < pairs_.size(); ++i) {
        stops.push_back(pairs_[i].name);
        if (pairs_[i].chevron) stops.push_back(pairs_[i].chevron);
    }
    const auto at = std::ranges::find(stops, from);
    if (at == stops.end()) return;
    const auto next = (at - stops.begin()) + step;
    if (next >= 0 && next < static_cast<std::ptrdiff_t>(stops.size()))
        stops[static_cast<std::size_t>(next)]->setFocus(Qt::TabFocusReason);
}

bool CrumbBar::eventFilter(QObject* watched, QEvent* event) {
    const auto crumb = pairOf(watched);
    switch (event->type()) {
    case QEvent::Enter:
    case QEvent::Leave:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease: update(); break; // the ground of both is painted here
    case QEvent::ContextMenu:
        if (!crumb || *crumb >= crumbs_.size()) break;
        Q_EMIT menuRequested(*crumb, static_cast<QContextMenuEvent*>(event)->globalPos());
        return true;
    case QEvent::KeyPress: {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Left || key == Qt::Key_Right) {
            const bool isOn = (key == Qt::Key_Right) == (layoutDirection() == Qt::LeftToRight);
            moveFocus(qobject_cast<QWidget*>(watched), isOn ? 1 : -1);
            return true;
        }
        if (key == Qt::Key_Down && crumb && *crumb < crumbs_.size()) {
            requestChildren(*crumb);
            return true;
        }
        if ((key == Qt::Key_Return || key == Qt::Key_Enter) && qobject_cast<QAbstractButton*>(watched)) {
            if (crumb && pairs_[*crumb].chevron == watched)
                requestChildren(*crumb);
            else
                static_cast<QAbstractButton*>(watched)->click();
            return true;
        }
        break;
    }
    default: break;
    }
    return QWidget::eventFilter(watched, event);
}

// ---- What is dragged here

void CrumbBar::setDrops(FolderDrop& drops) {
    drops_ = &drops;
    connect(&drops, &FolderDrop::planned, this, qOverload<>(&QWidget::update));
}

void CrumbBar::setDropTarget(std::optional<std::size_t> crumb) {
    // The last one is what is shown already.
    const bool opens = crumb && *crumb + 1 < crumbs_.size();
    spring_->over(opens ? crumb : std::nullopt);
    dropTarget_ = crumb;
    update();
}

std::optional<FileURL> CrumbBar::takeDropTarget(QPoint point) {
    setDropTarget(takesDrag_ ? crumbAt(point) : std::nullopt);
    return dropTarget_ ? std::optional(crumbs_[*dropTarget_].folder) : std::nullopt;
}

void CrumbBar::openUnderDrag(std::size_t crumb) {
    if (crumb >= crumbs_.size()) return;
    // The crumb goes with the navigation that it starts.
    const FileURL folder = crumbs_[crumb].folder;
    drops_->rememberPlace();
    Q_EMIT folderChosen(folder);
}

void CrumbBar::dragEnterEvent(QDragEnterEvent* event) {
    takesDrag_ = drops_ && drops_->enter(*event, *this);
    // Who refuses a drag that enters does not hear of the rest of its way.
    event->setAccepted(takesDrag_);
    if (takesDrag_) drops_->aim(takeDropTarget(event->position().toPoint()));
}

void CrumbBar::dragMoveEvent(QDragMoveEvent* event) {
    if (!takesDrag_) return event->ignore();
    drops_->follow(*event, takeDropTarget(event->position().toPoint()));
}

void CrumbBar::dragLeaveEvent(QDragLeaveEvent*) {
    if (std::exchange(takesDrag_, false)) drops_->leave();
    setDropTarget(std::nullopt);
}

void CrumbBar::dropEvent(QDropEvent* event) {
    if (!takesDrag_) return event->ignore();
    const auto folder = takeDropTarget(event->position().toPoint());
    takesDrag_ = false;
    setDropTarget(std::nullopt);
    drops_->drop(*event, folder);
}

} // namespace ombrel
