#include "ui/JobCard.h"

#include "base/FileName.h"
#include "services/OperationJob.h"
#include "ui/GlyphButton.h"
#include "ui/JobBar.h"
#include "ui/JobWords.h"
#include "ui/LinkButton.h"
#include "ui/LocalizedText.h"
#include "ui/PromptView.h"
#include "ui/SpeedGraph.h"
#include "ui/TextLabel.h"

#include <QGridLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace ombrel {
namespace {

/// The time left changes at most so often, in milliseconds.
constexpr int timeLeftPace = 1000;

} // namespace

JobCard::JobCard(const Theme& theme, std::shared_ptr<OperationJob> job, JobHeading::OpenFolder openFolder,
                 QWidget* parent)
    : QWidget(parent), theme_(&theme), job_(std::move(job)),
      state_(new TextLabel(theme, ThemeFont::bodyStrong, ThemeColor::text, this)),
      startNow_(new QPushButton(localized("ui.progress.startNow"), this)),
      pause_(new GlyphButton(theme, Glyph::pause, ThemeSize::button, this)),
      cancel_(new GlyphButton(theme, Glyph::close, ThemeSize::button, this)), bar_(new JobBar(theme, this)),
      details_(makeDetails()), toggle_(new LinkButton(theme, Glyph::chevronDown, this)) {
    layOut(std::move(openFolder));
    cancel_->setLabel(localized("ui.progress.cancel"));
    timeLeftDelay_.setSingleShot(true);
    connect(&timeLeftDelay_, &QTimer::timeout, this, &JobCard::refreshTimeLeft);
    connect(&motion_, &QVariantAnimation::valueChanged, this,
            [this](const QVariant& value) { details_->setFixedHeight(value.toInt()); });
    connect(&motion_, &QVariantAnimation::finished, this, [this] {
        details_->setMinimumHeight(0);
        details_->setMaximumHeight(QWIDGETSIZE_MAX);
        refreshLayout();
    });
    connect(startNow_, &QPushButton::clicked, this, [this] { job_->startNow(); });
    connect(pause_, &QAbstractButton::clicked, this, &JobCard::togglePause);
    connect(cancel_, &QAbstractButton::clicked, this, [this] { job_->cancel(); });
    connect(toggle_, &QAbstractButton::clicked, this, [this] { setExpanded(!isExpanded_); });
    connect(job_.get(), &OperationJob::progressChanged, this, &JobCard::refreshProgress);
    connect(job_.get(), &OperationJob::stateChanged, this, &JobCard::refreshState);
    connect(job_.get(), &OperationJob::promptChanged, this, [this] {
        if (!job_->prompt()) leavePrompt();
    });
    refreshProgress();
    refreshState();
}

void JobCard::layOut(JobHeading::OpenFolder openFolder) {
    const auto space = [this](ThemeSize token) { return theme_->size(token); };
    column_ = new QVBoxLayout(this);
    column_->setContentsMargins(space(ThemeSize::space20), space(ThemeSize::space16),
                                space(ThemeSize::space20), space(ThemeSize::space20));
    column_->setSpacing(space(ThemeSize::space8));
    top_ = new QHBoxLayout;
    top_->setSpacing(space(ThemeSize::space2));
    words_ = new QVBoxLayout;
    heading_ = new JobHeading(*theme_, *job_, std::move(openFolder), this);
    words_->addWidget(heading_);
    words_->addWidget(state_);
    top_->addLayout(words_, 1);
    startNow_->setFixedHeight(space(ThemeSize::compactButton));
    for (QWidget* button :
         {static_cast<QWidget*>(startNow_), static_cast<QWidget*>(pause_), static_cast<QWidget*>(cancel_)})
        top_->addWidget(button, 0, Qt::AlignVCenter);
    column_->addLayout(top_);
    column_->addWidget(bar_);
    column_->addWidget(details_);
    column_->addWidget(toggle_, 0, Qt::AlignLeading);
    state_->setWordWrap(true);
    startNow_->setAutoDefault(true);
}

QWidget* JobCard::makeDetails() {
    auto* const details = new QWidget(this);
    auto* const column = new QVBoxLayout(details);
    column->setContentsMargins(0, 0, 0, theme_->size(ThemeSize::space4));
    column->setSpacing(theme_->size(ThemeSize::space12));
    graph_ = new SpeedGraph(*theme_, details);
    column->addWidget(graph_);
    auto* const facts = new QGridLayout;
    facts->setHorizontalSpacing(theme_->size(ThemeSize::space28));
    facts->setVerticalSpacing(theme_->size(ThemeSize::space4));
    facts->setColumnStretch(1, 1);
    currentItem_ = new ElidedLabel(*theme_, Qt::ElideMiddle, ThemeColor::text, details);
    timeLeft_ = new TextLabel(*theme_, ThemeFont::body, ThemeColor::text, details);
    remaining_ = new TextLabel(*theme_, ThemeFont::body, ThemeColor::text, details);
    done_ = new TextLabel(*theme_, ThemeFont::body, ThemeColor::text, details);
    const auto add = [&](int row, const QString& name, QWidget* value) {
        auto* const label = new TextLabel(*theme_, ThemeFont::body, ThemeColor::textSecondary, details);
        label->setText(name);
        facts->addWidget(label, row, 0);
        facts->addWidget(value, row, 1);
    };
    add(0, localized("ui.progress.currentItem"), currentItem_);
    add(1, localized("ui.progress.timeRemaining"), timeLeft_);
    add(2, localized("ui.progress.itemsRemaining"), remaining_);
    add(3, localized("ui.progress.done"), done_);
    column->addLayout(facts);
    return details;
}

