#pragma once

#include "listing/FileReference.h"
#include "operations/ItemOutcome.h"

#include <string_view>

namespace ombrel {

/// Gives one item another name in its folder. Nothing is ever overwritten: the one plain rename is that of an
/// item onto itself, where the new name differs only by letter case or normalisation and the file system does
/// not tell the two apart. The present name is a success that changes nothing. Blocking.
[[nodiscard]] ItemOutcome renameOne(const FileReference& reference, std::string_view name);

} // namespace ombrel
