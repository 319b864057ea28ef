#include "operations/ItemTransfer.h"

#include "listing/MountTable.h"
#include "listing/POSIXEntries.h"
#include "listing/POSIXFiles.h"
#include "listing/POSIXRename.h"
#include "operations/ItemNames.h"
#include "operations/Relocation.h"
#include "operations/TargetNames.h"
#include "operations/TransferFaults.h"
#include "operations/TreeVerification.h"

#include <fcntl.h>

#include <cerrno>
#include <utility>

namespace ombrel {
namespace {

using Error = FileOperationError;
using Phase = OperationProgress::Phase;

ItemFacts factsOf(const FileStatus& status) {
    return {status.isRegular() ? std::optional(status.size) : std::nullopt, status.modified};
}

FileURL::Mark markOf(bool isFolder) noexcept {
    return isFolder ? FileURL::Mark::directory : FileURL::Mark::none;
}

/// Whether trying again may help.
bool mayBeRetried(const Error& error) noexcept {
    switch (error.which()) {
    case Error::Case::invalidName:
    case Error::Case::sameLocation:
    case Error::Case::destinationInsideSource: return false;
    default: return true;
    }
}

} // namespace

ItemTransfer::ItemTransfer(TransferRun& run, TransferSettlement& settlement,
                           std::shared_ptr<TransferDestination> destination, const TransferItem& item,
                           TransferMeasure& measure)
    : run_(run), settlement_(settlement), destination_(std::move(destination)), item_(item),
      measure_(measure), replaced_(*destination_, left_) {}

FileURL ItemTransfer::targetURL() const {
    return destination_->url().appending(target_.name, markOf(isFolder()));
}

POSIX::Place ItemTransfer::targetPlace() const noexcept {
    return {destination_->fd(), target_.name.c_str()};
}

void ItemTransfer::finish(ItemOutcome outcome, ErrorFacts facts) {
    run_.results.push_back({item_.reference.url, std::move(outcome), std::move(facts)});
}

/// The item has its place. Its result is completed now or once it is settled.
void ItemTransfer::finishPlaced(ItemOutcome outcome) {
    finish(std::move(outcome));
    const auto placed = POSIX::lstat(targetPlace());
    if (!placed) return;
    run_.noteBrought(placed->identity);
    run_.results.back().placed = {placed->identity, placed->type(), placed->size, placed->modified};
}

ItemTransfer::End ItemTransfer::transfer() {
    for (;;) {
        const auto done = attempt();
        if (done && *done == Attempt::merge) return End::merge;
        if (done) {
            if (*done == Attempt::completed) finishPlaced(ItemOutcome::completed(targetURL()));
            if (*done == Attempt::skipped) finish(ItemOutcome::skipped());
            if (*done == Attempt::cancelled) finish(ItemOutcome::cancelled());
            if (*done == Attempt::completed || *done == Attempt::settled)
                for (const auto& result : run_.leftOut())
                    run_.results.push_back(result);
            return end();
        }
        run_.dropItem();
        const auto& [error, facts] = done.error();
        const bool isOver = error == Error::Case::cancelled;
        const auto destination = destination_->url().appending(
            target_.name.empty() ? std::string(item_.reference.url.name()) : target_.name);
        auto choice = ErrorChoice::cancel;
        if (!isOver)
            choice = run_.ask(
                ErrorContext{run_.kind, item_.reference.url, destination, error, mayBeRetried(error), facts});
        if (choice == ErrorChoice::retry) continue;
        // What was left behind is told, whatever the answer was.
        const bool isTold =
            choice == ErrorChoice::skip || error.which() == Error::Case::partialCopyLeftBehind;
        isTold ? finish(ItemOutcome::failed(error), facts) : finish(ItemOutcome::cancelled());
        return end();
    }
}

/// One result for each name of ours that is still there.
ItemTransfer::End ItemTransfer::end() {
    replaced_.giveUp();
    for (const auto& [place, name] : left_)
        run_.results.push_back({place, ItemOutcome::failed(Error::partialCopyLeftBehind(name))});
    return End::done;
}

ItemTransfer::Result<ItemTransfer::Attempt> ItemTransfer::attempt() {
    replaced_.giveUp();
    target_ = {};
    keepsBoth_ = false;
    if (auto confirmed = confirm(); !confirmed) return std::unexpected(confirmed.error());
    if (isFolder() && isWithin(destination_->fd(), source_->status().identity))
        return failure(Error::Case::destinationInsideSource);
    if (!destination_->isStillThere()) return failure(Error::Case::destinationMissing);
    const auto found = findTarget();
    if (!found) return std::unexpected(found.error());
    if (const auto end = ending(*found)) return *end;
    if (run_.kind == FileOperationKind::move && mayRename()) {
        const auto renamed = rename();
        if (!renamed) return std::unexpected(renamed.error());
        if (*renamed) return **renamed;
    }
    return copy();
}

/// The source is still the one that was picked.
ItemTransfer::Result<void> ItemTransfer::confirm() {
    const auto& url = item_.reference.url;
    if (url.isRoot() || url.name() == "..") return failure(Error::invalidName(InvalidNameReason::reserved));
    auto source = ConfirmedSource::of(item_.reference);
    if (!source) return failure(source.error());
    source_ = std::move(*source);
    const auto traits = MountTable::current().traits(source_->status());
    isCoarse_ = traits.hasCoarseTimes;
    sourceNumbersLast_ = !traits.renumbersInodes;
    return {};
}

std::optional<ItemTransfer::Attempt> ItemTransfer::ending(Found found) const noexcept {
    switch (found) {
    case Found::merge: return Attempt::merge;
    case Found::skip: return Attempt::skipped;
    case Found::cancel: return Attempt::cancelled;
    case Found::name: break;
    }
    return std::nullopt;
}

// ---- The name

ItemTransfer::Result<ItemTransfer::Found> ItemTransfer::findTarget() {
    target_ = {item_.name.value_or(source_->name()), std::nullopt};
    if (const auto reason = ItemNames::validate(target_.name, WindowsRules::off);
        reason && reason != InvalidNameReason::empty)
        return failure(Error::invalidName(*reason));
    const auto parent = POSIX::status(source_->folder().get());
    const bool isOwnFolder = parent && parent->identity == destination_->status().identity;
    if (isOwnFolder && target_.name == source_->name()) {
        if (run_.kind == FileOperationKind::move) return failure(Error::Case::sameLocation);
        const auto name = freeName(duplicateName(), 1);
        if (!name) return std::unexpected(name.error());
        target_.name = *name;
    }
    if (keepsBoth_) {
        const auto name = freeName(target_.name, 2);
        if (!name) return std::unexpected(name.error());
        target_.name = *name;
        return Found::name;
    }
    const auto existing = POSIX::lstat(targetPlace());
    if (existing) return resolve(*existing);
    if (existing.error().number == ENOENT) return Found::name;
    if (existing.error().number == ENAMETOOLONG)
        return failure(Error::invalidName(InvalidNameReason::tooLong));
    return std::unexpected(fromDestination(existing.error()));
}

/// The name is taken: asks what to do.
ItemTransfer::Result<ItemTransfer::Found> ItemTransfer::resolve(const FileStatus& existing) {
    const bool areFolders = isFolder() && existing.isDirectory();
    if (areFolders && existing.identity == source_->status().identity)
        return failure(Error::Case::sameLocation);
    // What holds the source cannot make way for it.
    if (existing.isDirectory() && !areFolders && isWithin(source_->folder().get(), existing.identity))
        return failure(Error::Case::destinationExists);
    const auto both = freeName(target_.name, 2);
    ConflictContext context{run_.kind, item_.reference.url,
                            destination_->url().appending(target_.name, markOf(existing.isDirectory()))};
    context.sourceIsDirectory = isFolder();
    context.existingIsDirectory = existing.isDirectory();
    context.sourceFacts = factsOf(source_->status());
    context.existingFacts = factsOf(existing);
    if (both) context.keepBothName = *both;
    switch (run_.ask(context, existing.identity)) {
    case ConflictChoice::skip: return Found::skip;
    case ConflictChoice::cancel: return Found::cancel;
    case ConflictChoice::keepBoth: {
        // The question may have stood for long.
        const auto now = freeName(target_.name, 2);
        if (!now) return std::unexpected(now.error());
        target_ = {*now, std::nullopt};
        keepsBoth_ = true;
        return Found::name;
    }
    case ConflictChoice::replace: break;
    }
    if (areFolders) return Found::merge;
    target_.replaced = existing;
    return Found::name;
}

/// `name` itself when `first` is 1 and it is free, else the first free one of its numbered forms.
ItemTransfer::Result<std::string> ItemTransfer::freeName(const std::string& name, int first) const {
    constexpr int lastNumber = 100'000;
    const auto keep = isFolder() ? KeepExtension::no : KeepExtension::yes;
    for (int number = first; number <= lastNumber; ++number) {
        auto candidate = number == 1 ? name : ItemNames::numbered(name, number, keep);
        const auto taken = POSIX::lstat(POSIX::Place{destination_->fd(), candidate.c_str()});
        if (taken) continue;
        if (taken.error().number == ENOENT) return candidate;
        if (taken.error().number == ENAMETOOLONG)
            return failure(Error::invalidName(InvalidNameReason::tooLong));
        return std::unexpected(fromDestination(taken.error()));
    }
    return failure(Error::Case::destinationExists);
}

std::string ItemTransfer::duplicateName() const {
    const auto keep = isFolder() ? KeepExtension::no : KeepExtension::yes;
    const auto split = ItemNames::splitExtension(target_.name, keep);
    std::string name(split.base);
    name.append(Texts::localized("name.copySuffix"));
    if (split.extension) name.append(".").append(*split.extension);
    return name;
}

ItemTransfer::Failure ItemTransfer::fromDestination(POSIXFailure failure) const {
    return {CopyFailure::ofCopy(failure).error};
}

// ---- Moving by name

bool ItemTransfer::mayRename() const noexcept {
    return source_->status().identity.device == destination_->status().identity.device;
}

/// Nothing when the item has to be copied after all.
ItemTransfer::Result<std::optional<ItemTransfer::Attempt>> ItemTransfer::rename() {
    if (const auto fault = TargetNames::faultOf(target_.name, destination_->volume().traits))
        return failure(Error::invalidName(*fault));
    for (;;) {
        if (target_.replaced) {
            replaced_.begin(target_.name, *target_.replaced, targetURL());
            const auto renamed = replaced_.renameOver(*source_, sourceNumbersLast_);
            if (renamed) return Attempt::completed;
            const Error& error = renamed.error();
            if (error == Error::posix(EXDEV)) return std::nullopt;
            if (error.which() == Error::Case::sourceRemovalFailed) return keepSource(error);
            if (error != Error::Case::destinationExists) return failure(error);
        } else {
            const auto renamed = relocate(source_->place(), source_->status(), targetPlace());
            if (renamed) {
                const bool isOther =
                    gaveBackAnother(source_->place(), source_->status(), sourceNumbersLast_, targetPlace());
                if (isOther) return failure(Error::Case::sourceChanged);
                return Attempt::completed;
            }
            const int number = renamed.error().number;
            if (number == EXDEV) return std::nullopt;
            if (number == ENOENT)
                return failure(destination_->isStillThere() ? Error::Case::sourceMissing
                                                            : Error::Case::destinationMissing);
            if (number != EEXIST && number != ENOTEMPTY)
                return POSIX::areOneItem(source_->place(), targetPlace())
                           ? keepSource(Error::sourceRemovalFailed(number))
                           : failure(Error::from(renamed.error()));
        }
        // Something has taken the name meanwhile, or what has it is not what was asked about.
        const auto found = findTarget();
        if (!found) return std::unexpected(found.error());
        if (const auto end = ending(*found)) return *end;
    }
}

/// The item has its new name, and the old one could not be removed.
ItemTransfer::Result<std::optional<ItemTransfer::Attempt>> ItemTransfer::keepSource(Error reason) {
    finish(ItemOutcome::copiedSourceKept(targetURL(), std::move(reason)));
    return Attempt::settled;
}

// ---- Copying

ItemTransfer::Result<ItemTransfer::Attempt> ItemTransfer::copy() {
    const auto& traits = destination_->volume().traits;
    if (const auto fault = TargetNames::faultOf(target_.name, traits))
        return failure(Error::invalidName(*fault));
    if (source_->status().isRegular() && source_->status().size > traits.largestFile)
        return failure(Error::posix(EFBIG));
    if (!measure_.isKnown) {
        measure_ = TransferMeasure::of(item_.reference, traits, run_.goesOnAnywhere());
        run_.progress().totalBytes += measure_.bytes;
    }
    auto leftOut = askAboutRefusals();
    if (!leftOut) return std::unexpected(leftOut.error());
    if (!*leftOut) return Attempt::cancelled;
    if (auto room = checkRoom(); !room) return std::unexpected(room.error());

    run_.enter(Phase::copying);
    run_.beginItem(item_.reference.url, targetURL(), std::move(**leftOut));
    StagedItem staged(destination_->fd());
    auto done = stage(staged);
    destination_->volume().checker.abandon();
    run_.enter(Phase::copying);
    if (staged.remove()) {
        replaced_.giveUp();
        return failure(Error::partialCopyLeftBehind(staged.name()));
    }
    if (done && (*done == Attempt::completed || *done == Attempt::settled)) run_.keepItem();
    return done;
}

/// Tells of entries that cannot be had at the destination before anything is copied. Nothing when the job was
/// cancelled.
ItemTransfer::Result<std::optional<std::map<std::string, Error>>> ItemTransfer::askAboutRefusals() {
    std::map<std::string, Error> leftOut;
    for (std::size_t i = 0; i < measure_.refusals.size(); ++i) {
        const auto& [path, error] = measure_.refusals[i];
        const auto below = [&](const FileURL& top) {
            return FileURL::fromPath(top.path() + "/" + path).value_or(top);
        };
        switch (run_.ask(ErrorContext{run_.kind, below(item_.reference.url), below(targetURL()), error})) {
        case ErrorChoice::skip: leftOut.emplace(path, error); break;
        case ErrorChoice::cancel: return std::nullopt;
        case ErrorChoice::retry:
            run_.progress().totalBytes -= measure_.bytes;
            measure_ =
                TransferMeasure::of(item_.reference, destination_->volume().traits, run_.goesOnAnywhere());
            run_.progress().totalBytes += measure_.bytes;
            leftOut.clear();
            i = static_cast<std::size_t>(-1);
        }
    }
    return leftOut;
}

ItemTransfer::Result<void> ItemTransfer::checkRoom() const {
    auto needed = measure_.allocated;
    // An entry of a folder that is merged was measured with the others.
    if (source_->status().isRegular()) needed = TransferMeasure::roomOf(source_->status());
    const auto space = POSIX::space(destination_->fd());
    if (!space || needed <= space->available) return {};
    Failure full{Error::Case::noSpace};
    full.facts.missingBytes = needed - space->available;
    return std::unexpected(std::move(full));
}

/// From the first byte under the hidden name to the last under the real one.
ItemTransfer::Result<ItemTransfer::Attempt> ItemTransfer::stage(StagedItem& staged) {
    auto copied = copyTo(staged);
    if (!copied) return std::unexpected(copied.error());
    if (run_.faults.corruptStagedCopy) TransferFaults::corrupt(staged.place(), copied->manifest);
    if (run_.faults.mutateSourceAfterCopy) TransferFaults::mutate(source_->place());
    if (const auto again = ConfirmedSource::of(item_.reference); !again) return failure(again.error());
    if (auto verified = verify(*copied, staged); !verified) return std::unexpected(verified.error());
    if (!destination_->isStillThere()) return failure(Error::Case::destinationMissing);
    return place(std::move(*copied), staged);
}

ItemTransfer::Result<CopiedTree> ItemTransfer::copyTo(StagedItem& staged) {
    auto& volume = destination_->volume();
    CopyEngine::Settings settings;
    settings.target = &volume.traits;
    settings.support = &volume.support;
    settings.destination = destination_->status().identity;
    settings.dropsInheritedLists = destination_->handsDownLists();
    settings.keepsPace = volume.isDurable;
    settings.flushesFiles = volume.flushesFiles;
    settings.failWithErrno = run_.faults.failCopyWithErrno;
    if (const auto space = POSIX::space(source_->folder().get())) settings.findsHolesItself = space->isZFS;
    // What is to be read back from the medium is compared once it is there.
    if (!volume.isDurable && !volume.traits.hasCoarseTimes) settings.checker = &volume.checker;
    CopyEngine engine(settings, run_);
    auto copied = engine.copy(source_->place(), staged.place());
    if (copied) return std::move(*copied);
    // A creation whose answer was lost may still have taken place.
    if (!engine.hasBegun()) (void)staged.remove();
    return failure(copied.error());
}

ItemTransfer::Result<void> ItemTransfer::verify(const CopiedTree& copied, StagedItem& staged) {
    auto& volume = destination_->volume();
    run_.enter(Phase::verifying);
    if (volume.isDurable) {
        std::vector<int> files;
        if (!isFolder() && copied.top) files.push_back(copied.top.get());
        if (const auto flushed = destination_->flush(files); !flushed)
            return std::unexpected(fromDestination(flushed.error()));
    }
    TreeVerification::Settings settings;
    settings.contents =
        copied.isChecked ? TreeVerification::Contents::changed : TreeVerification::Contents::all;
    settings.likeness = sourceNumbersLast_ ? TreeManifest::Likeness::exact : TreeManifest::Likeness::loosely;
    TreeVerification verification(copied.manifest, volume.support, volume.checker, settings,
                                  run_.goesOnAnywhere());
    const auto result = verification.verify(source_->place(), staged.place());
    if (run_.isCancelled()) return failure(Error::Case::cancelled);
    if (result == Verification::different) return failure(Error::Case::verificationFailed);
    if (result == Verification::metadataDiffers) return failure(Error::Case::metadataNotPreserved);
    return {};
}

/// The copy is good: gives it its name, however often that has to be found anew.
ItemTransfer::Result<ItemTransfer::Attempt> ItemTransfer::place(CopiedTree copied, StagedItem& staged) {
    for (;;) {
        const auto placed = putInPlace(staged);
        if (placed) return conclude(std::move(copied));
        if (placed.error().error != Error::Case::destinationExists) return std::unexpected(placed.error());
        const auto found = findTarget();
        if (!found) return std::unexpected(found.error());
        if (*found == Found::merge) return failure(Error::Case::destinationExists);
        if (const auto end = ending(*found)) return *end;
    }
}

/// `destinationExists` when the name is not as it was found.
ItemTransfer::Result<void> ItemTransfer::putInPlace(StagedItem& staged) {
    replaced_.giveUp();
    if (target_.replaced) {
        replaced_.begin(target_.name, *target_.replaced, targetURL());
        const auto isReplaced = replaced_.makeWayFor(staged);
        if (!isReplaced) return failure(isReplaced.error());
        if (*isReplaced) return {};
        target_.replaced.reset();
    }
    const auto renamed = POSIX::renameExclusive(staged.place(), targetPlace());
    if (!renamed && (renamed.error().number == EEXIST || !POSIX::areOneItem(staged.place(), targetPlace())))
        return std::unexpected(fromDestination(renamed.error()));
    if (!renamed) left_.emplace_back(targetURL(), staged.name());
    staged.release();
    return {};
}

ItemTransfer::Result<ItemTransfer::Attempt> ItemTransfer::conclude(CopiedTree copied) {
    const bool isMove = run_.kind == FileOperationKind::move;
    if (!isMove && !replaced_.isBegun() && !destination_->volume().isDurable) return Attempt::completed;
    TransferSettlement::Placed placed{run_.results.size(),   destination_,         target_.name, isFolder(),
                                      std::move(copied.top), replaced_.handOver(), std::nullopt};
    if (isMove) {
        SourceRemoval::Settings settings;
        settings.likeness =
            sourceNumbersLast_ ? TreeManifest::Likeness::exact : TreeManifest::Likeness::loosely;
        settings.rechecksContents = isCoarse_;
        settings.fails = run_.faults.failSourceRemoval;
        std::optional<Error> keptFor;
        if (!run_.leftOut().empty()) keptFor = run_.leftOut().front().outcome.error();
        placed.moved.emplace(
            TransferSettlement::Moved{std::move(*source_), std::move(copied.manifest), settings, keptFor});
    }
    finishPlaced(ItemOutcome::cancelled());
    settlement_.add(std::move(placed));
    return Attempt::settled;
}

} // namespace ombrel
