#include "ui/ProgressWindow.h"

#include "services/OperationCenter.h"
#include "ui/ConflictPrompt.h"
#include "ui/ErrorPrompt.h"
#include "ui/JobCard.h"
#include "ui/JobsSummary.h"
#include "ui/ProgressFrame.h"
#include "ui/PromptView.h"
#include "ui/ReportCard.h"
#include "ui/Theme.h"
#include "ui/WindowPrompter.h"

#include <QAccessible>
#include <QApplication>

#include <chrono>
#include <utility>
#include <variant>

namespace ombrel {
namespace {

/// How long the desktop may take to give the keyboard on from a dialog that has gone.
constexpr std::chrono::milliseconds settlingTime(500);

} // namespace

ProgressWindow::ProgressWindow(Setting setting)
    : setting_(std::move(setting)), summary_(std::make_unique<JobsSummary>()),
      frame_(std::make_unique<ProgressFrame>(setting_.theme)) {
    connect(summary_.get(), &JobsSummary::changed, this, &ProgressWindow::refreshTitle);
    connect(frame_.get(), &ProgressFrame::closed, this, &ProgressWindow::hidden);
    settling_.setSingleShot(true);
    settling_.setInterval(settlingTime);
    connect(qApp, &QApplication::focusChanged, this, &ProgressWindow::stayForward);
}

ProgressWindow::~ProgressWindow() {
    // The frame gives the keyboard away as it goes, when the rest has gone already.
    qApp->disconnect(this);
}

QWidget& ProgressWindow::window() noexcept {
    return *frame_;
}

bool ProgressWindow::isEmpty() const {
    return frame_->cards().empty();
}

JobCard* ProgressWindow::cardOf(const std::shared_ptr<OperationJob>& job) {
    for (QWidget* card : frame_->cards())
        if (auto* const found = qobject_cast<JobCard*>(card); found && found->job() == job) return found;
    auto* const card = new JobCard(setting_.theme, job, setting_.openFolder);
    if (isEmpty()) {
        card->setExpanded(isFirstExpanded_);
        connect(card, &JobCard::expandedChanged, this,
                [this](bool isExpanded) { isFirstExpanded_ = isExpanded; });
    }
    connect(job.get(), &OperationJob::ended, this, [this, which = job.get()] {
        // A report may take its place right now.
        QMetaObject::invokeMethod(this, [this, which] { removeCard(which); }, Qt::QueuedConnection);
    });
    frame_->add(card);
    summary_->add(job);
    return card;
}

void ProgressWindow::removeCard(const OperationJob* job) {
    for (QWidget* card : frame_->cards()) {
        const auto* const found = qobject_cast<JobCard*>(card);
        if (!found || found->job().get() != job) continue;
        frame_->remove(card);
        break;
    }
    if (!isEmpty()) return refreshTitle();
    frame_->hide();
    Q_EMIT hidden();
}

void ProgressWindow::presentJob(const std::shared_ptr<OperationJob>& job) {
    cardOf(job);
    appear(false);
}

void ProgressWindow::presentPrompt(const std::shared_ptr<OperationPrompt>& prompt,
                                   const std::shared_ptr<OperationJob>& job) {
    JobCard* const card = cardOf(job);
    PromptView* const view = makeView(prompt, job);
    card->showPrompt(view);
    frame_->reveal(card);
    appear(true);
    announce(view, view->title() + QLatin1Char(' ') + view->message());
}

PromptView* ProgressWindow::makeView(const std::shared_ptr<OperationPrompt>& prompt,
                                     const std::shared_ptr<OperationJob>& job) {
    if (std::holds_alternative<OperationPrompt::Conflict>(prompt->kind())) {
        const auto decideEach = [center = &setting_.center, asked = std::weak_ptr(prompt),
                                 of = std::weak_ptr(job)] {
            const auto question = asked.lock();
            const auto owner = of.lock();
            if (question && owner) center->decideEach(*question, *owner);
        };
        return new ConflictPrompt(setting_.theme, prompt, job, decideEach, setting_.thumbnails);
    }
    ErrorPrompt::DeletePermanently deletePermanently;
    if (setting_.deletePermanently)
        deletePermanently = [this, asked = std::weak_ptr(prompt)](const FileURL& item) {
            if (const auto question = asked.lock()) confirmDeleting(question, item);
        };
    return new ErrorPrompt(setting_.theme, prompt, job, std::move(deletePermanently));
}

void ProgressWindow::confirmDeleting(const std::shared_ptr<OperationPrompt>& prompt, const FileURL& item) {
    const BrowserQuestion question{
        .kind = BrowserQuestion::Kind::deletePermanently, .items = {{item, std::nullopt}}, .count = 1};
    const auto done = [this, asked = std::weak_ptr(prompt), item](const BrowserAnswer& answer) {
        const auto waiting = asked.lock();
        if (!waiting || waiting->isAnswered() || answer.choice != BrowserAnswer::Choice::accept) return;
        setting_.deletePermanently(item);
        // The others are asked about by themselves.
        waiting->setApplyToAll(false);
        waiting->answer(ErrorChoice::skip);
    };
    (new ConfirmationDialog(setting_.theme, WindowPrompter::contentOf(question), done, frame_.get()))->open();
}

void ProgressWindow::presentReport(const LeftReport& report) {
    // What the user called off before anything happened needs no telling.
    if (report.report->overall() == OperationReport::Overall::cancelled) {
        const QUuid id = report.id;
        QMetaObject::invokeMethod(
            this, [this, id] { setting_.center.dismissReport(id); }, Qt::QueuedConnection);
        return;
    }
    auto* const card = new ReportCard(setting_.theme, report);
    connect(card, &ReportCard::closeRequested, this, [this, card] {
        setting_.center.dismissReport(card->id());
        frame_->remove(card);
        if (!isEmpty()) return refreshTitle();
        frame_->hide();
        Q_EMIT hidden();
    });
    QWidget* ended = nullptr;
    for (QWidget* other : frame_->cards())
        if (const auto* const job = qobject_cast<JobCard*>(other); job && job->job()->id() == report.id)
            ended = other;
    if (ended)
        frame_->replace(ended, card);
    else
        frame_->add(card);
    refreshTitle();
    appear(false);
    frame_->reveal(card);
    if (!summary_->isAsking()) card->focusClose();
    announce(card, card->summary());
}

void ProgressWindow::announce(QWidget* about, const QString& text) {
    about->setAccessibleName(text);
    QAccessibleEvent event(about, QAccessible::Alert);
    QAccessible::updateAccessibility(&event);
}

/// The keyboard stays where the user types, unless a question comes up while an own window is active.
void ProgressWindow::appear(bool asks) {
    const bool takesFocus = asks && QApplication::activeWindow();
    if (!frame_->isVisible()) {
        frame_->setAttribute(Qt::WA_ShowWithoutActivating, !takesFocus);
        frame_->show();
    }
    if (takesFocus) {
        bringForward();
    } else if (asks) {
        QApplication::alert(frame_.get());
    }
    if (!asks) return;
    settling_.start();
    focusQuestion();
}

void ProgressWindow::bringForward() {
    frame_->raise();
    frame_->activateWindow();
}

/// A dialog that goes as the question comes leaves the keyboard to no window for a moment, and then to the
/// one below it.
void ProgressWindow::stayForward() {
    if (!settling_.isActive() || !QApplication::activeWindow() || frame_->isActiveWindow()) return;
    settling_.stop();
    bringForward();
}

void ProgressWindow::focusQuestion() {
    for (QWidget* card : frame_->cards())
        if (const auto* const job = qobject_cast<JobCard*>(card); job && job->promptView())
            return job->promptView()->focusSafeAnswer();
}

void ProgressWindow::comeBack() {
    if (isEmpty()) return;
    frame_->setAttribute(Qt::WA_ShowWithoutActivating, false);
    frame_->show();
    bringForward();
    focusQuestion();
}

void ProgressWindow::refreshTitle() {
    QString title = summary_->title();
    // Without jobs the window is about what the last ones left.
    if (title.isEmpty())
        for (QWidget* card : frame_->cards())
            if (const auto* const report = qobject_cast<ReportCard*>(card)) title = report->summary();
    frame_->setWindowTitle(title);
}

} // namespace ombrel
