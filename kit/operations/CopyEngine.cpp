#include "operations/CopyEngine.h"

#include "listing/POSIXEntries.h"
#include "listing/POSIXFiles.h"
#include "listing/POSIXLock.h"
#include "operations/EntryMetadata.h"
#include "operations/SmallFiles.h"
#include "operations/TargetNames.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace ombrel {
namespace {

using Error = FileOperationError;
using Reach = CopyFailure::Reach;

std::unexpected<CopyFailure> cancelled() {
    return std::unexpected(CopyFailure{Error::Case::cancelled, Reach::item});
}

constexpr std::int64_t blockBytes = 512; // the unit of FileStatus::blocks
/// A file of at least so many bytes is compared while it is copied.
constexpr auto smallestAhead = 4 * PairChecker::pieceBytes;

FileContent::Settings contentSettings(const CopyEngine::Settings& settings) {
    return {settings.keepsPace, settings.findsHolesItself};
}

} // namespace

CopyEngine::CopyEngine(const Settings& settings, CopyObserver& observer)
    : settings_(settings), observer_(observer),
      content_(contentSettings(settings), [this](std::int64_t bytes) {
          copiedOfFile_ += bytes;
          if (ahead_) checkAhead();
          return observer_.copied(bytes);
      }) {}

POSIX::Place CopyEngine::sourcePlace(Index index) const noexcept {
    return {source_->fd(), index == TreeManifest::root ? sourceName_ : manifest_.name(index)};
}

POSIX::Place CopyEngine::copyPlace(Index index) const noexcept {
    return {copy_->fd(), index == TreeManifest::root ? copyName_ : manifest_.name(index)};
}

std::expected<CopiedTree, Error> CopyEngine::copy(POSIX::Place source, POSIX::Place copy) {
    if (settings_.failWithErrno) return std::unexpected(Error::from(*settings_.failWithErrno));
    sourceName_ = source.name;
    copyName_ = copy.name;
    auto from = FolderTrail::from(source.folder, FolderTrail::Mounts::cross);
    if (!from) return std::unexpected(CopyFailure::ofSource(from.error()).error);
    auto to = FolderTrail::from(copy.folder);
    if (!to) return std::unexpected(CopyFailure::ofCopy(to.error()).error);
    source_ = std::move(*from);
    copy_ = std::move(*to);
    if (const auto done = run(); !done) return std::unexpected(done.error().error);
    return CopiedTree{std::move(manifest_), std::move(top_), settings_.checker && isChecked_};
}

CopyResult<void> CopyEngine::run() {
    const auto first = POSIX::lstat(sourcePlace(TreeManifest::root));
    if (!first) return std::unexpected(CopyFailure::ofSource(first.error()));
    manifest_.record(TreeManifest::root, *first);
    ManifestWalk walk(manifest_);
    while (const auto step = walk.next())
        if (auto taken = take(walk, *step); !taken) return taken;
    return {};
}

/// One step, again and again until it succeeds, is left out, or ends the copy.
CopyResult<void> CopyEngine::take(ManifestWalk& walk, ManifestWalk::Step step) {
    using Event = ManifestWalk::Event;
    const auto index = step.index;
    // Below a folder that is entered later numbers are higher.
    if (step.event == Event::entry && index >= firstAhead_ && index - firstAhead_ < copiedAhead_.size() &&
        copiedAhead_[index - firstAhead_])
        return {};
    for (;;) {
        if (step.event != Event::leave && !observer_.begins(sourcePlace(index).name)) return cancelled();
        auto done = attempt(step);
        if (done) return done;
        // The top and a folder whose contents are there already stand for the item as a whole.
        if (done.error().reach == Reach::item || index == TreeManifest::root || step.event == Event::leave)
            return done;
        switch (observer_.failed(manifest_.path(index), done.error().error)) {
        case ErrorChoice::retry: continue;
        case ErrorChoice::cancel: return cancelled();
        case ErrorChoice::skip: break;
        }
        manifest_.leaveOut(index);
        if (step.event == Event::enter) walk.skip();
        return {};
    }
}

