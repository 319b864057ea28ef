#pragma once

#include "listing/FileSystemTraits.h"
#include "operations/ItemNames.h"

#include <optional>
#include <string_view>

/// What a file system lets its entries be called.
namespace ombrel::TargetNames {

/// The rule that a name (bytes) breaks there: `tooLong`, or `windowsCharacters` for one that the format
/// forbids or would silently change. Nothing when it can be had as it stands.
[[nodiscard]] std::optional<InvalidNameReason> faultOf(std::string_view name, const FileSystemTraits& traits);

} // namespace ombrel::TargetNames
