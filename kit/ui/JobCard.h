#pragma once

#include "ui/JobHeading.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QTimer>
#include <QVariantAnimation>
#include <QWidget>

#include <memory>

class QPushButton;
class QHBoxLayout;
class QVBoxLayout;

namespace ombrel {

class ElidedLabel;
class GlyphButton;
class JobBar;
class LinkButton;
class OperationJob;
class PromptView;
class SpeedGraph;
class TextLabel;
class Theme;

/// A job in the progress window: what it does, how far it is, its questions, and what can be done about it.
class JobCard final : public QWidget {
    Q_OBJECT

public:
    /// `theme` must outlive it.
    JobCard(const Theme& theme, std::shared_ptr<OperationJob> job, JobHeading::OpenFolder openFolder,
            QWidget* parent = nullptr);

    [[nodiscard]] const std::shared_ptr<OperationJob>& job() const noexcept { return job_; }
    [[nodiscard]] bool isExpanded() const noexcept { return isExpanded_; }
    void setExpanded(bool isExpanded);

    /// Shows the question in place of bar and details, until the job has no prompt any more.
    void showPrompt(PromptView* view);
    [[nodiscard]] PromptView* promptView() const noexcept { return prompt_; }
    [[nodiscard]] QString stateText() const;

Q_SIGNALS:
    void expandedChanged(bool isExpanded);

private:
    void layOut(JobHeading::OpenFolder openFolder);
    QWidget* makeDetails();
    void refreshState();
    void refreshProgress();
    void refreshTimeLeft();
    void refreshLayout();
    void leavePrompt();
    void moveDetails(bool isOpening);
    void togglePause();
    [[nodiscard]] bool showsGraph() const;

    const Theme* theme_;
    const std::shared_ptr<OperationJob> job_;
    bool isExpanded_ = false;
    bool hasCopied_ = false; // it has come to its data
    int percent_ = 0;        // never goes back
    double share_ = 0;       // likewise
    QElapsedTimer sinceTimeLeft_;
    QTimer timeLeftDelay_;
    QVariantAnimation motion_;

    TextLabel* state_;
    QPushButton* startNow_;
    GlyphButton* pause_;
    GlyphButton* cancel_;
    JobBar* bar_;
    QWidget* details_;
    SpeedGraph* graph_;
    ElidedLabel* currentItem_;
    TextLabel* timeLeft_;
    TextLabel* remaining_;
    TextLabel* done_;
    LinkButton* toggle_;
    QVBoxLayout* column_;
    QVBoxLayout* words_; ///< heading and state
    QHBoxLayout* top_;   ///< the words and the buttons beside them
    JobHeading* heading_;
    QPointer<PromptView> prompt_;
};

} // namespace ombrel
