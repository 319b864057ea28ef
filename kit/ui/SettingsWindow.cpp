#include "ui/SettingsWindow.h"

#include "services/AppServices.h"
#include "services/ChannelConfig.h"
#include "ui/FocusRing.h"
#include "ui/FolderOptionsDialog.h"
#include "ui/LocalizedText.h"
#include "ui/LocationsPage.h"
#include "ui/OmbrelStyle.h"
#include "ui/SettingsPages.h"
#include "ui/Theme.h"

#include <QAbstractButton>
#include <QApplication>
#include <QButtonGroup>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QStackedWidget>

#include <optional>
#include <utility>

namespace ombrel {

/// One line of the list of pages.
class SettingsWindow::PageButton final : public QAbstractButton {
public:
    PageButton(const Theme& theme, Glyph glyph, const QString& title, QWidget* parent)
        : QAbstractButton(parent), theme_(&theme), glyph_(glyph) {
        setText(title);
        setAccessibleName(title);
        setCheckable(true);
        setFocusPolicy(Qt::StrongFocus);
        setProperty("drawsRing", true);
        setAttribute(Qt::WA_Hover);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    }
    [[nodiscard]] QSize sizeHint() const override {
        const int beside = 4 * theme_->size(ThemeSize::space12) + theme_->size(ThemeSize::glyph);
        return {beside + QFontMetrics(theme_->font(ThemeFont::body)).horizontalAdvance(text()),
                theme_->size(ThemeSize::field)};
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const int radius = theme_->size(ThemeSize::radiusButton);
        const bool isRightToLeft = layoutDirection() == Qt::RightToLeft;
        const auto ground = isChecked()    ? std::optional(ThemeColor::selection)
                            : underMouse() ? std::optional(ThemeColor::hover)
                                           : std::nullopt;
        if (ground) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(theme_->color(*ground));
            painter.drawRoundedRect(rect(), radius, radius);
        }
        if (isChecked()) {
            const int bar = theme_->size(ThemeSize::space2) + 1;
            painter.setClipRect(isRightToLeft ? QRect(width() - bar, 0, bar, height())
                                              : QRect(0, 0, bar, height()));
            painter.setBrush(theme_->color(ThemeColor::accent));
            painter.drawRoundedRect(rect(), radius, radius);
            painter.setClipping(false);
        }
        const QColor ink = theme_->color(isChecked() ? ThemeColor::onSelection : ThemeColor::text);
        const int side = theme_->size(ThemeSize::glyph), inset = theme_->size(ThemeSize::space12);
        Glyphs::draw(painter, glyph_,
                     QRect(isRightToLeft ? width() - inset - side : inset, (height() - side) / 2, side, side),
                     ink);
        painter.setPen(ink);
        painter.setFont(theme_->font(ThemeFont::body));
        const int beside = inset + side + theme_->size(ThemeSize::space8) + theme_->size(ThemeSize::space2);
        const QRect words =
            isRightToLeft ? rect().adjusted(0, 0, -beside, 0) : rect().adjusted(beside, 0, 0, 0);
        painter.drawText(words, static_cast<int>(Qt::AlignLeading | Qt::AlignVCenter) | Qt::TextSingleLine,
                         painter.fontMetrics().elidedText(text(), Qt::ElideRight, words.width()));
        if (hasFocus()) OmbrelStyle::drawInnerRing(painter, *theme_, rect(), radius, ground);
    }

private:
    const Theme* theme_;
    Glyph glyph_;
};

SettingsWindow::SettingsWindow(const Theme& theme, AppServices& services)
    : theme_(&theme), services_(&services), list_(new QVBoxLayout), pages_(new QStackedWidget(this)),
      group_(new QButtonGroup(this)) {
    setAttribute(Qt::WA_DeleteOnClose);
    setAttribute(Qt::WA_QuitOnClose, false);
    setWindowTitle(localized("ui.settings.title"));
    setMinimumSize(theme.size(ThemeSize::settingsMinimumWidth), theme.size(ThemeSize::settingsMinimumHeight));
    resize(theme.size(ThemeSize::settingsWidth), theme.size(ThemeSize::settingsHeight));
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins({});
    row->setSpacing(theme.size(ThemeSize::hairline));
    auto* const side = new QWidget(this);
    side->setFixedWidth(theme.size(ThemeSize::settingsPages));
    side->setLayout(list_);
    const int margin = theme.size(ThemeSize::space8), above = theme.size(ThemeSize::space12);
    list_->setContentsMargins(margin, above, margin, above);
    list_->setSpacing(0);
    row->addWidget(side);
    row->addWidget(pages_, 1);
    add(Page::general, Glyph::gear, localized("ui.settings.general"),
        new GeneralPage(theme, services.settings(), [this] { showFolderOptions(); }));
    add(Page::keyboard, Glyph::keyboard, localized("ui.settings.keyboard"),
        new KeyboardPage(theme, services.settings()));
    add(Page::language, Glyph::globe, localized("ui.settings.language"),
        new LanguagePage(theme, services.settings()));
    add(Page::locations, Glyph::key, localized("ui.settings.locations"),
        new LocationsPage(theme, services.access()));
    if (ChannelConfig::includesSoftwareUpdates && services.updater())
        add(Page::updates, Glyph::sync, localized("ui.settings.updates"),
            new UpdatesPage(theme, *services.updater()));
    list_->addStretch();
    new FocusRing(this);
    connect(group_, &QButtonGroup::idToggled, this, [this](int id, bool isOn) {
        if (isOn) select(static_cast<Page>(id));
    });
    select(Page::general);
    group_->checkedButton()->setFocus(Qt::OtherFocusReason);
}

SettingsWindow& SettingsWindow::open(const Theme& theme, AppServices& services) {
    SettingsWindow* window = nullptr;
    const auto all = QApplication::topLevelWidgets();
    for (QWidget* widget : all)
        if (auto* const found = qobject_cast<SettingsWindow*>(widget)) window = found;
    if (!window) window = new SettingsWindow(theme, services);
    window->show();
    window->raise();
    window->activateWindow();
    return *window;
}

void SettingsWindow::add(Page page, Glyph glyph, const QString& title, SettingsPage* view) {
    auto* const button = new PageButton(*theme_, glyph, title, this);
    group_->addButton(button, static_cast<int>(page));
    list_->addWidget(button);
    pages_->addWidget(view);
    view->setProperty("page", static_cast<int>(page));
}

void SettingsWindow::select(Page page) {
    for (int i = 0; i < pages_->count(); ++i)
        if (pages_->widget(i)->property("page").toInt() == static_cast<int>(page)) pages_->setCurrentIndex(i);
    if (auto* const button = group_->button(static_cast<int>(page))) button->setChecked(true);
}

void SettingsWindow::showFolderOptions() {
    (new FolderOptionsDialog(*theme_, services_->settings(), this))->open();
}

void SettingsWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}

void SettingsWindow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), theme_->color(ThemeColor::chromeRaised));
    const int wide = theme_->size(ThemeSize::settingsPages), hairline = theme_->size(ThemeSize::hairline);
    const bool isRightToLeft = layoutDirection() == Qt::RightToLeft;
    painter.fillRect(QRect(isRightToLeft ? width() - wide : 0, 0, wide, height()),
                     theme_->color(ThemeColor::surfaceAlt));
    painter.fillRect(QRect(isRightToLeft ? width() - wide - hairline : wide, 0, hairline, height()),
                     theme_->color(ThemeColor::border));
}

} // namespace ombrel
