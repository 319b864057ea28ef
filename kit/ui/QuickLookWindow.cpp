#include "ui/QuickLookWindow.h"

#include "base/FileName.h"
#include "browser/SelectionGestures.h"
#include "ui/FocusRing.h"
#include "ui/Formats.h"
#include "ui/GlyphButton.h"
#include "ui/LocalizedText.h"
#include "ui/OmbrelStyle.h"
#include "ui/PaneArea.h"
#include "ui/QuickLookPicture.h"
#include "ui/TextLabel.h"
#include "ui/Theme.h"

#include <QAction>
#include <QFocusEvent>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPropertyAnimation>
#include <QPushButton>
#include <QScrollBar>
#include <QStackedWidget>
#include <QVBoxLayout>
#include <QWindow>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <initializer_list>
#include <utility>

namespace ombrel {
namespace {

using Place = BrowserModel::Place;
using How = SelectionGestures::How;
using Step = FileView::Step;

/// Of its browser's width and height, at most.
constexpr double largestShare = 0.8;
/// How long a size must have stayed before images are made for it.
constexpr std::chrono::milliseconds sizeRest(150);

/// The selected row that is nearest to one that is not, the next one rather than the one before.
std::optional<std::size_t> nearestSelected(const FileSelection& selection, std::size_t row) {
    for (std::size_t after = row; after < selection.list().size(); ++after)
        if (selection.contains(after)) return after;
    for (std::size_t before = std::min(row, selection.list().size()); before-- > 0;)
        if (selection.contains(before)) return before;
    return std::nullopt;
}

QString shownName(FileItemView item) {
    return QString::fromStdString(FileName::displayText(item.name()));
}

} // namespace

QuickLookWindow::QuickLookWindow(const Setting& setting, QWidget& browser)
    : QDialog(&browser, Qt::Dialog | Qt::FramelessWindowHint), theme_(&setting.theme), browser_(&browser),
      area_(&setting.area), watchedArea_(&setting.area), open_(setting.open), header_(new QWidget(this)),
      name_(new ElidedLabel(*theme_, Qt::ElideMiddle, ThemeColor::text, header_)),
      position_(new TextLabel(*theme_, ThemeFont::body, ThemeColor::textSecondary, header_)),
      openButton_(new QPushButton(localized("ui.command.open"), header_)),
      closeButton_(new GlyphButton(*theme_, Glyph::close, ThemeSize::compactButton, header_)),
      pages_(new QStackedWidget(this)), picture_(new QuickLookPicture(*theme_, setting.thumbnails)),
      textPage_(new QWidget), text_(new QPlainTextEdit(textPage_)),
      cut_(new TextLabel(*theme_, ThemeFont::caption, ThemeColor::textSecondary, textPage_)) {
    setAttribute(Qt::WA_DeleteOnClose);
    new FocusRing(this);
    layOut();
    takeLook();
    connect(theme_, &Theme::changed, this, &QuickLookWindow::takeLook);
    connect(&content_, &QuickLookContent::changed, this, &QuickLookWindow::showContent);
    rest_.setSingleShot(true);
    rest_.setInterval(sizeRest);
    connect(&rest_, &QTimer::timeout, this, &QuickLookWindow::lookAgainIfLarger);
    followPane();
}

void QuickLookWindow::toggle(const Setting& setting, QWidget& browser) {
    const auto all = browser.findChildren<QuickLookWindow*>(QString(), Qt::FindDirectChildrenOnly);
    for (QuickLookWindow* const shown : all) {
        if (!shown->isVisible()) continue;
        shown->close();
        return;
    }
    (new QuickLookWindow(setting, browser))->appear();
}

BrowserModel& QuickLookWindow::pane() const {
    return area_->model();
}

// ---- How it looks

void QuickLookWindow::layOut() {
    layOutHeader();
    pages_->addWidget(picture_);
    pages_->addWidget(textPage_);
    text_->setReadOnly(true);
    text_->setUndoRedoEnabled(false);
    text_->setFrameStyle(QFrame::NoFrame);
    // Without a cursor: keys scroll, or select and copy all.
    text_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    text_->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(text_, &QWidget::customContextMenuRequested, this, &QuickLookWindow::showTextMenu);
    cut_->setText(
        localized("ui.quickLook.cut",
                  {Formats::size(static_cast<std::int64_t>(QuickLookContent::mostText)).toStdString()}));
    auto* const textColumn = new QVBoxLayout(textPage_);
    textColumn->setContentsMargins({});
    textColumn->setSpacing(0);
    textColumn->addWidget(text_);
    textColumn->addWidget(cut_);
    auto* const column = new QVBoxLayout(this);
    column->setSpacing(0);
    column->addWidget(header_);
    column->addWidget(pages_, 1);
    for (QWidget* const each : std::initializer_list<QWidget*>{text_, picture_, openButton_, closeButton_})
        each->installEventFilter(this);
    picture_->setFocus(Qt::OtherFocusReason);
}

void QuickLookWindow::layOutHeader() {
    auto* const row = new QHBoxLayout(header_);
    row->addWidget(name_, 1);
    row->addWidget(position_);
    row->addWidget(openButton_);
    row->addWidget(closeButton_);
    openButton_->setAutoDefault(false);
    openButton_->setEnabled(static_cast<bool>(open_));
    const QString close = localized("ui.report.close");
    closeButton_->setLabel(close);
    const auto withKey = [](const QString& label, const QString& key) {
        return localized("ui.tooltip.withShortcut", {label.toStdString(), key.toStdString()});
    };
    closeButton_->setToolTip(withKey(close, localized("ui.key.space")));
    openButton_->setToolTip(withKey(openButton_->text(), localized("ui.key.enter")));
    connect(openButton_, &QAbstractButton::clicked, this, &QuickLookWindow::openShown);
    connect(closeButton_, &QAbstractButton::clicked, this, &QWidget::close);
}

void QuickLookWindow::takeLook() {
    const int line = theme_->size(ThemeSize::hairline), ring = theme_->size(ThemeSize::focusRing);
    layout()->setContentsMargins(line, line, line, line);
    header_->setFixedHeight(theme_->size(ThemeSize::quickLookHeader));
    const int side = theme_->size(ThemeSize::space12), gap = theme_->size(ThemeSize::space6);
    header_->layout()->setContentsMargins(side, 0, gap, 0);
    header_->layout()->setSpacing(theme_->size(ThemeSize::space12));
    openButton_->setFixedHeight(theme_->size(ThemeSize::compactButton));
    // Room for the line below the header, and for the ring.
    pages_->setContentsMargins(ring, line + ring, ring, ring);
    text_->setFont(theme_->font(ThemeFont::fixed));
    constexpr int tab = 8;
    text_->setTabStopDistance(QFontMetricsF(text_->font()).horizontalAdvance(QLatin1Char(' ')) * tab);
    text_->document()->setDocumentMargin(theme_->size(ThemeSize::space12));
    cut_->setMargin(theme_->size(ThemeSize::space8));
    update();
}

void QuickLookWindow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const int line = theme_->size(ThemeSize::hairline);
    painter.fillRect(rect(), theme_->color(ThemeColor::border));
    const QRect header = header_->geometry();
    painter.fillRect(header, theme_->color(ThemeColor::chromeRaised));
    const QRect page = pages_->geometry().adjusted(0, line, 0, 0);
    painter.fillRect(page, theme_->color(ThemeColor::surface));
    if (isRinged_)
        OmbrelStyle::drawInnerRing(painter, *theme_, page, theme_->size(ThemeSize::radiusCheckBox));
}

