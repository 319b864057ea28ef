#pragma once

#include "base/FileURL.h"
#include "services/OperationPresenting.h"
#include "ui/JobHeading.h"

#include <QTimer>
#include <QWidget>

#include <functional>
#include <memory>

namespace ombrel {

class JobCard;
class JobsSummary;
class OperationCenter;
class ProgressFrame;
class PromptView;
class Theme;
class ThumbnailStore;

/// Shows all jobs of all windows in one window of its own: their progress, their questions, and what they
/// left. Closing that window only hides it.
class ProgressWindow final : public OperationPresenting {
    Q_OBJECT

public:
    struct Setting {
        const Theme& theme;                     ///< must outlive the window
        OperationCenter& center;                ///< likewise
        JobHeading::OpenFolder openFolder = {}; ///< in a new tab
        ThumbnailStore* thumbnails = nullptr;   ///< if given, must outlive the window
        /// Deletes what cannot go to the trash; the user has been asked.
        std::function<void(const FileURL&)> deletePermanently = {};
    };

    explicit ProgressWindow(Setting setting);
    ~ProgressWindow() override;

    void presentJob(const std::shared_ptr<OperationJob>& job) override;
    void presentPrompt(const std::shared_ptr<OperationPrompt>& prompt,
                       const std::shared_ptr<OperationJob>& job) override;
    void presentReport(const LeftReport& report) override;

    /// Shows the window again and gives it the focus.
    void comeBack();
    /// Whether there is anything in the window.
    [[nodiscard]] bool isEmpty() const;
    [[nodiscard]] JobsSummary& summary() noexcept { return *summary_; }
    [[nodiscard]] QWidget& window() noexcept;

Q_SIGNALS:
    /// The user has closed the window, or it has nothing to show any more.
    void hidden();

private:
    JobCard* cardOf(const std::shared_ptr<OperationJob>& job);
    void removeCard(const OperationJob* job);
    PromptView* makeView(const std::shared_ptr<OperationPrompt>& prompt,
                         const std::shared_ptr<OperationJob>& job);
    void confirmDeleting(const std::shared_ptr<OperationPrompt>& prompt, const FileURL& item);
    void announce(QWidget* about, const QString& text);
    void appear(bool asks);
    void bringForward();
    void stayForward();
    void focusQuestion();
    void refreshTitle();

    Setting setting_;
    std::unique_ptr<JobsSummary> summary_;
    std::unique_ptr<ProgressFrame> frame_;
    QTimer settling_;             ///< since a question came forward
    bool isFirstExpanded_ = true; // as the user left the last one
};

} // namespace ombrel
