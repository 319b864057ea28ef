#pragma once

#include "operations/FolderRecord.h"
#include "operations/OperationConflict.h"
#include "operations/OperationControl.h"
#include "operations/OperationErrorQuestion.h"
#include "operations/OperationProgress.h"

#include <functional>
#include <memory>
#include <stop_token>

namespace ombrel {

/// How a caller plugs into a running job. All are called on the job's thread. A question may take as long as
/// it likes; it must return, with any answer, soon after its token asks it to.
struct OperationHooks {
    /// Required by jobs that bring items in.
    std::function<ConflictDecision(const ConflictContext&, std::stop_token)> conflicts;
    /// When absent, every error skips its item.
    std::function<ErrorDecision(const ErrorContext&, std::stop_token)> errors;
    std::function<void(const OperationProgress&)> progress;
    std::shared_ptr<OperationControl> control;
    /// Told of a folder whose contents were moved into an existing one and that was removed then.
    std::function<void(const FolderRecord&)> removedFolder;
};

} // namespace ombrel
