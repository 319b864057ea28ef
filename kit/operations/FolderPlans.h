#pragma once

#include "base/FileURL.h"
#include "listing/FileReference.h"
#include "operations/FileOperationService.h"
#include "operations/JobPlan.h"

#include <string>
#include <vector>

/// Jobs that put items together in a folder, and take one apart. Their reports are of moves.
namespace ombrel::FolderPlans {

/// Makes a folder in `folder`, under `preferredName` or the first free name like it, and moves the items into
/// it. When none of them could be moved, it is not left behind.
[[nodiscard]] JobPlan moveIntoNewFolder(const FileOperationService& service, std::vector<FileReference> items,
                                        const FileURL& folder, std::string preferredName);

/// Moves what is in a folder into the one that it lies in, and removes it when nothing is left in it. What
/// has the folder's own name takes its place. A folder that something is mounted on stays as it is.
[[nodiscard]] JobPlan dissolve(const FileOperationService& service, const FileReference& folder);

} // namespace ombrel::FolderPlans
