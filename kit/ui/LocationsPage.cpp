#include "ui/LocationsPage.h"

#include "ui/ConfirmationDialog.h"
#include "ui/GlyphIcon.h"
#include "ui/LocalizedText.h"
#include "ui/LocationRow.h"
#include "ui/TextLabel.h"
#include "ui/WindowPrompter.h"

#include <QDateTime>
#include <QHBoxLayout>
#include <QLocale>
#include <QPainter>
#include <QPushButton>
#include <QRegularExpression>
#include <QVBoxLayout>

#include <chrono>

namespace ombrel {
namespace {

/// A card with lines between what stands in it.
class Card final : public QWidget {
public:
    Card(const Theme& theme, QWidget* parent) : QWidget(parent), theme_(&theme) {
        auto* const column = new QVBoxLayout(this);
        column->setContentsMargins({});
        column->setSpacing(theme.size(ThemeSize::hairline));
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const int hairline = theme_->size(ThemeSize::hairline);
        painter.setPen(QPen(theme_->color(ThemeColor::border), hairline));
        painter.setBrush(theme_->color(ThemeColor::surface));
        constexpr double half = 0.5;
        const int radius = theme_->size(ThemeSize::radiusField);
        painter.drawRoundedRect(QRectF(rect()).adjusted(half, half, -half, -half), radius, radius);
        for (int i = 1; i < layout()->count(); ++i)
            painter.fillRect(QRect(0, layout()->itemAt(i)->geometry().top() - hairline, width(), hairline),
                             theme_->color(ThemeColor::border));
    }

private:
    const Theme* theme_;
};

QString addedText(const BookmarkRecord& record) {
    const auto seconds =
        std::chrono::duration_cast<std::chrono::seconds>(record.addedAt.time_since_epoch()).count();
    const QLocale locale;
    const QDate date = QDateTime::fromSecsSinceEpoch(seconds).date();
    QString format = locale.language() == QLocale::C ? QStringLiteral("d MMMM yyyy")
                                                     : locale.dateFormat(QLocale::LongFormat);
    // Which day of the week it was is of no interest.
    static const QRegularExpression weekday(QStringLiteral("dddd[,、]?\\s*|[,،]?\\s*dddd"));
    format.remove(weekday);
    const QString words = locale.toString(date, format);
    return localized("ui.settings.locations.added", {words.toStdString()});
}

} // namespace

LocationsPage::LocationsPage(const Theme& theme, AccessManager& access, QWidget* parent)
    : SettingsPage(theme, localized("ui.settings.locations"), parent), access_(&access),
      list_(new Card(theme, content())),
      empty_(new TextLabel(theme, ThemeFont::body, ThemeColor::textSecondary, content())),
      problem_(new TextLabel(theme, ThemeFont::body, ThemeColor::danger, content())) {
    addCaption(localized("ui.settings.locations.caption"));
    column().addSpacing(theme.size(ThemeSize::space8));
    column().addWidget(empty_);
    column().addWidget(list_);
    empty_->setText(localized("ui.settings.locations.none"));
    empty_->setWordWrap(true);
    auto* const row = new QHBoxLayout;
    row->setSpacing(theme.size(ThemeSize::space12));
    auto* const add = new QPushButton(localized("ui.settings.locations.addFolder"), content());
    add->setIcon(glyphIcon(theme, Glyph::plus));
    auto* const hint = new TextLabel(theme, ThemeFont::caption, ThemeColor::textSecondary, content());
    hint->setText(localized("ui.settings.locations.comesBack"));
    hint->setWordWrap(true);
    row->addWidget(add);
    row->addWidget(hint, 1);
    column().addSpacing(theme.size(ThemeSize::space8));
    column().addLayout(row);
    column().addWidget(problem_);
    problem_->setWordWrap(true);
    connect(add, &QPushButton::clicked, this,
            [this] { access_->requestAccess(std::nullopt, "access.panel.message", nullptr, {}); });
    connect(&access, &AccessManager::grantsChanged, this, &LocationsPage::refresh);
    connect(&access, &AccessManager::lastStoreErrorChanged, this, &LocationsPage::refresh);
    refresh();
}

void LocationsPage::refresh() {
    // A row may be the one whose click is being handled.
    const auto old = list_->findChildren<LocationRow*>(QString(), Qt::FindDirectChildrenOnly);
    for (LocationRow* row : old) {
        list_->layout()->removeWidget(row);
        row->hide();
        row->deleteLater();
    }
    const auto& grants = access_->grants();
    for (std::size_t i = 0; i < grants.size(); ++i) {
        const AccessManager::Grant& grant = grants[i];
        auto* const row = new LocationRow(theme(), grant, addedText(access_->records()[i]), list_);
        list_->layout()->addWidget(row);
        connect(row, &LocationRow::allowRequested, this, [this, grant] {
            access_->requestAccess(grant->url(), "access.panel.reauthorize", grant, {});
        });
        connect(row, &LocationRow::removeRequested, this, [this, grant] { confirmRemoving(grant); });
        row->show();
    }
    list_->setVisible(!grants.empty());
    empty_->setVisible(grants.empty());
    list_->update();
    const auto& error = access_->lastStoreError();
    problem_->setVisible(error.has_value());
    if (error) problem_->setText(localized(*error));
}

void LocationsPage::confirmRemoving(const AccessManager::Grant& grant) {
    BrowserQuestion question{.kind = BrowserQuestion::Kind::removeLocation, .items = {}, .count = 1};
    auto content = WindowPrompter::contentOf(question);
    content.title = localized("confirm.removeLocation.title", {isolated(grant->displayName())});
    const auto done = [this, grant](const BrowserAnswer& answer) {
        if (answer.choice == BrowserAnswer::Choice::accept) access_->remove(grant);
    };
    (new ConfirmationDialog(theme(), content, done, window()))->open();
}

} // namespace ombrel
