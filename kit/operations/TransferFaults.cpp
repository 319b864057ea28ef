#include "operations/TransferFaults.h"

#include "listing/POSIXEntries.h"

#include <fcntl.h>

#include <string>

namespace ombrel::TransferFaults {

void corrupt(POSIX::Place copy, const TreeManifest& manifest) {
    for (TreeManifest::Index index = 0; index < manifest.size(); ++index) {
        if (manifest.type(index) != S_IFREG || manifest.isLeftOut(index)) continue;
        const auto path = index == TreeManifest::root ? copy.name : copy.name + ("/" + manifest.path(index));
        const auto file = POSIX::openWithoutLinks(copy.folder, path, O_WRONLY);
        if (file) (void)POSIX::writeAll(file->get(), "corrupted");
        return;
    }
}

void mutate(POSIX::Place source) {
    const auto status = POSIX::lstat(source);
    if (!status) return;
    if (!status->isDirectory()) {
        const auto file = POSIX::open(source, O_WRONLY | O_APPEND | O_NOFOLLOW | O_NONBLOCK);
        if (file) (void)POSIX::writeAll(file->get(), "changed");
        return;
    }
    const auto folder = POSIX::open(source, O_PATH | O_DIRECTORY | O_NOFOLLOW);
    if (!folder) return;
    const auto file = POSIX::open(POSIX::Place{folder->get(), "added-during-copy.txt"},
                                  O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, 0666);
    if (file) (void)POSIX::writeAll(file->get(), "added");
}

} // namespace ombrel::TransferFaults
