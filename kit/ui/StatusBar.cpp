#include "ui/StatusBar.h"

#include "base/IsolatedName.h"
#include "browser/BrowserModel.h"
#include "browser/HomeModel.h"
#include "browser/SelectionSize.h"
#include "ui/FileView.h"
#include "ui/Formats.h"
#include "ui/GlyphButton.h"
#include "ui/LocalizedText.h"
#include "ui/TextLabel.h"
#include "ui/Theme.h"

#include <QAction>
#include <QEvent>
#include <QHBoxLayout>
#include <QPainter>

#include <algorithm>
#include <numeric>
#include <utility>

namespace ombrel {
namespace {

constexpr std::size_t mostParts = 5;
/// Of what could not be read, that many are told of by name.
constexpr std::size_t mostReasons = 5;

std::int64_t count(std::size_t items) {
    return static_cast<std::int64_t>(items);
}

/// What of the listing could not be read, and why; a line each.
QString reasonsIn(const FileItemList& items) {
    QStringList lines;
    for (const auto& block : *items.blocks())
        for (std::uint32_t slot = 0; slot < block->records.size(); ++slot) {
            const FileItemView item(*block, slot);
            const auto failure = item.readError();
            if (!failure) continue;
            if (lines.size() == mostReasons) return (lines << QStringLiteral("…")).join(QLatin1Char('\n'));
            lines << QString::fromStdString(isolated(item.name()) + " – " + failure->systemText());
        }
    return lines.join(QLatin1Char('\n'));
}

} // namespace

StatusBar::StatusBar(const Theme& theme, QWidget* parent) : QWidget(parent), theme_(&theme) {
    auto* const row = new QHBoxLayout(this);
    for (std::size_t i = 0; i < mostParts; ++i) {
        auto* const label = new ElidedLabel(theme, Qt::ElideRight, ThemeColor::textSecondary, this);
        label->setFontToken(ThemeFont::caption);
        label->installEventFilter(this);
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

QStringList StatusBar::textsOf(const std::vector<Part>& parts) {
    QStringList texts;
    for (const Part& part : parts)
        texts << part.text;
    return texts;
}

std::vector<StatusBar::Part> StatusBar::allParts() const {
    if (!model_) return {};
    if (!dropEffect_.isEmpty()) return {{dropEffect_, Worth::answer}};
    if (model_->isHome()) return home_ ? std::vector<Part>{{homeText(), Worth::count}} : std::vector<Part>();
    std::vector<Part> parts;
    switch (model_->listingState().which()) {
    case ListingState::Case::loading: {
        const auto key = model_->showsSearch() ? "ui.status.searching" : "ui.status.loading";
        parts.push_back({localized(key, count(model_->items().size())), Worth::count});
        break;
    }
    case ListingState::Case::loaded:
        if (model_->currentURL())
            parts.push_back({localized("ui.status.items", count(model_->items().size())), Worth::count});
        break;
    case ListingState::Case::failed:
    case ListingState::Case::invalidated: return {{localized("ui.status.failed"), Worth::answer}};
    case ListingState::Case::noLocation: return {};
    }
    if (const std::size_t selected = model_->selection().count(); selected > 0) {
        const auto bytes = selectionSize_->bytes();
        parts.push_back({bytes ? localized("ui.status.selectedWithSize", count(selected),
                                           {Formats::size(*bytes).toStdString()})
                               : localized("ui.status.selected", count(selected)),
                         Worth::selection});
    }
    if (model_->hasReachedSearchLimit()) parts.push_back({localized("ui.status.searchLimit"), Worth::limit});
    if (model_->unreadableCount() > 0)
        parts.push_back({localized("ui.status.unreadable", model_->unreadableCount()), Worth::unreadable});
    const QString& typed = view_->typeAhead().text();
    if (!typed.isEmpty())
        parts.push_back({localized("ui.status.jumpTo", {typed.toStdString()}), Worth::answer});
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
    parts_ = allParts();
    for (std::size_t i = 0; i < labels_.size(); ++i)
        labels_[i]->setText(i < parts_.size() ? parts_[i].text : QString());
    arrange();
    update();
}

int StatusBar::room() const {
    const QMargins margins = layout()->contentsMargins();
    int room = width() - margins.left() - margins.right();
    for (int i = static_cast<int>(labels_.size()); i < layout()->count(); ++i)
        if (QLayoutItem* const item = layout()->itemAt(i); !item->isEmpty())
            room -= layout()->spacing() + item->sizeHint().width();
    return room;
}

void StatusBar::arrange() {
    std::vector<std::size_t> shown(parts_.size());
    std::iota(shown.begin(), shown.end(), std::size_t{0});
    const auto needed = [&] {
        int width = -layout()->spacing();
        for (const std::size_t i : shown)
            width += layout()->spacing() + labels_[i]->sizeHint().width();
        return width;
    };
    for (const int room = this->room(); shown.size() > 1 && needed() > room;)
        shown.erase(std::ranges::min_element(shown, {}, [&](std::size_t i) { return parts_[i].worth; }));
    // Which of them were left out is not to be seen.
    toolTip_ = shown.size() == parts_.size() ? QString() : textsOf(parts_).join(QLatin1Char('\n'));
    for (std::size_t i = 0; i < labels_.size(); ++i) {
        labels_[i]->setVisible(std::ranges::find(shown, i) != shown.end());
        labels_[i]->setToolTip(toolTip_.isEmpty() ? labels_[i]->text() : toolTip_);
    }
}

bool StatusBar::event(QEvent* event) {
    // The chip has come, has gone or says something else.
    if (event->type() == QEvent::LayoutRequest) arrange();
    return QWidget::event(event);
}

bool StatusBar::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ToolTip && model_)
        for (std::size_t i = 0; i < parts_.size(); ++i)
            if (labels_[i] == watched && parts_[i].worth == Worth::unreadable)
                labels_[i]->setToolTip(toolTip_.isEmpty()
                                           ? reasonsIn(model_->allItems())
                                           : toolTip_ + QLatin1Char('\n') + reasonsIn(model_->allItems()));
    return QWidget::eventFilter(watched, event);
}

void StatusBar::resizeEvent(QResizeEvent* event) {
    arrange();
    QWidget::resizeEvent(event);
}

void StatusBar::takeSizes() {
    const int side = theme_->size(ThemeSize::space12) + theme_->size(ThemeSize::space2);
    layout()->setContentsMargins(side, theme_->size(ThemeSize::hairline), side, 0);
    // A separator stands in the middle of the space between two parts.
    layout()->setSpacing(theme_->size(ThemeSize::space28));
    setFixedHeight(theme_->size(ThemeSize::statusBar));
    switches_->setSpacing(theme_->size(ThemeSize::space2));
    refresh();
}

void StatusBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const int hairline = theme_->size(ThemeSize::hairline);
    const QColor line = theme_->color(ThemeColor::border);
    painter.fillRect(rect(), theme_->color(ThemeColor::chromeRaised));
    painter.fillRect(QRect(0, 0, width(), hairline), line);
    const int half = layout()->spacing() / 2, tall = theme_->size(ThemeSize::space12);
    bool isFirst = true;
    for (const ElidedLabel* shown : labels_) {
        if (shown->isHidden() || std::exchange(isFirst, false)) continue;
        const QRect label = shown->geometry();
        const int x = layoutDirection() == Qt::RightToLeft ? label.right() + half : label.left() - half;
        painter.fillRect(QRect(x, (height() - tall) / 2, hairline, tall), line);
    }
}

} // namespace ombrel
