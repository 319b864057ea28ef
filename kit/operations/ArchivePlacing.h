#pragma once

#include "listing/POSIX.h"
#include "operations/FileOperationError.h"
#include "operations/ItemNames.h"

#include <expected>
#include <string>

namespace ombrel {

/// Gives `item` the name `preferred` (bytes) in an open folder, or that name with the first number that is
/// free; nothing that is there is ever replaced. Waits until the new name is on the medium. Answers the name.
[[nodiscard]] std::expected<std::string, FileOperationError>
placeUnderFreeName(POSIX::Place item, int folder, const std::string& preferred, KeepExtension keep);

} // namespace ombrel
