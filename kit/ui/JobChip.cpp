#include "ui/JobChip.h"

#include "services/OperationCenter.h"
#include "ui/Glyphs.h"
#include "ui/LocalizedText.h"
#include "ui/Theme.h"

#include <QAccessible>
#include <QLocale>
#include <QPainter>
#include <QStyle>

#include <chrono>
#include <cmath>
#include <utility>

namespace ombrel {
namespace {

constexpr std::chrono::milliseconds patience(500); // what is done by then is not spoken of
constexpr std::chrono::milliseconds interval(200); // between two figures
constexpr int announcedStep = 25;                  // percent

int percentOf(const OperationCenter& center) {
    double sum = 0;
    for (const auto& job : center.jobs())
        sum += job->fractionCompleted();
    return static_cast<int>(std::floor(100 * sum / static_cast<double>(center.jobs().size())));
}

} // namespace

JobChip::JobChip(OperationCenter& center, const Theme& theme, QWidget* parent)
    : QAbstractButton(parent), center_(&center), theme_(&theme) {
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setToolTip(localized("ui.status.showJobs"));
    setAccessibleDescription(toolTip());
    hide();
    appearing_.setSingleShot(true);
    appearing_.setInterval(patience);
    refreshing_.setSingleShot(true);
    refreshing_.setInterval(interval);
    connect(&appearing_, &QTimer::timeout, this, [this] {
        refresh();
        setVisible(!center_->jobs().empty());
    });
    connect(&refreshing_, &QTimer::timeout, this, &JobChip::refresh);
    connect(&center, &OperationCenter::jobsChanged, this, &JobChip::followJobs);
    connect(&theme, &Theme::changed, this, &JobChip::refresh);
    followJobs();
}

void JobChip::followJobs() {
    delete std::exchange(following_, new QObject(this));
    const auto soon = [this] {
        if (!refreshing_.isActive()) refreshing_.start();
    };
    for (const auto& job : center_->jobs()) {
        connect(job.get(), &OperationJob::progressChanged, following_, soon);
        connect(job.get(), &OperationJob::promptChanged, following_, [this] {
            refresh();
            // A question is not kept waiting.
            if (isAsked()) show();
        });
    }
    if (center_->jobs().empty()) {
        appearing_.stop();
        announcedPercent_ = 0;
        hide();
    } else if (isHidden()) {
        if (!appearing_.isActive()) appearing_.start();
    } else {
        refresh();
    }
}

bool JobChip::isAsked() const {
    for (const auto& job : center_->jobs())
        if (job->prompt()) return true;
    return false;
}

void JobChip::refresh() {
    if (center_->jobs().empty()) return;
    const int percent = percentOf(*center_);
    const QString text = isAsked()
                             ? localized("ui.progress.waitingForAnswer")
                             : localized("ui.status.jobs", static_cast<std::int64_t>(center_->jobs().size()),
                                         {QLocale().toString(percent).toStdString()});
    if (text != this->text()) {
        setText(text);
        updateGeometry();
    }
    update();
    if (!isAsked() && percent < announcedPercent_ + announcedStep) return;
    announcedPercent_ = percent - percent % announcedStep;
    QAccessibleEvent event(this, QAccessible::NameChanged);
    QAccessible::updateAccessibility(&event);
}

QSize JobChip::sizeHint() const {
    const QFontMetrics metrics(theme_->font(ThemeFont::caption));
    return {metrics.horizontalAdvance(text()) + theme_->size(ThemeSize::glyph) +
                theme_->size(ThemeSize::space4) + 2 * theme_->size(ThemeSize::space8),
            theme_->size(ThemeSize::space20) + theme_->size(ThemeSize::space4)};
}

void JobChip::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool isWarning = isAsked();
    const auto ground = isDown()       ? ThemeColor::pressed
                        : isWarning    ? ThemeColor::warningSoft
                        : underMouse() ? ThemeColor::hover
                                       : ThemeColor::selectionInactive;
    const QColor ink = theme_->color(isWarning ? ThemeColor::warning : ThemeColor::text);
    const double radius = height() / 2.0;
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme_->color(ground));
    painter.drawRoundedRect(rect(), radius, radius);
    const int side = theme_->size(ThemeSize::space8), glyph = theme_->size(ThemeSize::glyph);
    const auto mirrored = [this](const QRect& part) {
        return QStyle::visualRect(layoutDirection(), rect(), part);
    };
    const int inset = theme_->size(ThemeSize::space2);
    Glyphs::draw(painter, isWarning ? Glyph::warning : Glyph::copy,
                 QRectF(mirrored(QRect(side, (height() - glyph) / 2, glyph, glyph)))
                     .adjusted(inset, inset, -inset, -inset),
                 ink);
    painter.setPen(ink);
    painter.setFont(theme_->font(ThemeFont::caption));
    painter.drawText(mirrored(rect().adjusted(side + glyph + theme_->size(ThemeSize::space4), 0, 0, 0)),
                     Qt::AlignVCenter | Qt::AlignLeading | Qt::TextSingleLine, text());
}

} // namespace ombrel
