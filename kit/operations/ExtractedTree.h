#pragma once

#include "base/FileURL.h"
#include "listing/POSIX.h"
#include "operations/OperationReport.h"

#include <functional>
#include <vector>

namespace ombrel {

/// Looks through what a tool has extracted, before anybody else can reach it.
///
/// Set-user-id and set-group-id bits are taken away and device nodes removed, however they came there.
/// Answers a result for each of them: `metadataNotPreserved`, or `posix(EOPNOTSUPP)` for a device. `top` is
/// the open folder, `url` where its contents will be. Links are not followed, and folders that their owner
/// may not open are left as the tool made them. Anything else that cannot be looked at or changed is a
/// failure; ECANCELED once `goesOn` says no.
[[nodiscard]] POSIX::Result<std::vector<ItemResult>> neutralise(int top, const FileURL& url,
                                                                const std::function<bool()>& goesOn);

} // namespace ombrel
