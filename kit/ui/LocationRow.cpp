#include "ui/LocationRow.h"

#include "base/FileName.h"
#include "ui/FileIconDrawing.h"
#include "ui/LocalizedText.h"
#include "ui/OmbrelStyle.h"
#include "ui/TextLabel.h"
#include "ui/Theme.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

#include <utility>

namespace ombrel {

PillKind LocationRow::pillOf(const AccessGrant& grant) {
    switch (grant.state().which) {
    case AccessGrant::State::Case::active: return PillKind::available;
    case AccessGrant::State::Case::needsReauthorization: return PillKind::needsPermission;
    case AccessGrant::State::Case::unavailable: return PillKind::notAvailable;
    }
    std::unreachable();
}

LocationRow::LocationRow(const Theme& theme, const AccessManager::Grant& grant, const QString& added,
                         QWidget* parent)
    : QWidget(parent), theme_(&theme) {
    auto* const row = new QHBoxLayout(this);
    const int side = theme.size(ThemeSize::space16), above = theme.size(ThemeSize::space12);
    const int picture = theme.size(ThemeSize::overlayBadge);
    row->setContentsMargins(side, above, side, above);
    row->setSpacing(theme.size(ThemeSize::space8));
    row->addSpacing(picture);
    auto* const words = new QVBoxLayout;
    words->setSpacing(0);
    auto* const first = new QHBoxLayout;
    first->setSpacing(theme.size(ThemeSize::space8));
    auto* const name = new TextLabel(theme, ThemeFont::bodyStrong, ThemeColor::text, this);
    name->setText(QString::fromStdString(grant->displayName()));
    first->addWidget(name);
    first->addWidget(new Pill(theme, pillOf(*grant), this));
    first->addStretch();
    words->addLayout(first);
    if (grant->url()) {
        auto* const path = new ElidedLabel(theme, Qt::ElideMiddle, ThemeColor::textSecondary, this);
        path->setFontToken(ThemeFont::caption);
        path->setText(QString::fromStdString(FileName::displayText(grant->url()->path())));
        words->addWidget(path);
    }
    const bool needsPermission = grant->state().which == AccessGrant::State::Case::needsReauthorization;
    const QString reason = QString::fromStdString(grant->state().message());
    auto* const last = new TextLabel(theme, ThemeFont::caption,
                                     needsPermission ? ThemeColor::warning : ThemeColor::textSecondary, this);
    last->setWordWrap(true);
    last->setText(reason.isEmpty() ? added : reason);
    words->addWidget(last);
    row->addLayout(words, 1);
    const auto add = [&](const QString& label, auto signal) {
        auto* const button = new QPushButton(label, this);
        button->setAutoDefault(true);
        button->setProperty(OmbrelStyle::smallProperty, true);
        button->setAccessibleDescription(QString::fromStdString(grant->displayName()));
        connect(button, &QPushButton::clicked, this, signal);
        row->addWidget(button, 0, Qt::AlignVCenter);
        return button;
    };
    if (needsPermission)
        add(localized("settings.locations.reauthorize"), &LocationRow::allowRequested)->setDefault(true);
    add(localized("settings.locations.remove"), &LocationRow::removeRequested);
    setAccessibleName(name->text() + QStringLiteral(", ") + Pill::textOf(pillOf(*grant)));
}

void LocationRow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const int side = theme_->size(ThemeSize::space16) + theme_->size(ThemeSize::space12);
    const int left = theme_->size(ThemeSize::space16);
    const QRect box(layoutDirection() == Qt::RightToLeft ? width() - left - side : left,
                    (height() - side) / 2, side, side);
    FileIconDrawing::draw(painter, *theme_, FileClass::folder, box);
}

} // namespace ombrel
