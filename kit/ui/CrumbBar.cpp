#include "ui/CrumbBar.h"

#include "base/FileName.h"
#include "browser/BrowserModel.h"
#include "ui/FileIconDrawing.h"
#include "ui/GlyphButton.h"
#include "ui/LocalizedText.h"
#include "ui/Theme.h"

#include <QAbstractButton>
#include <QMenu>
#include <QPainter>
#include <QStyle>

#include <algorithm>

namespace ombrel {
namespace {

QString nameOf(const FileURL& folder) {
    return QString::fromStdString(FileName::displayText(folder.isRoot() ? folder.path() : folder.name()));
}

} // namespace

/// One folder of the address.
class CrumbBar::Crumb final : public QAbstractButton {
public:
    Crumb(const Theme& theme, const FileURL& folder, QWidget* parent)
        : QAbstractButton(parent), theme_(&theme), folder_(folder) {
        setText(nameOf(folder));
        setFocusPolicy(Qt::TabFocus);
        setAttribute(Qt::WA_Hover);
    }

    [[nodiscard]] const FileURL& folder() const noexcept { return folder_; }
    QSize sizeHint() const override {
        return {fontMetrics().horizontalAdvance(text()) + 2 * theme_->size(ThemeSize::space8) + 1,
                theme_->size(ThemeSize::space28)};
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        if (isDown() || underMouse()) {
            const int radius = theme_->size(ThemeSize::radiusButton);
            painter.setPen(Qt::NoPen);
            painter.setBrush(theme_->color(isDown() ? ThemeColor::pressed : ThemeColor::hover));
            painter.drawRoundedRect(rect(), radius, radius);
        }
        const int margin = theme_->size(ThemeSize::space8);
        painter.setPen(theme_->color(ThemeColor::text));
        painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine,
                         fontMetrics().elidedText(text(), Qt::ElideMiddle, width() - 2 * margin + 1));
    }

private:
    const Theme* theme_;
    FileURL folder_;
};

CrumbBar::CrumbBar(BrowserModel& model, const Theme& theme, FileURL home, QWidget* parent)
    : QWidget(parent), model_(&model), theme_(&theme), home_(std::move(home)),
      collapsed_(new GlyphButton(theme, Glyph::collapsed, ThemeSize::space28, this)) {
    setAccessibleName(localized("ui.accessible.address"));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    collapsed_->setAccessibleName(localized("ui.address.collapsed"));
    collapsed_->setToolTip(localized("ui.address.collapsed"));
    collapsed_->hide();
    connect(collapsed_, &QAbstractButton::clicked, this, &CrumbBar::showCollapsed);
    connect(&theme, &Theme::changed, this, &CrumbBar::arrange);
    setModel(model);
}

void CrumbBar::setModel(BrowserModel& model) {
    model_->disconnect(this);
    model_ = &model;
    connect(&model, &BrowserModel::locationChanged, this, &CrumbBar::rebuild);
    rebuild();
}

std::vector<FileURL> CrumbBar::crumbs(const FileURL& location, const FileURL& home) {
    const FileURL first = location.isWithin(home) ? home : FileURL();
    std::vector<FileURL> folders{location};
    while (folders.back() != first)
        folders.push_back(folders.back().parent());
    std::ranges::reverse(folders);
    return folders;
}

void CrumbBar::rebuild() {
    for (Crumb* crumb : crumbs_)
        crumb->deleteLater();
    crumbs_.clear();
    if (const auto& location = model_->currentURL()) {
        for (const FileURL& folder : crumbs(*location, home_)) {
            auto* const crumb = new Crumb(*theme_, folder, this);
            // The crumb goes with the navigation that it starts.
            connect(crumb, &QAbstractButton::clicked, this, [this, folder] { model_->navigate(folder); });
            crumbs_.push_back(crumb);
        }
    }
    arrange();
}

QSize CrumbBar::sizeHint() const {
    return {theme_->size(ThemeSize::addressMinimumWidth), theme_->size(ThemeSize::field)};
}

void CrumbBar::arrange() {
    const int chevron = theme_->size(ThemeSize::glyph), height = theme_->size(ThemeSize::space28);
    const int top = (this->height() - height) / 2;
    const int start = theme_->size(ThemeSize::space8) + theme_->size(ThemeSize::smallIcon) +
                      theme_->size(ThemeSize::space8);
    const int room = width() - start - theme_->size(ThemeSize::space8);
    const auto widthFrom = [&](std::size_t first) {
        int sum = first > 0 ? collapsed_->sizeHint().width() : 0;
        for (std::size_t i = first; i < crumbs_.size(); ++i)
            sum += crumbs_[i]->sizeHint().width() + chevron;
        return sum;
    };
    firstShown_ = 0;
    while (firstShown_ + 1 < crumbs_.size() && widthFrom(firstShown_) > room)
        ++firstShown_;
    int x = start;
    const auto place = [&](QWidget* widget, int extent) {
        widget->setGeometry(QStyle::visualRect(layoutDirection(), rect(), QRect(x, top, extent, height)));
        widget->show();
        x += extent;
    };
    collapsed_->setVisible(firstShown_ > 0);
    if (firstShown_ > 0) place(collapsed_, collapsed_->sizeHint().width());
    for (std::size_t i = 0; i < crumbs_.size(); ++i) {
        if (i < firstShown_) {
            crumbs_[i]->hide();
            continue;
        }
        place(crumbs_[i], std::min(crumbs_[i]->sizeHint().width(), std::max(0, start + room - x - chevron)));
        x += chevron;
    }
    update();
}

void CrumbBar::showCollapsed() {
    QMenu menu(this);
    for (std::size_t i = 0; i < firstShown_; ++i) {
        QString name = crumbs_[i]->text();
        name.replace(QLatin1Char('&'), QLatin1String("&&"));
        connect(menu.addAction(name), &QAction::triggered, this,
                [this, folder = crumbs_[i]->folder()] { model_->navigate(folder); });
    }
    menu.exec(collapsed_->mapToGlobal(QPoint(0, collapsed_->height())));
}

void CrumbBar::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    arrange();
}

void CrumbBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const int radius = theme_->size(ThemeSize::radiusField);
    painter.setPen(QPen(theme_->color(ThemeColor::border), theme_->size(ThemeSize::hairline)));
    painter.setBrush(theme_->color(ThemeColor::surface));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    const int icon = theme_->size(ThemeSize::smallIcon);
    const auto mirrored = [&](const QRect& part) {
        return QStyle::visualRect(layoutDirection(), rect(), part);
    };
    const QRect iconRect(theme_->size(ThemeSize::space8) + theme_->size(ThemeSize::space2),
                         (height() - icon) / 2, icon, icon);
    FileIconDrawing::draw(painter, *theme_, FileClass::folder, mirrored(iconRect));
    const int chevron = theme_->size(ThemeSize::glyph);
    const bool isRightToLeft = layoutDirection() == Qt::RightToLeft;
    for (std::size_t i = firstShown_; i < crumbs_.size(); ++i) {
        const QRect crumb = crumbs_[i]->geometry();
        const QRect box(isRightToLeft ? crumb.left() - chevron : crumb.right() + 1, (height() - chevron) / 2,
                        chevron, chevron);
        const int inset = theme_->size(ThemeSize::space2);
        Glyphs::draw(painter, isRightToLeft ? Glyph::chevronLeft : Glyph::chevronRight,
                     QRectF(box).adjusted(inset, inset, -inset, -inset),
                     theme_->color(ThemeColor::textSecondary));
    }
}

} // namespace ombrel
