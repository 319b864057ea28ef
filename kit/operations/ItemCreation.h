#pragma once

#include "base/FileURL.h"
#include "operations/ItemOutcome.h"

#include <cstdint>
#include <string_view>

namespace ombrel {

enum class NewItem : std::uint8_t { folder, file };

/// Makes an item under the first free name: `preferredName`, then numbered 2 to 500. Every name is taken with
/// an exclusive call. A file receives `contents`; one that could not be written whole is not left behind.
/// `sourceMissing` when the folder is gone, `destinationExists` when all names are taken. Blocking.
[[nodiscard]] ItemOutcome createExclusive(const FileURL& folder, std::string_view preferredName, NewItem item,
                                          std::string_view contents = {});

/// Makes a symbolic link to `item` in a folder, under the item's own name or the first free one after it. Its
/// target is the item's whole path. `destinationMissing` when the folder is gone. Blocking.
[[nodiscard]] ItemOutcome createLink(const FileURL& item, const FileURL& folder);

} // namespace ombrel
