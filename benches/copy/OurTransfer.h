#pragma once

#include "operations/FileOperationKind.h"
#include "operations/OperationControl.h"

#include <memory>
#include <stop_token>
#include <string>

namespace ombrel::bench {

/// One whole job of ours: what stands at `source` goes into `folder`, verified. Ends the bench unless it
/// succeeds.
void transferAll(FileOperationKind kind, const std::string& source, const std::string& folder);

/// The same under somebody else's control, who may also end it.
void transferControlled(const std::string& source, const std::string& folder,
                        std::shared_ptr<OperationControl> control, std::stop_token stop);

/// One copy of `source` into `folder` as it is made on volumes that can be taken away: measured, copied,
/// flushed, read back past the cache.
void copyDurably(const std::string& source, const std::string& folder);

} // namespace ombrel::bench
