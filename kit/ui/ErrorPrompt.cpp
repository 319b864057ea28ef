#include "ui/ErrorPrompt.h"

#include "base/FileName.h"
#include "operations/JobTexts.h"
#include "operations/ReportTexts.h"
#include "services/OperationJob.h"
#include "ui/AnswerRow.h"
#include "ui/Formats.h"
#include "ui/LocalizedText.h"
#include "ui/TextLabel.h"
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

/// Whether there is anything left that the same answer could stand for.
bool hasMoreItems(const OperationJob& job) {
    const auto& progress = job.progress();
    return std::max(job.itemCount(), progress.totalItems) - progress.completedItems > 1;
}

} // namespace

ErrorPrompt::ErrorPrompt(const Theme& theme, std::shared_ptr<OperationPrompt> prompt,
                         const std::shared_ptr<OperationJob>& job, DeletePermanently deletePermanently,
                         QWidget* parent)
    : PromptView(parent), prompt_(std::move(prompt)) {
    const auto& question = std::get<ErrorContext>(prompt_->kind());
    title_ = localized(titleOf(question));
    message_ = localized(textOf(question.error, question.facts,
                                [](std::int64_t bytes) { return Formats::size(bytes).toStdString(); }));
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins({});
    column->setSpacing(theme.size(ThemeSize::space4));
    const auto add = [&](const QString& words, ThemeFont font, ThemeColor color) {
        auto* const label = new TextLabel(theme, font, color, this);
        label->setWordWrap(true);
        label->setText(words);
        column->addWidget(label);
    };
    if (const auto& item = question.source ? question.source : question.destination) {
        const FileURL folder = item->parent();
        const QString name = QString::fromStdString(FileName::displayText(item->name()));
        add(name, ThemeFont::bodyStrong, ThemeColor::text);
        add(QString::fromStdString(FileName::displayText(folder.path())), ThemeFont::caption,
            ThemeColor::textSecondary);
        column->addSpacing(theme.size(ThemeSize::space4));
    }
    add(message_, ThemeFont::body, ThemeColor::text);
    column->addSpacing(theme.size(ThemeSize::space8));

    auto* const forAll = new QCheckBox(localized(applyToAllText()), this);
    forAll->setVisible(hasMoreItems(*job));
    forAll->setChecked(prompt_->applyToAll());
    connect(forAll, &QCheckBox::toggled, prompt_.get(), &OperationPrompt::setApplyToAll);
    column->addWidget(forAll);
    column->addSpacing(theme.size(ThemeSize::space8));

    auto* const row = new QHBoxLayout;
    row->setSpacing(theme.size(ThemeSize::space8));
    row->addStretch();
    column->addLayout(row);
    if (question.canRetry) row->addWidget(addAnswer(localized(retryText()), ErrorChoice::retry));
    const bool canBeDeleted = question.kind == FileOperationKind::trash && question.source &&
                              question.error.which() == FileOperationError::Case::trashUnavailable;
    if (canBeDeleted && deletePermanently) {
        auto* const button = new QPushButton(localized("ui.progress.deletePermanently"), this);
        button->setAutoDefault(true);
        connect(button, &QPushButton::clicked, this,
                [ask = std::move(deletePermanently), url = *question.source] { ask(url); });
        row->addWidget(button);
    }
    row->addWidget(addAnswer(localized(skipText()), ErrorChoice::skip));
    auto* const cancel = new QPushButton(localized("ui.progress.cancel"), this);
    cancel->setAutoDefault(true);
    connect(cancel, &QPushButton::clicked, this, [job] { job->cancel(); });
    row->addWidget(cancel);
    stackWhereTooWide(*row, theme);
    safe_->setDefault(true);
}

QPushButton* ErrorPrompt::addAnswer(const QString& label, ErrorChoice choice) {
    auto* const button = new QPushButton(label, this);
    button->setAutoDefault(true);
    connect(button, &QPushButton::clicked, this, [this, choice] {
        // The answer may take this widget away.
        const auto prompt = prompt_;
        prompt->answer(choice);
    });
    if (!safe_) safe_ = button;
    return button;
}

void ErrorPrompt::focusSafeAnswer() {
    safe_->setFocus(Qt::OtherFocusReason);
}

} // namespace ombrel