// ---- Coming and going

void QuickLookWindow::followPane() {
    browser_->installEventFilter(this);
    area_->installEventFilter(this);
    for (const auto signal :
         {&BrowserModel::itemsChanged, &BrowserModel::selectionChanged, &BrowserModel::currentRowChanged})
        connect(&pane(), signal, this, &QuickLookWindow::followLater);
    connect(&pane(), &BrowserModel::locationChanged, this, &QWidget::close);
    connect(area_.data(), &QObject::destroyed, this, &QWidget::close);
}

void QuickLookWindow::appear() {
    place();
    // Where windows have no opacity it is there at once.
    const bool canFade = !QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
    if (const int duration = theme_->duration(ThemeDuration::fade); duration > 0 && canFade) {
        setWindowOpacity(0);
        auto* const motion = new QPropertyAnimation(this, "windowOpacity", this);
        motion->setDuration(duration);
        motion->setEndValue(1.0);
        motion->start(QAbstractAnimation::DeleteWhenStopped);
    }
    show();
    activateWindow();
    // Only now the picture knows the room that an image has.
    follow();
}

void QuickLookWindow::place() {
    const QSize most(theme_->size(ThemeSize::quickLookWidth), theme_->size(ThemeSize::quickLookHeight));
    QRect place(QPoint(), (QSizeF(browser_->size()) * largestShare).toSize().boundedTo(most));
    place.moveCenter(browser_->mapToGlobal(browser_->rect().center()));
    setGeometry(place);
}