CopyResult<void> CopyEngine::attempt(ManifestWalk::Step step) {
    switch (step.event) {
    case ManifestWalk::Event::enter: return enterFolder(step.index);
    case ManifestWalk::Event::leave: return leaveFolder();
    case ManifestWalk::Event::entry: break;
    }
    return copyEntry(step.index);
}

CopyResult<void> CopyEngine::enterFolder(Index index) {
    const auto lostWay = [](POSIXFailure failure) {
        return std::unexpected(CopyFailure{Error::from(failure), Reach::item});
    };
    pair_.reset();
    if (const auto fault = TargetNames::faultOf(sourcePlace(index).name, *settings_.target);
        fault && index != TreeManifest::root)
        return std::unexpected(CopyFailure{Error::invalidName(*fault)});
    if (auto entered = source_->enter(sourcePlace(index).name); !entered)
        return std::unexpected(CopyFailure::ofSource(entered.error()));
    CopyResult<void> made;
    if (source_->status().identity == settings_.destination)
        made = std::unexpected(CopyFailure{Error::Case::destinationInsideSource, Reach::item});
    else if (source_->isInsideItself())
        made = std::unexpected(CopyFailure{Error::posix(ELOOP)});
    else
        made = makeFolder(index);
    if (made) return copySmallFiles(index);
    if (auto left = source_->leave(); !left) return lostWay(left.error());
    return made;
}

/// Below the entered source folder: reads it and makes its copy.
CopyResult<void> CopyEngine::makeFolder(Index index) {
    manifest_.record(index, source_->status());
    if (auto read = manifest_.readChildren(index, source_->fd(), reader_); !read)
        return std::unexpected(CopyFailure::ofSource(read.error()));
    const auto place = copyPlace(index);
    if (auto made = POSIX::makeDirectory(place, S_IRWXU); !made)
        return std::unexpected(CopyFailure::ofCopyName(made.error()));
    hasBegun_ = true;
    auto entered = copy_->enter(place.name);
    if (!entered) {
        if (POSIX::removeDirectory(place) && index == TreeManifest::root) hasBegun_ = false;
        return std::unexpected(CopyFailure{CopyFailure::ofCopy(entered.error()).error, Reach::item});
    }
    if (index != TreeManifest::root) return {};
    auto own = POSIX::open(POSIX::Place{copy_->fd(), "."}, O_RDONLY | O_DIRECTORY);
    if (!own) return std::unexpected(CopyFailure::ofCopy(own.error()));
    top_ = std::move(*own);
    return beginTop(top_.get(), copy_->status());
}

/// Those that make no trouble, on both threads.
CopyResult<void> CopyEngine::copySmallFiles(Index folder) {
    copiedAhead_.clear();
    if (!settings_.checker || settings_.flushesFiles || settings_.keepsPace ||
        settings_.support->mayPretend())
        return {};
    const TreeManifest::Children children = manifest_.children(folder);
    const Index first = children.first, end = first + children.count;
    std::vector<SmallFiles::File> files;
    std::vector<Index> indices;
    for (Index index = first; index < end; ++index) {
        if (manifest_.type(index) != S_IFREG) continue;
        files.push_back({manifest_.name(index)});
        indices.push_back(index);
    }
    if (files.size() < fewestForTwo) return {};
    if (!observer_.begins(files.front().name)) return cancelled();
    SmallFiles small({source_->fd(), copy_->fd(), settings_.target, settings_.support}, std::move(files),
                     settings_.checker->goesOn());
    const auto copied =
        small.run(*settings_.checker, [this](std::int64_t bytes) { return observer_.copied(bytes); });
    copiedAhead_.resize(children.count);
    firstAhead_ = first;
    for (std::size_t i = 0; i < indices.size(); ++i) {
        const auto& status = small.files()[i].copied;
        if (!status) continue;
        manifest_.record(indices[i], *status);
        copiedAhead_[indices[i] - first] = true;
    }
    return copied;
}

/// The first thing that was made at the destination: what others must know of it, and what is to be learned
/// from it.
CopyResult<void> CopyEngine::beginTop(int fd, const FileStatus& status) {
    (void)POSIX::tryLockShared(fd); // where there are no locks, age alone protects what is staged
    if (settings_.dropsInheritedLists) EntryMetadata::dropInherited(fd);
    settings_.support->learn(fd, status);
    return {};
}

