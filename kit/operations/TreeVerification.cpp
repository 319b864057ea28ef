#include "operations/TreeVerification.h"

#include "listing/POSIXEntries.h"
#include "operations/EntryMetadata.h"

#include <fcntl.h>

#include <utility>

namespace ombrel {

TreeVerification::TreeVerification(const TreeManifest& manifest, const MetadataSupport& support,
                                   PairChecker& checker, Settings settings, std::function<bool()> goesOn)
    : manifest_(manifest), support_(support), checker_(checker), settings_(settings),
      goesOn_(std::move(goesOn)) {}

POSIX::Place TreeVerification::sourcePlace(Index index) const noexcept {
    return {source_->fd(), index == TreeManifest::root ? sourceName_ : manifest_.name(index)};
}

POSIX::Place TreeVerification::copyPlace(Index index) const noexcept {
    return {copy_->fd(), index == TreeManifest::root ? copyName_ : manifest_.name(index)};
}

Verification TreeVerification::verify(POSIX::Place source, POSIX::Place copy) {
    sourceName_ = source.name;
    copyName_ = copy.name;
    auto from = FolderTrail::from(source.folder, FolderTrail::Mounts::cross);
    auto to = FolderTrail::from(copy.folder);
    if (!from || !to) return Verification::different;
    source_ = std::move(*from);
    copy_ = std::move(*to);
    const Verification walked = walk();
    if (walked == Verification::different) {
        checker_.abandon();
        return walked;
    }
    return worse(walked, checker_.finish());
}

Verification TreeVerification::walk() {
    Verification worst = Verification::identical;
    ManifestWalk steps(manifest_);
    while (const auto step = steps.next()) {
        if (worst == Verification::different || !goesOn_()) return Verification::different;
        switch (step->event) {
        case ManifestWalk::Event::enter: worst = worse(worst, enter(step->index)); break;
        case ManifestWalk::Event::entry: worst = worse(worst, compareEntry(step->index)); break;
        case ManifestWalk::Event::leave:
            handOverFiles();
            pair_.reset();
            if (!source_->leave() || !copy_->leave()) return Verification::different;
        }
    }
    return worst;
}

Verification TreeVerification::enter(Index index) {
    handOverFiles();
    pair_.reset();
    if (!source_->enter(sourcePlace(index).name) || !copy_->enter(copyPlace(index).name))
        return Verification::different;
    const auto [first, count] = manifest_.children(index);
    std::size_t copied = count;
    if (manifest_.holdsLeftOut(index))
        for (Index child = first; child < first + count; ++child)
            copied -= manifest_.isLeftOut(child) ? 1 : 0;
    // Each recorded name is looked up on both sides, so that equal numbers mean equal names.
    if (!manifest_.isStill(index, source_->status(), settings_.likeness) || !hasNames(source_->fd(), count) ||
        !hasNames(copy_->fd(), copied))
        return Verification::different;
    const auto same =
        EntryMetadata::areEqual(source_->fd(), source_->status(), copy_->fd(), copy_->status(), support_);
    if (!same) return Verification::different;
    return *same ? Verification::identical : Verification::metadataDiffers;
}

bool TreeVerification::hasNames(int folder, std::size_t expected) {
    if (!POSIX::rewind(folder)) return false;
    reader_.begin(folder);
    for (std::size_t found = 0;; ++found) {
        const auto next = reader_.next();
        if (!next) return false;
        if (!*next) return found == expected;
        if (found == expected) return false;
    }
}

Verification TreeVerification::compareEntry(Index index) {
    // The top has another name than the manifest knows.
    if (manifest_.type(index) == S_IFREG && index != TreeManifest::root) return addFile(index);
    const auto source = POSIX::lstat(sourcePlace(index));
    const auto copy = POSIX::lstat(copyPlace(index));
    if (!source || !copy || source->type() != copy->type() || source->type() != manifest_.type(index))
        return Verification::different;
    if (source->isRegular()) {
        if (isAsItWas(index, *source, *copy)) return Verification::identical;
        if (!openPair()) return Verification::different;
        checker_.add(pair_, {sourcePlace(index).name, copyPlace(index).name}, source->size);
        return Verification::identical;
    }
    if (source->isSymlink()) {
        const auto target = POSIX::readLink(sourcePlace(index));
        const auto copied = POSIX::readLink(copyPlace(index));
        return target && copied && *target == *copied ? Verification::identical : Verification::different;
    }
    return EntryMetadata::haveEqualModes(*source, *copy, support_) ? Verification::identical
                                                                   : Verification::metadataDiffers;
}

bool TreeVerification::openPair() {
    if (pair_) return true;
    auto from = POSIX::open(POSIX::Place{source_->fd(), "."}, O_PATH | O_DIRECTORY);
    auto to = POSIX::open(POSIX::Place{copy_->fd(), "."}, O_PATH | O_DIRECTORY);
    if (!from || !to) return false;
    pair_ = std::make_shared<FolderPair>(FolderPair{std::move(*from), std::move(*to)});
    return true;
}

/// Both threads look at files, a few at a time. Contents that must be compared are their own batch.
Verification TreeVerification::addFile(Index index) {
    if (!openPair()) return Verification::different;
    if (settings_.contents == Contents::all) {
        checker_.add(pair_, {manifest_.name(index), manifest_.name(index)}, manifest_.size(index));
        return Verification::identical;
    }
    if (files_.end != index || files_.end - files_.first == filesPerBatch) {
        handOverFiles();
        files_.first = index;
    }
    files_.end = index + 1;
    return Verification::identical;
}

void TreeVerification::handOverFiles() {
    const auto files = std::exchange(files_, {});
    if (files.first == files.end) return;
    checker_.add([this, folders = pair_, files](FilePairComparison& comparison) {
        return compareFiles(*folders, files, comparison);
    });
}

/// On any thread.
Verification TreeVerification::compareFiles(const FolderPair& folders, Files files,
                                            FilePairComparison& comparison) const {
    Verification worst = Verification::identical;
    for (Index index = files.first; index < files.end && worst != Verification::different; ++index) {
        const POSIX::Place from{folders.source.get(), manifest_.name(index)};
        const POSIX::Place to{folders.copy.get(), manifest_.name(index)};
        const auto source = POSIX::lstat(from);
        const auto copy = POSIX::lstat(to);
        if (!source || !copy || !source->isRegular() || !copy->isRegular()) return Verification::different;
        if (!isAsItWas(index, *source, *copy))
            worst = worse(worst, comparison.compare(from, to, {}, support_));
    }
    return worst;
}

/// So that nothing of what the checker has seen can have changed.
bool TreeVerification::isAsItWas(Index index, const FileStatus& source, const FileStatus& copy) const {
    return settings_.contents == Contents::changed &&
           manifest_.isUntouched(index, source, settings_.likeness) && copy.size == manifest_.size(index) &&
           copy.modified == manifest_.modified(index) &&
           EntryMetadata::haveEqualModes(source, copy, support_);
}

Verification verifyTrees(POSIX::Place source, POSIX::Place copy, const MetadataSupport& support) {
    const auto manifest = TreeManifest::capture(source);
    if (!manifest) return Verification::different;
    const auto always = [] { return true; };
    PairChecker checker({}, support, always);
    return TreeVerification(*manifest, support, checker, {}, always).verify(source, copy);
}

} // namespace ombrel
