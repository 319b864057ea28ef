#include "listing/FileKind.h"

#include <cerrno>

namespace ombrel {

SymlinkTarget SymlinkTarget::fromError(int errorNumber) noexcept {
    switch (errorNumber) {
    case ENOENT:
    case ENOTDIR: return Case::broken;
    case ELOOP: return Case::loop;
    default: return inaccessible(errorNumber);
    }
}

} // namespace ombrel
