#include "ui/AboutDialog.h"

#include "ui/Emblem.h"
#include "ui/FocusRing.h"
#include "ui/LocalizedText.h"
#include "ui/TextLabel.h"
#include "ui/Theme.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

namespace ombrel {

AboutDialog::AboutDialog(const Theme& theme, QWidget* parent) : QDialog(parent) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowModality(Qt::WindowModal);
    setWindowTitle(localized("ui.about.title"));
    setMinimumWidth(theme.size(ThemeSize::dialogWidth));
    new FocusRing(this);
    auto* const column = new QVBoxLayout(this);
    const int side = theme.size(ThemeSize::space20);
    column->setContentsMargins(side, side, side, theme.size(ThemeSize::space16));
    column->setSpacing(theme.size(ThemeSize::space12));
    auto* const row = new QHBoxLayout;
    row->setSpacing(theme.size(ThemeSize::space16));
    row->addWidget(new Emblem(theme, ThemeSize::choiceCard, this), 0, Qt::AlignTop);
    auto* const words = new QVBoxLayout;
    words->setSpacing(theme.size(ThemeSize::space2));
    const auto add = [&](const QString& text, ThemeFont font, ThemeColor color) {
        auto* const label = new TextLabel(theme, font, color, this);
        label->setText(text);
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
        words->addWidget(label);
    };
    add(QStringLiteral("Ombrel"), ThemeFont::title, ThemeColor::text);
    add(localized("ui.about.version", {QCoreApplication::applicationVersion().toStdString()}),
        ThemeFont::body, ThemeColor::text);
    add(localized("ui.onboarding.welcome"), ThemeFont::body, ThemeColor::textSecondary);
    row->addLayout(words, 1);
    column->addLayout(row);
    column->addStretch();
    auto* const close = new QPushButton(localized("ui.report.close"), this);
    column->addWidget(close, 0, Qt::AlignTrailing);
    close->setDefault(true);
    close->setFocus(Qt::OtherFocusReason);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
}

} // namespace ombrel
