#include "operations/Relocation.h"

#include "listing/POSIXEntries.h"
#include "listing/POSIXRename.h"

#include <sys/stat.h>

#include <cerrno>

namespace ombrel {

POSIX::Result<void> relocate(POSIX::Place from, const FileStatus& item, POSIX::Place to) {
    auto renamed = POSIX::renameExclusive(from, to);
    const bool isLocked = item.isDirectory() && (item.permissions() & S_IWUSR) == 0;
    if (renamed || renamed.error().number != EACCES || !isLocked) return renamed;
    // Only the owner can; to others the refusal stands.
    if (!POSIX::changeMode(from, item.permissions() | S_IWUSR)) return renamed;
    renamed = POSIX::renameExclusive(from, to);
    (void)POSIX::changeMode(renamed ? to : from, item.permissions());
    return renamed;
}

bool gaveBackAnother(POSIX::Place from, const FileStatus& item, bool numbersLast, POSIX::Place to) {
    const auto moved = POSIX::lstat(to);
    if (!moved || !numbersLast || moved->identity == item.identity) return false;
    return relocate(to, *moved, from).has_value();
}

} // namespace ombrel