CopyResult<void> CopyEngine::leaveFolder() {
    pair_.reset();
    if (auto carried =
            EntryMetadata::carry(source_->fd(), source_->status(), copy_->fd(), *settings_.support);
        !carried)
        return std::unexpected(CopyFailure::ofMetadata(carried.error()));
    if (settings_.flushesFiles)
        if (auto flushed = POSIX::flush(copy_->fd()); !flushed)
            return std::unexpected(CopyFailure::ofCopy(flushed.error()));
    if (auto left = source_->leave(); !left)
        return std::unexpected(CopyFailure{Error::from(left.error()), Reach::item});
    if (auto left = copy_->leave(); !left)
        return std::unexpected(CopyFailure{CopyFailure::ofCopy(left.error()).error, Reach::item});
    return {};
}

CopyResult<void> CopyEngine::copyEntry(Index index) {
    const auto place = sourcePlace(index);
    if (const auto fault = TargetNames::faultOf(place.name, *settings_.target);
        fault && index != TreeManifest::root)
        return std::unexpected(CopyFailure{Error::invalidName(*fault)});
    if (manifest_.type(index) == S_IFREG) return copyFile(index);
    const auto status = POSIX::lstat(place);
    if (!status) return std::unexpected(CopyFailure::ofSource(status.error()));
    switch (status->type()) {
    case S_IFREG: return copyFile(index);
    case S_IFLNK: return copyLink(index, *status);
    case S_IFIFO: return copyFIFO(index, *status);
    case S_IFDIR: return std::unexpected(CopyFailure{Error::Case::sourceChanged});
    default: return std::unexpected(CopyFailure{Error::posix(EOPNOTSUPP)});
    }
}

CopyResult<void> CopyEngine::copyFile(Index index) {
    const auto from = POSIX::open(sourcePlace(index), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY);
    if (!from) return std::unexpected(CopyFailure::ofSource(from.error()));
    const auto status = POSIX::status(from->get());
    if (!status) return std::unexpected(CopyFailure::ofSource(status.error()));
    if (!status->isRegular()) return std::unexpected(CopyFailure{Error::Case::sourceChanged});
    if (status->size > settings_.target->largestFile)
        return std::unexpected(CopyFailure{Error::posix(EFBIG)});
    auto to = POSIX::open(copyPlace(index), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, S_IRUSR | S_IWUSR);
    if (!to) return std::unexpected(CopyFailure::ofCopyName(to.error()));
    hasBegun_ = true;
    copiedOfFile_ = 0;
    // Of a file with holes it is not known how much of it is there while it is copied.
    const bool hasHoles = status->blocks * blockBytes < status->size;
    if (settings_.checker && !hasHoles && status->size >= smallestAhead && openPair())
        ahead_ = {.index = index, .size = status->size};
    auto filled = fillFile(index, from->get(), *status, *to);
    if (!filled) return removePartial(index, filled.error());
    manifest_.record(index, *status);
    check(index, status->size);
    return {};
}

CopyResult<void> CopyEngine::fillFile(Index index, int from, const FileStatus& status, OwnedFd& to) {
    const bool isTop = index == TreeManifest::root;
    if (isTop) {
        const auto own = POSIX::status(to.get());
        if (!own) return std::unexpected(CopyFailure::ofCopy(own.error()));
        if (auto begun = beginTop(to.get(), *own); !begun) return begun;
    }
    if (auto copied = content_.copy(from, status, to.get()); !copied) return copied;
    const auto carried = EntryMetadata::carry(from, status, to.get(), *settings_.support);
    if (!carried) return std::unexpected(CopyFailure::ofMetadata(carried.error()));
    fileHasAttributes_ = *carried;
    if (settings_.flushesFiles)
        if (auto flushed = POSIX::flush(to.get()); !flushed)
            return std::unexpected(CopyFailure::ofCopy(flushed.error()));
    if (isTop) {
        if (auto closed = POSIX::closeCopyOf(to.get()); !closed)
            return std::unexpected(CopyFailure::ofCopy(closed.error()));
        top_ = std::move(to);
        return {};
    }
    if (auto closed = POSIX::close(std::move(to)); !closed)
        return std::unexpected(CopyFailure::ofCopy(closed.error()));
    return {};
}