QString JobCard::stateText() const {
    return state_->text();
}

void JobCard::setExpanded(bool isExpanded) {
    if (isExpanded == isExpanded_) return;
    isExpanded_ = isExpanded;
    moveDetails(isExpanded);
    Q_EMIT expandedChanged(isExpanded);
}

void JobCard::moveDetails(bool isOpening) {
    motion_.stop();
    const int duration = isVisible() && !prompt_ ? theme_->duration(ThemeDuration::expand) : 0;
    const int now = details_->isVisible() ? details_->height() : 0;
    refreshLayout();
    if (duration == 0) return;
    details_->setVisible(true);
    motion_.setDuration(duration);
    motion_.setEasingCurve(QEasingCurve::OutCubic);
    motion_.setStartValue(now);
    motion_.setEndValue(isOpening ? details_->layout()->sizeHint().height() : 0);
    motion_.start();
}

/// Once data flows the graph stays: a move goes through all its phases again for every item.
bool JobCard::showsGraph() const {
    return isExpanded_ && hasCopied_;
}

void JobCard::refreshLayout() {
    const bool asks = prompt_;
    const bool isMoving = motion_.state() == QAbstractAnimation::Running;
    // What is asked stands below the heading, which then is as high as the button beside it.
    heading_->setMinimumHeight(asks ? theme_->size(ThemeSize::button) : 0);
    words_->setSpacing(asks ? 0 : theme_->size(ThemeSize::space4));
    top_->setAlignment(cancel_, asks ? Qt::AlignTop : Qt::AlignVCenter);
    state_->setLook(asks || isExpanded_ ? ThemeFont::title : ThemeFont::bodyStrong, ThemeColor::text);
    bar_->setVisible(!asks && !showsGraph());
    graph_->setVisible(showsGraph());
    details_->setVisible(!asks && (isExpanded_ || isMoving));
    toggle_->setVisible(!asks);
    toggle_->setGlyph(isExpanded_ ? Glyph::chevronUp : Glyph::chevronDown);
    toggle_->setLabel(localized(isExpanded_ ? "ui.progress.fewer" : "ui.progress.more"));
    pause_->setVisible(!asks);
    startNow_->setVisible(!asks && job_->stage() == OperationJob::Stage::waiting && !job_->isCancelling());
}

void JobCard::refreshState() {
    state_->setText(prompt_ ? prompt_->title() : JobWords::state(*job_, percent_));
    const bool isPaused = job_->isPaused();
    pause_->setGlyph(isPaused ? Glyph::play : Glyph::pause);
    pause_->setLabel(localized(isPaused ? "ui.progress.resume" : "ui.progress.pause"));
    pause_->setEnabled(!job_->isCancelling());
    cancel_->setEnabled(!job_->isCancelling());
    bar_->setResting(isPaused);
    graph_->setResting(isPaused);
    refreshLayout();
}

void JobCard::refreshProgress() {
    const OperationProgress& progress = job_->progress();
    const bool begins = !hasCopied_ && JobWords::hasSpeed(job_->kind()) &&
                        progress.phase != OperationProgress::Phase::preparing;
    if (begins) hasCopied_ = true;
    percent_ = std::max(percent_, JobWords::percent(job_->fractionCompleted()));
    share_ = std::max(share_, job_->fractionCompleted());
    bar_->setShare(share_);
    graph_->show(job_->speedSamples(), share_, job_->speed());
    if (!prompt_) state_->setText(JobWords::state(*job_, percent_));
    currentItem_->setText(QString::fromStdString(
        progress.currentName ? FileName::displayText(*progress.currentName) : std::string()));
    remaining_->setText(JobWords::remaining(progress));
    done_->setText(JobWords::done(progress));
    if (!sinceTimeLeft_.isValid() || sinceTimeLeft_.hasExpired(timeLeftPace))
        refreshTimeLeft();
    else if (!timeLeftDelay_.isActive())
        timeLeftDelay_.start(static_cast<int>(timeLeftPace - sinceTimeLeft_.elapsed()));
    if (begins) refreshLayout();
}

void JobCard::refreshTimeLeft() {
    sinceTimeLeft_.start();
    timeLeft_->setText(JobWords::timeLeft(job_->remainingSeconds()));
}

void JobCard::togglePause() {
    if (job_->isPaused())
        job_->resume();
    else
        job_->pause();
}

void JobCard::showPrompt(PromptView* view) {
    leavePrompt();
    prompt_ = view;
    column_->addWidget(view);
    view->show();
    refreshState();
}

void JobCard::leavePrompt() {
    if (!prompt_) return;
    PromptView* const left = std::exchange(prompt_, nullptr);
    const bool hadKeyboard = left->isAncestorOf(window()->focusWidget());
    refreshState();
    // The next control is the one that cancels: another stroke of Enter must not do that.
    if (hadKeyboard) toggle_->setFocus();
    // It may be the one whose click is being handled.
    left->hide();
    left->deleteLater();
}

} // namespace ombrel
