#pragma once

#include "operations/FileUndoStep.h"
#include "operations/FolderRecord.h"
#include "operations/OperationReport.h"

#include <vector>

namespace ombrel {

/// What undoes an operation that came to `report`, for the items that it completed; made right after its end,
/// so that what the items are now is known. Empty for what cannot be undone. Blocking.
///
/// Copies and what was newly made go to the trash, what was moved goes back, what was renamed gets its old
/// name, what was trashed is put back. A move that kept its source is not undone: only the user knows which
/// of the two is wanted.
[[nodiscard]] FileUndoStep undoStepOf(const OperationReport& report,
                                      std::vector<FolderRecord> removedFolders = {});

/// The same for items that were put back from the trash: they go there again.
[[nodiscard]] FileUndoStep undoStepOfPuttingBack(const OperationReport& report);

} // namespace ombrel
