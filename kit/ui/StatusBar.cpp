#include "ui/StatusBar.h"

#include "browser/BrowserModel.h"
#include "browser/HomeModel.h"
#include "browser/SelectionSize.h"
#include "ui/FileView.h"
#include "ui/Formats.h"
#include "ui/GlyphButton.h"
#include "ui/LocalizedText.h"
#include "ui/Theme.h"

#include <QAction>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>

namespace ombrel {
namespace {

constexpr std::size_t mostParts = 5;

std::int64_t count(std::size_t items) {
    return static_cast<std::int64_t>(items);
}

} // namespace

StatusBar::StatusBar(const Theme& theme, QWidget* parent) : QWidget(parent), theme_(&theme) {
    auto* const row = new QHBoxLayout(this);
    for (std::size_t i = 0; i < mostParts; ++i) {
        auto* const label = new QLabel(this);
        label->setTextFormat(Qt::PlainText);
        label->setMinimumWidth(1);
        row->addWidget(label);
        labels_.push_back(label);
    }
    row->addStretch();
    switches_ = new QHBoxLayout;
    row->addLayout(switches_);
    connect(&theme, &Theme::changed, this, &StatusBar::takeSizes);
    takeSizes();
}

StatusBar::~StatusBar() = default;

void StatusBar::follow(BrowserModel& model, const FileView& view) {
    if (model_) model_->disconnect(this);
    if (view_) view_->typeAhead().disconnect(this);
    model_ = &model;
    view_ = &view;
    selectionSize_ = std::make_unique<SelectionSize>(model);
    connect(&model, &BrowserModel::itemsChanged, this, &StatusBar::refresh);
    connect(&model, &BrowserModel::listingStateChanged, this, &StatusBar::refresh);
    connect(selectionSize_.get(), &SelectionSize::changed, this, &StatusBar::refresh);
    connect(&view.typeAhead(), &TypeAhead::textChanged, this, &StatusBar::refresh);
    refresh();
}

void StatusBar::setHome(const HomeModel& home) {
    home_ = &home;
    connect(&home, &HomeModel::changed, this, &StatusBar::refresh);
    refresh();
}

void StatusBar::setDropEffect(const QString& text) {
    if (text == dropEffect_) return;
    dropEffect_ = text;
    refresh();
}

void StatusBar::addSwitches(QAction* details, QAction* largeIcons) {
    const auto add = [this](Glyph glyph, QAction* action) {
        auto* const button = new GlyphButton(*theme_, glyph, ThemeSize::statusButton, this);
        button->setCheckable(true);
        button->follow(action);
        const auto take = [button, action] { button->setChecked(action->isChecked()); };
        connect(action, &QAction::changed, button, take);
        // A click on the one that is on leaves it on.
        connect(button, &QAbstractButton::clicked, button, take);
        take();
        switches_->addWidget(button);
    };
    add(Glyph::list, details);
    add(Glyph::grid, largeIcons);
}

void StatusBar::take(QWidget* chip) {
    static_cast<QHBoxLayout*>(layout())->insertWidget(static_cast<int>(labels_.size()) + 1, chip);
}

QStringList StatusBar::parts() const {
    QStringList parts;
    if (!model_) return parts;
    if (!dropEffect_.isEmpty()) return {dropEffect_};
    if (model_->isHome()) return home_ ? QStringList(homeText()) : QStringList();
    switch (model_->listingState().which()) {
    case ListingState::Case::loading:
        if (model_->showsSearch()) {
            parts << localized("ui.status.searching", count(model_->items().size()));
            break;
        }
        parts << localized("ui.status.loading", count(model_->items().size()));
        break;
    case ListingState::Case::loaded:
        if (model_->currentURL()) parts << localized("ui.status.items", count(model_->items().size()));
        break;
    case ListingState::Case::failed:
    case ListingState::Case::invalidated: return {localized("ui.status.failed")};
    case ListingState::Case::noLocation: return {};
    }
    if (const std::size_t selected = model_->selection().count(); selected > 0) {
        const auto bytes = selectionSize_->bytes();
        parts << (bytes ? localized("ui.status.selectedWithSize", count(selected),
                                    {Formats::size(*bytes).toStdString()})
                        : localized("ui.status.selected", count(selected)));
    }
    if (model_->hasReachedSearchLimit()) parts << localized("ui.status.searchLimit");
    if (model_->unreadableCount() > 0) parts << localized("ui.status.unreadable", model_->unreadableCount());
    const QString& typed = view_->typeAhead().text();
    if (!typed.isEmpty()) parts << localized("ui.status.jumpTo", {typed.toStdString()});
    return parts;
}

QString StatusBar::homeText() const {
    const auto words = [](std::string_view key, std::size_t items) {
        return localized(key, count(items)).toStdString();
    };
    return localized("ui.status.home", {words("ui.status.quickAccess", home_->pins().size()),
                                        words("ui.status.locations", home_->locations().size()),
                                        words("ui.status.volumes", home_->volumes().size())});
}

void StatusBar::refresh() {
    for (int i = 0; i < switches_->count(); ++i)
        switches_->itemAt(i)->widget()->setVisible(model_ && !model_->isHome());
    const QStringList shown = parts();
    for (std::size_t i = 0; i < labels_.size(); ++i) {
        const auto index = static_cast<qsizetype>(i);
        labels_[i]->setText(index < shown.size() ? shown[index] : QString());
        labels_[i]->setVisible(index < shown.size());
    }
    update();
}

void StatusBar::takeSizes() {
    const int side = theme_->size(ThemeSize::space12) + theme_->size(ThemeSize::space2);
    layout()->setContentsMargins(side, theme_->size(ThemeSize::hairline), side, 0);
    // A separator stands in the middle of the space between two parts.
    layout()->setSpacing(theme_->size(ThemeSize::space28));
    setFixedHeight(theme_->size(ThemeSize::statusBar));
    switches_->setSpacing(theme_->size(ThemeSize::space2));
    QPalette colors = palette();
    colors.setColor(QPalette::WindowText, theme_->color(ThemeColor::textSecondary));
    for (QLabel* label : labels_) {
        label->setFont(theme_->font(ThemeFont::caption));
        label->setPalette(colors);
    }
    refresh();
}

void StatusBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const int hairline = theme_->size(ThemeSize::hairline);
    const QColor line = theme_->color(ThemeColor::border);
    painter.fillRect(rect(), theme_->color(ThemeColor::chromeRaised));
    painter.fillRect(QRect(0, 0, width(), hairline), line);
    const int half = layout()->spacing() / 2, tall = theme_->size(ThemeSize::space12);
    for (std::size_t i = 1; i < labels_.size(); ++i) {
        if (labels_[i]->isHidden()) continue;
        const QRect label = labels_[i]->geometry();
        const int x = layoutDirection() == Qt::RightToLeft ? label.right() + half : label.left() - half;
        painter.fillRect(QRect(x, (height() - tall) / 2, hairline, tall), line);
    }
}

} // namespace ombrel
