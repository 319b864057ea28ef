#include "ui/BrowserWindow.h"

#include "services/AppSettings.h"
#include "ui/DetailsView.h"
#include "ui/FocusRing.h"
#include "ui/KeyStrokes.h"
#include "ui/LocalizedText.h"
#include "ui/NavigationRow.h"
#include "ui/Overlay.h"
#include "ui/StatusBar.h"
#include "ui/Theme.h"
#include "ui/WindowKeys.h"

#include <QAction>
#include <QMouseEvent>
#include <QVBoxLayout>

#include <utility>

namespace ombrel {
BrowserWindow::BrowserWindow(Setting setting)
    : theme_(&setting.theme), settings_(&setting.settings), model_(std::move(setting.listings)),
      keys_(commands_, {.preset = [this] { return settings_->keyPreset(); },
                        .activePane = [this]() -> BrowserModel& { return model_; },
                        .performTabCommand = {}}),
      back_(makeAction(FileCommand::goBack)), forward_(makeAction(FileCommand::goForward)),
      up_(makeAction(FileCommand::goUp)), refresh_(makeAction(FileCommand::refresh)),
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
    new WindowKeys(*this, keys_);
    view_->setKeys(keys_);
    view_->setFocus(Qt::OtherFocusReason);

    connect(view_, &FileView::openRequested, this, &BrowserWindow::open);
    connect(&model_, &BrowserModel::locationChanged, this, &BrowserWindow::refreshTitle);
    connect(&model_, &BrowserModel::historyChanged, this, &BrowserWindow::refreshCommands);
    connect(settings_, &AppSettings::changed, this, &BrowserWindow::refreshCommands);
    bindCommands();
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

QAction* BrowserWindow::makeAction(FileCommand command) {
    // Keys come to commands by another way: actions have no shortcuts of their own.
    auto* const action = new QAction(localized(FileCommands::textKey(command)), this);
    connect(action, &QAction::triggered, this, [this, command] { commands_.perform(command, model_); });
    return action;
}

void BrowserWindow::bindCommands() {
    commands_.bind(FileCommand::open,
                   {.perform = [this](BrowserModel& pane) { open(*pane.selection().firstRow()); },
                    .isEnabled = [](const BrowserModel& pane) { return pane.selection().count() == 1; }});
    commands_.bind(FileCommand::closeTab, {.perform = [this](BrowserModel&) { close(); }});
}

void BrowserWindow::refreshCommands() {
    back_->setEnabled(commands_.canPerform(FileCommand::goBack, model_));
    forward_->setEnabled(commands_.canPerform(FileCommand::goForward, model_));
    up_->setEnabled(commands_.canPerform(FileCommand::goUp, model_));
    refresh_->setEnabled(commands_.canPerform(FileCommand::refresh, model_));
    back_->setToolTip(withShortcut(back_->text(), FileCommand::goBack));
    forward_->setToolTip(withShortcut(forward_->text(), FileCommand::goForward));
    refresh_->setToolTip(withShortcut(refresh_->text(), FileCommand::refresh));
    QString upText = up_->text();
    if (model_.canGoUp()) {
        const FileURL parent = model_.currentURL()->parent();
        upText = localized("ui.tooltip.upTo", {isolated(parent.isRoot() ? parent.path() : parent.name())});
    }
    up_->setToolTip(withShortcut(upText, FileCommand::goUp));
}

QString BrowserWindow::withShortcut(const QString& text, FileCommand command) const {
    const QString keys = KeyStrokes::shown(command, settings_->keyPreset());
    if (keys.isEmpty()) return text;
    return localized("ui.tooltip.withShortcut", {text.toStdString(), keys.toStdString()});
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
