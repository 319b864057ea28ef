#include "ui/ConflictPrompt.h"

#include "operations/JobTexts.h"
#include "services/OperationJob.h"
#include "ui/AnswerRow.h"
#include "ui/ChoiceCard.h"
#include "ui/ConflictSides.h"
#include "ui/LocalizedText.h"
#include "ui/Theme.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>
#include <variant>

namespace ombrel {
namespace {

QString detailOf(const ChoiceText& text) {
    return text.detail ? localized(*text.detail).trimmed() : QString();
}

} // namespace

ConflictPrompt::ConflictPrompt(const Theme& theme, std::shared_ptr<OperationPrompt> prompt,
                               std::shared_ptr<OperationJob> job, DecideEach decideEach,
                               ThumbnailStore* thumbnails, QWidget* parent)
    : PromptView(parent), theme_(&theme), prompt_(std::move(prompt)), job_(std::move(job)),
      cards_(new ChoiceCards(theme, this)) {
    const auto& question = std::get<OperationPrompt::Conflict>(prompt_->kind());
    title_ = localized(titleOf(question.context, question.batchCount));
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, theme.size(ThemeSize::space4), 0, 0);
    column->setSpacing(theme.size(ThemeSize::space8));
    if (prompt_->isBatch())
        layOutBatch(decideEach);
    else
        layOutSingle(thumbnails);
}

const ConflictContext& ConflictPrompt::context() const {
    return std::get<OperationPrompt::Conflict>(prompt_->kind()).context;
}

void ConflictPrompt::layOutBatch(const DecideEach& decideEach) {
    const std::int64_t count = *std::get<OperationPrompt::Conflict>(prompt_->kind()).batchCount;
    const ChoiceText replace = replaceAllText(context(), count);
    const ChoiceText skip =
        skipAllText(context(), count, std::max<std::int64_t>(0, job_->itemCount() - count));
    const ChoiceText each = decideEachText();
    auto* const replaceCard = cards_->add(Glyph::replace, localized(replace.label), detailOf(replace));
    auto* const skipCard = cards_->add(Glyph::skip, localized(skip.label), detailOf(skip));
    auto* const eachCard = cards_->add(Glyph::list, localized(each.label), detailOf(each));
    cards_->setSafe(skipCard);
    connect(replaceCard, &QAbstractButton::clicked, this, [this] { answer(ConflictChoice::replace, true); });
    connect(skipCard, &QAbstractButton::clicked, this, [this] { answer(ConflictChoice::skip, true); });
    connect(eachCard, &QAbstractButton::clicked, this, [decideEach] {
        if (decideEach) decideEach();
    });
    layout()->addWidget(cards_);
}

void ConflictPrompt::layOutSingle(ThumbnailStore* thumbnails) {
    auto* const sides = new ConflictSides(*theme_, context(), thumbnails, this);
    layout()->addWidget(sides);
    const ChoiceText replace = replaceOneText(context()), skip = skipOneText(),
                     both = keepBothText(context());
    auto* const replaceCard = cards_->add(Glyph::replace, localized(replace.label), detailOf(replace));
    if (replace.isLoss) replaceCard->setCaption(detailOf(replace), ThemeColor::danger);
    auto* const skipCard = cards_->add(Glyph::skip, localized(skip.label), detailOf(skip));
    auto* const bothCard = cards_->add(Glyph::keepBoth, localized(both.label), detailOf(both));
    cards_->setSafe(skipCard);
    layout()->addWidget(cards_);

    auto* const row = new QHBoxLayout;
    row->setSpacing(theme_->size(ThemeSize::space12));
    auto* const forAll = new QCheckBox(localized(applyToAllConflictsText()), this);
    auto* const cancel = new QPushButton(localized(cancelText(context().kind)), this);
    cancel->setAutoDefault(true);
    row->addWidget(forAll, 1);
    row->addWidget(cancel, 0, Qt::AlignTrailing);
    stackWhereTooWide(*row, *theme_);
    static_cast<QVBoxLayout*>(layout())->addSpacing(theme_->size(ThemeSize::space4));
    static_cast<QVBoxLayout*>(layout())->addLayout(row);
    forAll->setChecked(prompt_->applyToAll());
    connect(forAll, &QCheckBox::toggled, prompt_.get(), &OperationPrompt::setApplyToAll);
    connect(cancel, &QPushButton::clicked, this, [job = job_] { job->cancel(); });
    const auto choose = [this](ConflictChoice choice) {
        return [this, choice] { answer(choice, prompt_->applyToAll()); };
    };
    connect(replaceCard, &QAbstractButton::clicked, this, choose(ConflictChoice::replace));
    connect(skipCard, &QAbstractButton::clicked, this, choose(ConflictChoice::skip));
    connect(bothCard, &QAbstractButton::clicked, this, choose(ConflictChoice::keepBoth));
}

void ConflictPrompt::answer(ConflictChoice choice, bool applyToAll) {
    // The answer may take this widget away.
    const auto prompt = prompt_;
    prompt->answer(choice, applyToAll);
}

QString ConflictPrompt::message() const {
    return cards_->safe()->text();
}

void ConflictPrompt::focusSafeAnswer() {
    cards_->safe()->setFocus(Qt::OtherFocusReason);
}

} // namespace ombrel
