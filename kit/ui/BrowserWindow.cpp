#include "ui/BrowserWindow.h"

#include "ui/DetailsView.h"
#include "ui/FocusRing.h"
#include "ui/LocalizedText.h"
#include "ui/NavigationRow.h"
#include "ui/Overlay.h"
#include "ui/StatusBar.h"
#include "ui/Theme.h"

#include <QAction>
#include <QMouseEvent>
#include <QVBoxLayout>

#include <utility>

namespace ombrel {
namespace {

/// A tooltip with its shortcut in words.
QString withShortcut(const QString& text, const QKeySequence& keys) {
    if (keys.isEmpty()) return text;
    return localized("ui.tooltip.withShortcut",
                     {text.toStdString(), keys.toString(QKeySequence::NativeText).toStdString()});
}

} // namespace

BrowserWindow::BrowserWindow(Setting setting)
    : theme_(&setting.theme), model_(std::move(setting.listings)),
      back_(addCommand("ui.command.back",
                       {QKeySequence(Qt::ALT | Qt::Key_Left), QKeySequence(Qt::Key_Backspace)},
                       &BrowserModel::goBack)),
      forward_(addCommand("ui.command.forward", {QKeySequence(Qt::ALT | Qt::Key_Right)},
                          &BrowserModel::goForward)),
      up_(addCommand("ui.command.up", {QKeySequence(Qt::ALT | Qt::Key_Up)}, &BrowserModel::goUp)),
      refresh_(addCommand("ui.command.refresh", {QKeySequence(Qt::Key_F5)}, &BrowserModel::refresh)),
      view_(new DetailsView(model_, *theme_)), overlay_(new Overlay(model_, *theme_, view_->viewport())),
      statusBar_(new StatusBar(model_, *view_, *theme_)) {
    setAttribute(Qt::WA_DeleteOnClose);
    setMinimumSize(theme_->size(ThemeSize::windowMinimumWidth), theme_->size(ThemeSize::windowMinimumHeight));
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins({});
    column->setSpacing(0);
    column->addWidget(new NavigationRow(model_, *theme_, setting.home, {back_, forward_, up_, refresh_}));
    column->addWidget(view_, 1);
    column->addWidget(statusBar_);
    new FocusRing(this);
    view_->setFocus(Qt::OtherFocusReason);

    connect(view_, &FileView::openRequested, this, &BrowserWindow::open);
    connect(&model_, &BrowserModel::locationChanged, this, &BrowserWindow::refreshTitle);
    connect(&model_, &BrowserModel::historyChanged, this, &BrowserWindow::refreshCommands);
    refreshTitle();
    refreshCommands();
}

BrowserWindow::~BrowserWindow() {
    // The widgets look at the model to their end.
    qDeleteAll(findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly));
}

QSize BrowserWindow::firstSize(const Theme& theme, const QSize& screen) {
    constexpr double largestShare = 0.85;
    return QSize(theme.size(ThemeSize::windowWidth), theme.size(ThemeSize::windowHeight))
        .boundedTo((QSizeF(screen) * largestShare).toSize());
}

QAction* BrowserWindow::addCommand(std::string_view textKey, const QList<QKeySequence>& keys,
                                   void (BrowserModel::*command)()) {
    auto* const action = new QAction(localized(textKey), this);
    action->setShortcuts(keys);
    connect(action, &QAction::triggered, &model_, command);
    addAction(action);
    return action;
}

void BrowserWindow::refreshCommands() {
    back_->setEnabled(model_.canGoBack());
    forward_->setEnabled(model_.canGoForward());
    up_->setEnabled(model_.canGoUp());
    refresh_->setEnabled(model_.currentURL().has_value());
    back_->setToolTip(back_->text());
    forward_->setToolTip(forward_->text());
    refresh_->setToolTip(withShortcut(refresh_->text(), refresh_->shortcut()));
    QString upText = up_->text();
    if (model_.canGoUp()) {
        const FileURL parent = model_.currentURL()->parent();
        upText = localized("ui.tooltip.upTo", {isolated(parent.isRoot() ? parent.path() : parent.name())});
    }
    up_->setToolTip(withShortcut(upText, up_->shortcut()));
}

void BrowserWindow::refreshTitle() {
    setWindowTitle(model_.title());
}

void BrowserWindow::open(std::size_t row) {
    const FileItemView item = model_.items()[row];
    // Packages are folders like any other here.
    if (item.isDirectoryLike() || item.isPackage()) model_.navigate(item.url());
}

void BrowserWindow::mousePressEvent(QMouseEvent* event) {
    switch (event->button()) {
    case Qt::BackButton: return model_.goBack();
    case Qt::ForwardButton: return model_.goForward();
    default: QWidget::mousePressEvent(event);
    }
}

} // namespace ombrel