void QuickLookWindow::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (windowHandle())
        connect(windowHandle(), &QWindow::screenChanged, &rest_, qOverload<>(&QTimer::start),
                Qt::UniqueConnection);
}

void QuickLookWindow::resizeEvent(QResizeEvent* event) {
    QDialog::resizeEvent(event);
    if (looked_) rest_.start();
}

bool QuickLookWindow::eventFilter(QObject* watched, QEvent* event) {
    const auto type = event->type();
    if (watched == browser_) {
        if (type == QEvent::Resize || type == QEvent::Move) place();
        return false;
    }
    // What is being destroyed is no pane area any more, only the object that is watched.
    if (watched == watchedArea_) {
        // Another tab is active, or the window has closed.
        if (type == QEvent::Hide && !event->spontaneous()) close();
        return false;
    }
    if (type == QEvent::KeyPress) return press(*static_cast<QKeyEvent*>(event));
    if (type == QEvent::FocusIn || type == QEvent::FocusOut) {
        const auto reason = static_cast<QFocusEvent*>(event)->reason();
        const bool byKeys = reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason;
        isRinged_ = type == QEvent::FocusIn && byKeys && (watched == text_ || watched == picture_);
        update();
    }
    return false;
}

// ---- What is shown

void QuickLookWindow::followLater() {
    // Selecting changes several things, one after the other.
    if (std::exchange(isFollowDue_, true)) return;
    QMetaObject::invokeMethod(this, &QuickLookWindow::follow, Qt::QueuedConnection);
}

void QuickLookWindow::follow() {
    isFollowDue_ = false;
    const auto row = area_ ? shownRow() : std::nullopt;
    if (!row) {
        looked_.reset();
        content_.stop();
        close();
        return;
    }
    const FileItemView item = pane().items()[*row];
    name_->setText(shownName(item));
    setWindowTitle(name_->text());
    refreshPosition(*row);
    if (!looked_ || !areAlike(*looked_, item)) look(*row);
}

bool QuickLookWindow::isAmongSeveral() const {
    return pane().selection().count() > 1;
}

std::optional<std::size_t> QuickLookWindow::shownRow() const {
    const auto current = pane().row(Place::current);
    const FileSelection& selection = pane().selection();
    // What was shown may have gone, and its neighbour is current without being selected.
    if (selection.empty()) return current;
    return current ? nearestSelected(selection, *current) : selection.firstRow();
}

void QuickLookWindow::refreshPosition(std::size_t row) {
    const FileSelection& selection = pane().selection();
    std::size_t place = row + 1, count = pane().items().size();
    if (isAmongSeveral()) {
        count = selection.count();
        place = 0;
        for (std::size_t before = 0; before <= row; ++before)
            place += selection.contains(before) ? 1 : 0;
    }
    const auto inWords = [](std::size_t number) {
        return Formats::number(static_cast<std::int64_t>(number)).toStdString();
    };
    position_->setText(localized("ui.quickLook.position", {inWords(place), inWords(count)}));
}

QString QuickLookWindow::position() const {
    return position_->text();
}

void QuickLookWindow::look(std::size_t row) {
    looked_ = pane().items().item(row);
    room_ = picture_->room();
    // Until something is known of the first one.
    if (content_.kind() == QuickLookContent::Kind::nothing) picture_->setAccessibleName(name_->text());
    content_.look(*looked_, room_);
}

/// An image that was made smaller than it is may now be larger.
void QuickLookWindow::lookAgainIfLarger() {
    const QSize room = picture_->room();
    const QSize image = picture_->image().size();
    const bool wasFitted = image.width() >= room_.width() || image.height() >= room_.height();
    const bool isLarger = room.width() > room_.width() || room.height() > room_.height();
    if (!looked_ || image.isEmpty() || !wasFitted || !isLarger) return;
    room_ = room;
    content_.look(*looked_, room_);
}

