#include "ui/AddressBar.h"

#include "base/FileName.h"
#include "browser/BrowserTabsModel.h"
#include "services/AppServices.h"
#include "ui/AddressError.h"
#include "ui/AddressField.h"
#include "ui/CrumbBar.h"
#include "ui/FolderList.h"
#include "ui/GlyphButton.h"
#include "ui/LocalizedText.h"
#include "ui/LocationLook.h"

#include <QFocusEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>

#include <utility>

namespace ombrel {
namespace {

QString menuText(std::string_view path) {
    QString text = QString::fromStdString(FileName::displayText(path));
    text.replace(QLatin1Char('&'), QLatin1String("&&"));
    return text;
}

} // namespace

AddressBar::AddressBar(BrowserTabsModel& tabs, AppServices& services, const Theme& theme, FileURL home,
                       QWidget* parent)
    : FieldFrame(theme, parent), tabs_(&tabs), pane_(tabs), services_(&services), home_(std::move(home)),
      crumbs_(new CrumbBar(theme, this)),
      field_(new AddressField(
          theme, home_, [this]() -> AddressField::Base { return {pane_->currentURL(), pane_->filter()}; },
          this)),
      recent_(new GlyphButton(theme, Glyph::chevronDown, ThemeSize::smallButton, this)),
      error_(new AddressError(theme, this)) {
    setAccessibleName(localized("ui.accessible.address"));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setFocusProxy(crumbs_);
    field_->hide();
    field_->installEventFilter(this);
    recent_->setAccessibleName(localized("ui.address.recent"));
    recent_->setToolTip(recent_->accessibleName());
    recent_->setInk(ThemeColor::textSecondary);
    setTabOrder(crumbs_, recent_);
    connect(recent_, &QAbstractButton::clicked, this, &AddressBar::showRecent);
    connect(crumbs_, &CrumbBar::folderChosen, this,
            [this](const FileURL& folder) { pane_->navigate(folder); });
    connect(crumbs_, &CrumbBar::onlyChosen, this, [this] {
        if (pane_->showsSearch())
            pane_->leaveSearch();
        else
            pane_->refresh();
    });
    connect(crumbs_, &CrumbBar::childrenRequested, this, &AddressBar::showChildren);
    connect(crumbs_, &CrumbBar::menuRequested, this, &AddressBar::showCrumbMenu);
    connect(crumbs_, &CrumbBar::emptySpaceClicked, this, &AddressBar::edit);
    connect(field_, &AddressField::accepted, this, &AddressBar::enter);
    connect(field_, &AddressField::cancelled, this, [this] {
        stopEditing();
        Q_EMIT finished();
    });
    connect(field_, &QLineEdit::textChanged, this, &AddressBar::clearError);
    connect(&services.volumes(), &VolumeMonitor::volumesChanged, this, &AddressBar::follow);
    connect(&services.access(), &AccessManager::grantsChanged, this, &AddressBar::follow);
    pane_.follow([this](BrowserModel& pane, QObject& context) { followPane(pane, context); });
}

void AddressBar::followPane(BrowserModel& pane, QObject& context) {
    stopEditing();
    pane.requestAddressFocus = [this] { edit(); };
    connect(&pane, &BrowserModel::locationChanged, &context, [this] {
        stopEditing();
        follow();
    });
    follow();
}

void AddressBar::follow() {
    const auto& folder = pane_->currentURL();
    if (folder && !pane_->showsSearch()) {
        const auto starts = AddressCrumbs::startsOf(*services_, home_);
        crumbs_->setCrumbs(AddressCrumbs::of(*folder, starts));
    } else {
        crumbs_->setOnly(LocationLook::nameOf(pane_->location(), *pane_));
    }
    update();
}

// ---- Typing

QString AddressBar::wholeAddress() const {
    const auto& folder = pane_->currentURL();
    return folder ? QString::fromStdString(FileName::displayText(folder->path())) : QString();
}

bool AddressBar::isEditing() const {
    return !field_->isHidden();
}

void AddressBar::edit() {
    crumbs_->hide();
    field_->show();
    field_->begin(wholeAddress());
    field_->setFocus(Qt::ShortcutFocusReason);
    update();
}

void AddressBar::stopEditing() {
    if (!isEditing()) return;
    // Hidden with the keyboard, the field would hand it to whoever comes next.
    field_->end();
    field_->clear();
    clearError();
    crumbs_->show();
    field_->hide();
    update();
}

void AddressBar::enter() {
    const QString typed = field_->text();
    // Bytes that are no text are not what stands there.
    if (typed == wholeAddress() && pane_->currentURL()) {
        pane_->navigate(FileURL(*pane_->currentURL()));
    } else {
        if (const auto refusal = pane_->navigateToTypedPath(typed.toStdString()))
            return refuse(QString::fromStdString(*refusal));
        if (!typed.trimmed().isEmpty() && pane_->currentURL())
            services_->recentAddresses().add(*pane_->currentURL());
    }
    stopEditing();
    Q_EMIT finished();
}

void AddressBar::refuse(const QString& message) {
    error_->show(message);
    field_->setFocus(Qt::OtherFocusReason);
    update();
}

void AddressBar::clearError() {
    if (error_->isHidden()) return;
    error_->hide();
    update();
}

bool AddressBar::eventFilter(QObject* watched, QEvent* event) {
    if (watched == field_ && event->type() == QEvent::FocusIn) pane_->setTextEditing(true);
    if (watched == field_ && event->type() == QEvent::FocusOut) {
        pane_->setTextEditing(false);
        const auto reason = static_cast<QFocusEvent*>(event)->reason();
        // A menu of the field, or another window for a moment, is no leaving.
        if (reason != Qt::PopupFocusReason && reason != Qt::ActiveWindowFocusReason)
            QMetaObject::invokeMethod(
                this,
                [this] {
                    if (!field_->hasFocus()) stopEditing();
                },
                Qt::QueuedConnection);
    }
    return FieldFrame::eventFilter(watched, event);
}

// ---- Lists and menus

void AddressBar::showChildren(std::size_t crumb, const QRect& below) {
    const auto& crumbs = crumbs_->crumbs();
    const auto next = crumb + 1 < crumbs.size() ? std::optional(crumbs[crumb + 1].folder) : std::nullopt;
    delete children_;
    children_ = new FolderList(*theme_, crumbs[crumb].folder, next, pane_->filter(), this);
    connect(children_, &FolderList::folderChosen, this,
            [this](const FileURL& folder) { pane_->navigate(folder); });
    children_->popUp(below);
}

void AddressBar::showCrumbMenu(std::size_t crumb, QPoint at) {
    const FileURL folder = crumbs_->crumbs()[crumb].folder;
    auto* const menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    connect(menu->addAction(localized("ui.command.openInNewTab")), &QAction::triggered, this,
            [this, folder] { tabs_->addTab(folder, BrowserTabsModel::Activation::activate); });
    connect(menu->addAction(localized("ui.command.openInNewWindow")), &QAction::triggered, this,
            [this, folder] { Q_EMIT openInNewWindowRequested(folder); });
    menu->addSeparator();
    connect(menu->addAction(localized("ui.command.copyPath")), &QAction::triggered, this,
            [this, folder] { services_->clipboard().copyPaths({folder}); });
    connect(menu->addAction(localized("ui.address.edit")), &QAction::triggered, this, &AddressBar::edit);
    menu->popup(at);
}

void AddressBar::showRecent() {
    auto* const menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const auto& places = services_->recentAddresses().places();
    for (const FileURL& place : places)
        connect(menu->addAction(menuText(place.path())), &QAction::triggered, this,
                [this, place] { pane_->navigate(place); });
    if (places.empty()) menu->addAction(localized("ui.address.noRecent"))->setEnabled(false);
    menu->setMinimumWidth(width());
    menu->popup(mapToGlobal(QPoint(0, height())));
}

// ---- How it looks

QSize AddressBar::sizeHint() const {
    return {theme_->size(ThemeSize::addressMinimumWidth), theme_->size(ThemeSize::field)};
}

void AddressBar::arrange() {
    const int space = theme_->size(ThemeSize::space8), icon = theme_->size(ThemeSize::smallIcon);
    const int button = theme_->size(ThemeSize::smallButton);
    const int left = space + theme_->size(ThemeSize::space2) + icon + space;
    const int right = width() - theme_->size(ThemeSize::space4) - button;
    const int inset = theme_->size(ThemeSize::focusRing);
    crumbs_->setGeometry(mirrored(QRect(left, inset, right - left, height() - 2 * inset)));
    field_->setGeometry(mirrored(QRect(left, inset, right - left, height() - 2 * inset)));
    recent_->setGeometry(mirrored(QRect(right, (height() - button) / 2, button, button)));
    error_->place();
    update();
}

void AddressBar::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return event->ignore();
    edit();
}

void AddressBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const auto outline = !error_->isHidden() ? ThemeColor::danger
                         : isEditing()       ? ThemeColor::accent
                                             : ThemeColor::border;
    paintFrame(painter, outline, isEditing());
    const int icon = theme_->size(ThemeSize::smallIcon);
    const QRect box(theme_->size(ThemeSize::space8) + theme_->size(ThemeSize::space2), (height() - icon) / 2,
                    icon, icon);
    LocationLook::drawIcon(painter, *theme_, *pane_, mirrored(box), ThemeColor::text);
}

} // namespace ombrel
