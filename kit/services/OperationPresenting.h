#pragma once

#include "base/Text.h"
#include "operations/OperationReport.h"

#include <QObject>
#include <QUuid>

#include <memory>

namespace ombrel {

class OperationJob;
class OperationPrompt;

/// The report of a job that ended and did not wholly succeed, kept until somebody has read it.
struct LeftReport {
    QUuid id; ///< the job's
    Text title;
    std::shared_ptr<const OperationReport> report; ///< of up to millions of items
};

/// Whoever shows jobs to the user, as the operation center knows it: held weakly, called on the main thread.
/// What is to be shown is only told; it stays with the center, and a presenter that comes later is told
/// again.
class OperationPresenting : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    /// The job has run for a while: its progress is to be seen.
    virtual void presentJob(const std::shared_ptr<OperationJob>& job) = 0;
    /// The job waits for an answer to its prompt.
    virtual void presentPrompt(const std::shared_ptr<OperationPrompt>& prompt,
                               const std::shared_ptr<OperationJob>& job) = 0;
    virtual void presentReport(const LeftReport& report) = 0;
};

} // namespace ombrel
