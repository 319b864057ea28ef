#include "listing/POSIXRename.h"

#include "listing/POSIXCall.h"
#include "listing/POSIXEntries.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>

namespace ombrel::POSIX {
namespace {

using SystemCall::Kind;

Result<void> renameWith(Place from, Place to, unsigned flags) {
    return done(Kind::rename, [&] { return ::renameat2(from.folder, from.name, to.folder, to.name, flags); });
}

Result<void> link(Place from, Place to) {
    return done(Kind::link, [&] { return ::linkat(from.folder, from.name, to.folder, to.name, 0); });
}

/// Whether the driver does not know the flag, or the kernel the call.
bool refusesFlags(int number) noexcept {
    return number == EINVAL || number == ENOSYS || number == EOPNOTSUPP;
}

bool hasNoHardLinks(int number) noexcept {
    return number == EPERM || number == EOPNOTSUPP || number == ENOSYS || number == EMLINK;
}

Result<void> renameFolderOntoOwn(Place from, Place to) {
    auto made = makeDirectory(to, 0700);
    if (!made) return made;
    auto renamed = rename(from, to);
    if (renamed) return renamed;
    (void)removeDirectory(to); // fails, as it should, when somebody has filled it meanwhile
    if (renamed.error().number == ENOTEMPTY) return std::unexpected(POSIXFailure{EEXIST});
    return renamed;
}

enum class Owner : std::uint8_t { us, somebodyElse, unknown };

/// Whether the name still stands for the empty file that took it.
Owner ownerOf(Place place, int placeholder) {
    // A second look, lest one passing fault leave the empty file behind.
    for (int look = 0; look < 2; ++look) {
        const auto own = status(placeholder);
        const auto found = lstat(place);
        if (!own || (!found && found.error().number != ENOENT)) continue;
        const bool isOurs = found && found->isRegular() && own->size == 0 && own->identity == found->identity;
        return isOurs ? Owner::us : Owner::somebodyElse;
    }
    return Owner::unknown;
}

Result<void> renameFileOntoOwn(Place from, Place to) {
    auto placeholder = open(to, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, 0600);
    if (!placeholder) return std::unexpected(placeholder.error());
    if (ownerOf(to, placeholder->get()) != Owner::us) return std::unexpected(POSIXFailure{EEXIST});
    auto renamed = rename(from, to);
    if (renamed || ownerOf(to, placeholder->get()) != Owner::us) return renamed;
    // Closed first: some drivers cannot remove what is open without a rename.
    *placeholder = OwnedFd();
    if (!unlink(to)) (void)unlink(to);
    return renamed;
}

Result<void> renameByLink(Place from, Place to) {
    auto linked = link(from, to);
    if (!linked) {
        if (!hasNoHardLinks(linked.error().number)) return linked;
        return renameFileOntoOwn(from, to);
    }
    auto unlinked = unlink(from);
    if (!unlinked) unlinked = unlink(from);
    if (!unlinked) (void)unlink(to);
    return unlinked;
}

/// Servers repeat a request whose answer was lost and then tell what the second one met: the name taken, or
/// nothing left to rename, by what the first one did.
bool wasDoneAllTheSame(Place from, Place to, const FileStatus& item) {
    const auto source = lstat(from);
    const auto target = lstat(to);
    return !source && source.error().number == ENOENT && target && target->identity == item.identity;
}

} // namespace

Result<void> renameExclusive(Place from, Place to) {
    const auto item = lstat(from);
    if (!item) return std::unexpected(item.error());
    auto renamed = renameWith(from, to, RENAME_NOREPLACE);
    if (renamed) return renamed;
    if (refusesFlags(renamed.error().number))
        return item->isDirectory() ? renameFolderOntoOwn(from, to) : renameByLink(from, to);
    if (wasDoneAllTheSame(from, to, *item)) return {};
    return renamed;
}

bool areOneItem(Place a, Place b) {
    const auto first = lstat(a), second = lstat(b);
    return first && second && !first->isDirectory() && first->identity == second->identity;
}

Result<void> exchange(Place a, Place b) {
    return renameWith(a, b, RENAME_EXCHANGE);
}

} // namespace ombrel::POSIX