/// Takes a file away that was not copied whole. One that stays would be mistaken for a copy.
CopyResult<void> CopyEngine::removePartial(Index index, CopyFailure failure) {
    endCheckingAhead();
    const auto removed = POSIX::unlink(copyPlace(index));
    if (!removed) failure.reach = Reach::item;
    if (removed && index == TreeManifest::root) hasBegun_ = false;
    if (failure.error != Error::Case::cancelled && !observer_.copied(-copiedOfFile_)) return cancelled();
    return std::unexpected(std::move(failure));
}

CopyResult<void> CopyEngine::copyLink(Index index, const FileStatus& status) {
    const auto target = POSIX::readLink(sourcePlace(index));
    if (!target) return std::unexpected(CopyFailure::ofSource(target.error()));
    const auto made = POSIX::makeSymlink(*target, copyPlace(index));
    if (!made && (made.error().number == EPERM || !settings_.target->holdsSymlinks))
        return std::unexpected(CopyFailure{Error::posix(EOPNOTSUPP)});
    auto done = completeMade(made, index, status);
    if (done) manifest_.recordLink(index, *target);
    return done;
}

CopyResult<void> CopyEngine::copyFIFO(Index index, const FileStatus& status) {
    const auto made = POSIX::makeFIFO(copyPlace(index), S_IRUSR | S_IWUSR);
    if (!made && (made.error().number == EPERM || made.error().number == ENOSYS))
        return std::unexpected(CopyFailure{Error::posix(EOPNOTSUPP)});
    return completeMade(made, index, status);
}

/// Of an entry without contents, once the call that makes it has answered.
CopyResult<void> CopyEngine::completeMade(const POSIX::Result<void>& made, Index index,
                                          const FileStatus& status) {
    if (!made) return std::unexpected(CopyFailure::ofCopyName(made.error()));
    hasBegun_ = true;
    const auto carried = EntryMetadata::carry(status, copyPlace(index), *settings_.support);
    if (!carried) return removePartial(index, CopyFailure::ofMetadata(carried.error()));
    manifest_.record(index, status);
    return {};
}

bool CopyEngine::openPair() {
    if (pair_) return true;
    auto source = POSIX::open(POSIX::Place{source_->fd(), "."}, O_PATH | O_DIRECTORY);
    auto copy = POSIX::open(POSIX::Place{copy_->fd(), "."}, O_PATH | O_DIRECTORY);
    if (!source || !copy) return false;
    pair_ = std::make_shared<FolderPair>(FolderPair{std::move(*source), std::move(*copy)});
    return true;
}

void CopyEngine::checkAhead() {
    constexpr auto piece = PairChecker::pieceBytes;
    const PairChecker::Names names{sourcePlace(ahead_->index).name, copyPlace(ahead_->index).name};
    const auto end = std::min(copiedOfFile_, ahead_->size - 1);
    for (; ahead_->next + piece <= end; ahead_->next += piece)
        settings_.checker->addPiece(pair_, names, {ahead_->next, ahead_->next + piece}, {ahead_->size});
}

/// Nobody reads a copy that is to be removed, so that nothing is missed where another takes its name.
void CopyEngine::endCheckingAhead() {
    if (!ahead_) return;
    ahead_.reset();
    while (settings_.checker->compareSome()) {
    }
    settings_.checker->waitUntilIdle();
}

void CopyEngine::check(Index index, std::int64_t size) {
    if (!settings_.checker) return;
    if (!openPair()) {
        isChecked_ = false;
        return;
    }
    const auto ahead = std::exchange(ahead_, std::nullopt);
    const PairChecker::Names names{sourcePlace(index).name, copyPlace(index).name};
    // What does not know its size is looked at anew.
    if (copiedOfFile_ != size) return settings_.checker->add(pair_, names, size);
    const FilePairComparison::Known known{size, !fileHasAttributes_};
    if (!ahead) return settings_.checker->add(pair_, names, size, known);
    settings_.checker->addPiece(pair_, names, {0, PairChecker::pieceBytes}, known);
    settings_.checker->add(pair_, names, size, known, ahead->next);
}

} // namespace ombrel
