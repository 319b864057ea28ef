#include "operations/SourceRemoval.h"

#include "listing/POSIXEntries.h"
#include "operations/TreeVerification.h"

#include <cerrno>
#include <utility>

namespace ombrel {
namespace {

using Error = FileOperationError;

Error changed() {
    return Error::Case::sourceChanged;
}

/// What a failure to look at the source says: it is not there any more, or it cannot be removed.
Error fromLook(POSIXFailure failure) {
    const int number = failure.number;
    if (number == ENOENT || number == ENOTDIR || number == ELOOP || number == ESTALE) return changed();
    return Error::sourceRemovalFailed(number);
}

} // namespace

SourceRemoval::SourceRemoval(const TreeManifest& manifest, Settings settings, std::function<bool()> goesOn)
    : manifest_(manifest), settings_(settings), goesOn_(std::move(goesOn)) {}

POSIX::Place SourceRemoval::place(Index index) const noexcept {
    return {trail_->fd(), index == TreeManifest::root ? source_.name : manifest_.name(index)};
}

std::optional<Error> SourceRemoval::remove(POSIX::Place source, POSIX::Place copy) {
    source_ = source;
    auto trail = FolderTrail::from(source.folder);
    if (!trail) return fromLook(trail.error());
    trail_ = std::move(*trail);
    if (const auto writable = POSIX::checkWritable(POSIX::Place{trail_->fd(), "."}); !writable)
        return Error::sourceRemovalFailed(writable.error().number);
    if (auto failure = check()) return failure;
    if (settings_.rechecksContents)
        if (auto failure = checkContents(copy)) return failure;
    if (settings_.fails) return Error::sourceRemovalFailed(EIO);
    if (auto failure = checkPlace(copy)) return failure;
    return removeAll();
}

/// The copy still has the name that it was given.
SourceRemoval::Answer SourceRemoval::checkPlace(POSIX::Place copy) const {
    if (!settings_.copy) return std::nullopt;
    const auto there = POSIX::lstat(copy);
    if (!there && there.error().number == ENOENT) return Error(Error::Case::destinationMissing);
    if (!there) return Error::sourceRemovalFailed(there.error().number);
    if (there->identity != *settings_.copy) return Error(Error::Case::destinationExists);
    return std::nullopt;
}

SourceRemoval::Answer SourceRemoval::check() {
    ManifestWalk steps(manifest_);
    while (const auto step = steps.next()) {
        if (!goesOn_()) return Error(Error::Case::cancelled);
        Answer failure;
        switch (step->event) {
        case ManifestWalk::Event::enter: failure = checkFolder(step->index); break;
        case ManifestWalk::Event::entry: failure = checkEntry(step->index); break;
        case ManifestWalk::Event::leave:
            if (const auto left = trail_->leave(); !left) failure = fromLook(left.error());
        }
        if (failure) return failure;
    }
    return std::nullopt;
}

SourceRemoval::Answer SourceRemoval::enter(Index index) {
    if (const auto entered = trail_->enter(place(index).name); !entered) return fromLook(entered.error());
    if (!manifest_.isStill(index, trail_->status(), settings_.likeness)) return changed();
    return std::nullopt;
}

SourceRemoval::Answer SourceRemoval::checkFolder(Index index) {
    if (auto failure = enter(index)) return failure;
    const auto count = manifest_.children(index).count;
    if (!hasNames(count)) return changed();
    if (count == 0) return std::nullopt;
    if (const auto writable = POSIX::checkWritable(POSIX::Place{trail_->fd(), "."}); !writable)
        return Error::sourceRemovalFailed(writable.error().number);
    return std::nullopt;
}

bool SourceRemoval::hasNames(std::size_t expected) {
    if (!POSIX::rewind(trail_->fd())) return false;
    reader_.begin(trail_->fd());
    for (std::size_t found = 0;; ++found) {
        const auto next = reader_.next();
        if (!next) return false;
        if (!*next) return found == expected;
    }
}

SourceRemoval::Answer SourceRemoval::checkEntry(Index index) {
    const auto status = POSIX::lstat(place(index));
    if (!status) return fromLook(status.error());
    if (!manifest_.isStill(index, *status, settings_.likeness)) return changed();
    if (!status->isSymlink()) return std::nullopt;
    const auto target = POSIX::readLink(place(index));
    if (!target) return fromLook(target.error());
    if (*target != manifest_.linkTarget(index)) return changed();
    return std::nullopt;
}

SourceRemoval::Answer SourceRemoval::checkContents(POSIX::Place copy) {
    // Only what the files hold counts here, so nothing else is asked of the copy's file system.
    FileSystemTraits nothingElse;
    nothingElse.holdsModes = nothingElse.holdsAttributes = nothingElse.holdsACLs = false;
    const MetadataSupport support(nothingElse);
    PairChecker checker({.comparesMetadata = false}, support, goesOn_);
    TreeVerification verification(manifest_, support, checker,
                                  {TreeVerification::Contents::all, settings_.likeness}, goesOn_);
    if (verification.verify(source_, copy) != Verification::different) return std::nullopt;
    return goesOn_() ? changed() : Error(Error::Case::cancelled);
}

SourceRemoval::Answer SourceRemoval::removeAll() {
    ManifestWalk steps(manifest_);
    while (const auto step = steps.next()) {
        if (!goesOn_()) return Error(Error::Case::cancelled);
        Answer failure;
        switch (step->event) {
        case ManifestWalk::Event::enter: failure = enter(step->index); break;
        case ManifestWalk::Event::entry: failure = removeEntry(step->index); break;
        case ManifestWalk::Event::leave: failure = removeFolder(step->index); break;
        }
        if (failure) return failure;
    }
    return std::nullopt;
}

SourceRemoval::Answer SourceRemoval::removeEntry(Index index) {
    if (auto failure = checkEntry(index)) return failure;
    if (const auto removed = POSIX::unlink(place(index)); !removed)
        return Error::sourceRemovalFailed(removed.error().number);
    return std::nullopt;
}

SourceRemoval::Answer SourceRemoval::removeFolder(Index index) {
    if (const auto left = trail_->leave(); !left) return fromLook(left.error());
    if (manifest_.holdsLeftOut(index)) return std::nullopt;
    const auto removed = POSIX::removeDirectory(place(index));
    if (removed) return std::nullopt;
    const int number = removed.error().number;
    if (number == ENOTEMPTY || number == EEXIST) return changed();
    return Error::sourceRemovalFailed(number);
}

} // namespace ombrel
