#include "ui/ConflictSides.h"

#include "base/FileName.h"
#include "operations/JobTexts.h"
#include "ui/FileIconDrawing.h"
#include "ui/Formats.h"
#include "ui/ItemPicture.h"
#include "ui/LocalizedText.h"
#include "ui/Pill.h"
#include "ui/TextLabel.h"
#include "ui/Theme.h"

#include <QPainter>

#include <compare>
#include <utility>

namespace ombrel {
namespace {

/// When a file was changed, to be compared.
std::optional<std::pair<std::int64_t, std::int64_t>> momentOf(const ItemFacts& facts) {
    if (!facts.modified) return std::nullopt;
    return std::pair<std::int64_t, std::int64_t>(facts.modified->seconds, facts.modified->nanoseconds);
}

/// One of the two: what it is called here, what it looks like, its date and size.
class Side final : public QWidget {
public:
    struct Content {
        QString heading;
        FileURL url;
        bool isDirectory = false;
        ItemFacts facts;
        bool isNewer = false;
        bool isLarger = false;
    };

    Side(const Theme& theme, const Content& content, ThumbnailStore* thumbnails, QWidget* parent)
        : QWidget(parent), theme_(&theme) {
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        auto* const column = new QVBoxLayout(this);
        const int inset = theme.size(ThemeSize::space12);
        column->setContentsMargins(inset, inset, inset, inset);
        column->setSpacing(theme.size(ThemeSize::space8));
        auto* const heading = new TextLabel(theme, ThemeFont::bodyStrong, ThemeColor::text, this);
        heading->setText(content.heading);
        column->addWidget(heading);
        auto* const picture = new ItemPicture(theme, content.url, content.isDirectory, thumbnails, this);
        picture->setFixedHeight(theme.size(ThemeSize::conflictPictureHeight));
        picture->setMaximumWidth(theme.size(ThemeSize::conflictPictureWidth));
        column->addWidget(picture);
        QStringList words{content.heading};
        if (content.facts.modified) {
            words << Formats::dateAndTime(*content.facts.modified);
            addFact(words.back(), ThemeColor::text,
                    content.isNewer ? std::optional(PillKind::newer) : std::nullopt);
        }
        if (content.facts.size) {
            words << Formats::size(*content.facts.size);
            addFact(words.back(), ThemeColor::textSecondary,
                    content.isLarger ? std::optional(PillKind::larger) : std::nullopt);
        }
        setAccessibleName(words.join(QStringLiteral(", ")));
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(theme_->color(ThemeColor::border), theme_->size(ThemeSize::hairline)));
        painter.setBrush(theme_->color(ThemeColor::surfaceAlt));
        constexpr double half = 0.5;
        const int radius = theme_->size(ThemeSize::radiusField);
        painter.drawRoundedRect(QRectF(rect()).adjusted(half, half, -half, -half), radius, radius);
    }

private:
    void addFact(const QString& words, ThemeColor color, std::optional<PillKind> pill) {
        auto* const row = new QHBoxLayout;
        row->setSpacing(theme_->size(ThemeSize::space4));
        auto* const label = new TextLabel(*theme_, ThemeFont::body, color, this);
        label->setText(words);
        row->addWidget(label);
        if (pill) row->addWidget(new Pill(*theme_, *pill, this));
        row->addStretch();
        static_cast<QVBoxLayout*>(layout())->addLayout(row);
    }

    const Theme* theme_;
};

} // namespace

ConflictSides::ConflictSides(const Theme& theme, const ConflictContext& context, ThumbnailStore* thumbnails,
                             QWidget* parent)
    : QWidget(parent), theme_(&theme), row_(new QBoxLayout(QBoxLayout::LeftToRight, this)) {
    row_->setContentsMargins({});
    row_->setSpacing(theme.size(ThemeSize::space12));
    const auto isNewer = isFirstGreater(momentOf(context.sourceFacts), momentOf(context.existingFacts));
    const auto isLarger = isFirstGreater(context.sourceFacts.size, context.existingFacts.size);
    row_->addWidget(new Side(theme,
                             {localized(newItemText()), context.source, context.sourceIsDirectory,
                              context.sourceFacts, isNewer == true, isLarger == true},
                             thumbnails, this));
    row_->addWidget(new Side(theme,
                             {localized(existingItemText()), context.existing, context.existingIsDirectory,
                              context.existingFacts, isNewer == false, isLarger == false},
                             thumbnails, this));
}

void ConflictSides::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    const bool isNarrow = window()->width() < theme_->size(ThemeSize::conflictStackWidth);
    row_->setDirection(isNarrow ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
}

} // namespace ombrel
