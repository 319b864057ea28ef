#pragma once

#include "services/OperationJob.h"

#include <QObject>
#include <QString>

#include <memory>
#include <vector>

namespace ombrel {

/// All shown jobs in a line, for the title of the progress window and the status bars.
class JobsSummary final : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    /// The job counts until it ends.
    void add(const std::shared_ptr<OperationJob>& job);

    [[nodiscard]] std::size_t jobCount() const noexcept { return jobs_.size(); }
    /// Of all together: by bytes where all have some. Never goes back while the jobs are the same.
    [[nodiscard]] int percent() const noexcept { return percent_; }
    /// Whether one of them waits for an answer.
    [[nodiscard]] bool isAsking() const;
    [[nodiscard]] bool areAllPaused() const;
    /// "64% complete, 2 jobs", "Paused" or "Waiting for your answer"; empty without jobs.
    [[nodiscard]] QString title() const;

Q_SIGNALS:
    void changed();

private:
    void remove(const OperationJob* job);
    void refresh();
    [[nodiscard]] double fraction() const;

    std::vector<std::shared_ptr<OperationJob>> jobs_;
    int percent_ = 0;
};

} // namespace ombrel
