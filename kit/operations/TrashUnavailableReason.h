#pragma once

#include "base/RawValue.h"
#include "base/Text.h"

#include <cstdint>

namespace ombrel {

/// Why an item cannot be moved to the trash.
enum class TrashUnavailableReason : std::uint8_t {
    inTrash,      ///< it lies in a trash already
    isTrash,      ///< it is a trash folder
    isMountPoint, ///< something is mounted on it
    isHome,       ///< it is the home folder
    holdsTrash,   ///< the trash it would go to, or the home folder, lies inside it
    readOnly,     ///< its volume is read-only
    noPermission, ///< no trash folder may be made on its volume
    unsafe,       ///< the volume's trash folder is a link, is not protected or belongs to somebody else
    notSupported, ///< its volume cannot hold a trash, or cannot take this item in it
    noRecord,     ///< it is in the trash, and where it was is not known
};

template <>
struct RawValues<TrashUnavailableReason> {
    static constexpr std::string_view names[] = {"inTrash",      "isTrash",  "isMountPoint", "isHome",
                                                 "holdsTrash",   "readOnly", "noPermission", "unsafe",
                                                 "notSupported", "noRecord"};
};

/// One sentence.
[[nodiscard]] Text textOf(TrashUnavailableReason reason);

} // namespace ombrel
