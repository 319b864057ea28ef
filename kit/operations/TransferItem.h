#pragma once

#include "listing/FileReference.h"

#include <optional>
#include <string>

namespace ombrel {

/// One item that is to be copied or moved.
struct TransferItem {
    FileReference reference;
    /// The name (bytes) it is to have at the destination, where that is not its own: an undo brings things
    /// back under the names they had.
    std::optional<std::string> name = std::nullopt;

    TransferItem(FileReference item) : reference(std::move(item)) {}
    TransferItem(FileReference item, std::string newName)
        : reference(std::move(item)), name(std::move(newName)) {}
};

} // namespace ombrel