void QuickLookWindow::showContent() {
    const auto& item = content_.item();
    QStringList words{item ? shownName(*item) : QString()};
    switch (content_.kind()) {
    case QuickLookContent::Kind::nothing: picture_->clear(); break;
    case QuickLookContent::Kind::icon:
        picture_->setItem(*item, content_.values());
        if (content_.isSettled()) picture_->wantThumbnail();
        words += picture_->facts();
        break;
    case QuickLookContent::Kind::image: picture_->setImage(content_.image()); break;
    case QuickLookContent::Kind::text: showText(); return;
    }
    // What is read out: it changes when another item is shown.
    picture_->setAccessibleName(words.join(QStringLiteral(", ")));
    showPage(picture_);
}

void QuickLookWindow::showText() {
    const QString name = shownName(*content_.item());
    // A text that changes while it is read stays where it is.
    const bool isSameText = pages_->currentWidget() == textPage_ && text_->accessibleName() == name;
    const int at = isSameText ? text_->verticalScrollBar()->value() : 0;
    text_->setPlainText(content_.text());
    text_->verticalScrollBar()->setValue(at);
    text_->setAccessibleName(name);
    cut_->setVisible(content_.isCut());
    picture_->clear();
    showPage(textPage_);
}

void QuickLookWindow::showPage(QWidget* page) {
    const QWidget* const focused = focusWidget();
    const bool hadFocus = !focused || pages_->isAncestorOf(focused);
    pages_->setCurrentWidget(page);
    if (!hadFocus) return;
    QWidget* const receiver = page == textPage_ ? static_cast<QWidget*>(text_) : picture_;
    if (receiver != focused) receiver->setFocus(Qt::OtherFocusReason);
}

void QuickLookWindow::showTextMenu(QPoint at) {
    auto* const menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    auto* const copy = menu->addAction(localized("ui.command.copy"));
    copy->setEnabled(text_->textCursor().hasSelection());
    connect(copy, &QAction::triggered, text_, &QPlainTextEdit::copy);
    connect(menu->addAction(localized("ui.command.selectAll")), &QAction::triggered, text_,
            &QPlainTextEdit::selectAll);
    menu->popup(text_->viewport()->mapToGlobal(at));
}

// ---- Keys

void QuickLookWindow::keyPressEvent(QKeyEvent* event) {
    if (press(*event)) return event->accept();
    event->ignore();
}

bool QuickLookWindow::press(const QKeyEvent& event) {
    const auto modifiers = event.modifiers();
    if (modifiers != Qt::NoModifier && modifiers != Qt::KeypadModifier) return false;
    auto* const button = qobject_cast<QAbstractButton*>(focusWidget());
    switch (event.key()) {
    case Qt::Key_Space:
        if (button) return false;
        // The key that opened the window may still be held down.
        if (!event.isAutoRepeat()) close();
        return true;
    case Qt::Key_Escape: close(); return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (event.isAutoRepeat()) return true;
        button ? button->click() : openShown();
        return true;
    case Qt::Key_Up: step(Step::up); return true;
    case Qt::Key_Down: step(Step::down); return true;
    case Qt::Key_Left: step(Step::left); return true;
    case Qt::Key_Right: step(Step::right); return true;
    default: return false;
    }
}

void QuickLookWindow::step(Step step) {
    const auto row = area_ ? shownRow() : std::nullopt;
    if (!row) return;
    const std::size_t to = stepped(*row, step);
    if (to == *row) return;
    SelectionGestures(pane()).select(to, isAmongSeveral() ? How::currentOnly : How::only);
    area_->view().reveal(to);
}

std::size_t QuickLookWindow::stepped(std::size_t row, Step step) const {
    const std::size_t count = pane().items().size();
    const bool isMirrored = layoutDirection() == Qt::RightToLeft;
    const bool isBack = step == Step::up || step == (isMirrored ? Step::right : Step::left);
    if (isAmongSeveral()) {
        const FileSelection& selection = pane().selection();
        for (std::size_t at = row; isBack ? at-- > 0 : ++at < count;)
            if (selection.contains(at)) return at;
        return row;
    }
    const bool isSideways = step == Step::left || step == Step::right;
    if (!isSideways) return area_->view().stepped(row, step);
    // On from line to line, which arrows in the view itself do not.
    return isBack ? row - std::min<std::size_t>(row, 1) : std::min(row + 1, count - 1);
}

void QuickLookWindow::openShown() {
    const auto row = area_ ? shownRow() : std::nullopt;
    // A question about the item comes over the browser.
    const auto open = open_;
    close();
    if (row && open) open(*row);
}

} // namespace ombrel
