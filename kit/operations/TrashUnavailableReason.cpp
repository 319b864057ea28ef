#include "operations/TrashUnavailableReason.h"

#include <utility>

namespace ombrel {

Text textOf(TrashUnavailableReason reason) {
    switch (reason) {
    case TrashUnavailableReason::inTrash: return {"trash.unavailable.inTrash"};
    case TrashUnavailableReason::isTrash: return {"trash.unavailable.isTrash"};
    case TrashUnavailableReason::isMountPoint: return {"trash.unavailable.isMountPoint"};
    case TrashUnavailableReason::isHome: return {"trash.unavailable.isHome"};
    case TrashUnavailableReason::holdsTrash: return {"trash.unavailable.holdsTrash"};
    case TrashUnavailableReason::readOnly: return {"trash.unavailable.readOnly"};
    case TrashUnavailableReason::noPermission: return {"trash.unavailable.noPermission"};
    case TrashUnavailableReason::unsafe: return {"trash.unavailable.unsafe"};
    case TrashUnavailableReason::notSupported: return {"trash.unavailable.notSupported"};
    case TrashUnavailableReason::noRecord: return {"trash.unrecorded"};
    }
    std::unreachable();
}

} // namespace ombrel
