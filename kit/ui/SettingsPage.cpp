#include "ui/SettingsPage.h"

#include "ui/TextLabel.h"

#include <QScrollArea>
#include <QVBoxLayout>

namespace ombrel {

SettingsPage::SettingsPage(const Theme& theme, const QString& title, QWidget* parent)
    : QWidget(parent), theme_(&theme), content_(new QWidget), column_(new QVBoxLayout(content_)) {
    auto* const scroll = new QScrollArea(this);
    auto* const all = new QVBoxLayout(this);
    all->setContentsMargins({});
    all->addWidget(scroll);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setFocusPolicy(Qt::NoFocus);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setWidget(content_);
    const int side = theme.size(ThemeSize::space28), above = theme.size(ThemeSize::space20);
    column_->setContentsMargins(side, above, side, above);
    column_->setSpacing(theme.size(ThemeSize::space8));
    column_->setAlignment(Qt::AlignTop);
    auto* const heading = new TextLabel(theme, ThemeFont::title, ThemeColor::text, content_);
    heading->setText(title);
    column_->addWidget(heading);
    setAccessibleName(title);
}

void SettingsPage::addCaption(const QString& words) {
    auto* const caption = new TextLabel(*theme_, ThemeFont::body, ThemeColor::textSecondary, content_);
    caption->setWordWrap(true);
    caption->setText(words);
    column_->addWidget(caption);
}

} // namespace ombrel
