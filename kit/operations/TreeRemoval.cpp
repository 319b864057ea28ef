#include "operations/TreeRemoval.h"

#include "listing/POSIXEntries.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <utility>

namespace ombrel {
namespace {

using Error = FileOperationError;

constexpr std::uint32_t ownerAccess = S_IRWXU;

bool isRefusal(int errorNumber) noexcept {
    return errorNumber == EACCES || errorNumber == EPERM;
}

bool isNotEmpty(int errorNumber) noexcept {
    return errorNumber == ENOTEMPTY || errorNumber == EEXIST;
}

} // namespace

TreeRemoval::TreeRemoval(const FileReference& item, TreePlan& plan, TreePlan::FolderIndex top, JobRun& run)
    : item_(item), plan_(plan), top_(top), run_(run) {}

std::vector<ItemResult> TreeRemoval::remove() {
    for (;;) {
        const auto outcome = attempt();
        std::vector<ItemResult> results;
        if (outcome) {
            results.push_back({item_.url, *outcome, first_ ? first_->facts : ErrorFacts{}});
            std::ranges::move(leftInside_, std::back_inserter(results));
            return results;
        }
        switch (run_.ask({FileOperationKind::delete_, item_.url, std::nullopt, outcome.error()})) {
        case ErrorChoice::retry: continue;
        case ErrorChoice::skip: return {{item_.url, ItemOutcome::failed(outcome.error())}};
        case ErrorChoice::cancel: return {{item_.url, ItemOutcome::cancelled()}};
        }
    }
}

/// One walk over what is there. An error is one that nobody has been asked about.
std::expected<ItemOutcome, FileOperationError> TreeRemoval::attempt() {
    first_.reset();
    leftInside_.clear();
    if (item_.url.isRoot() || item_.url.name() == "..")
        return ItemOutcome::failed(Error::invalidName(InvalidNameReason::reserved));
    const auto source = ConfirmedSource::of(item_);
    if (!source) return std::unexpected(source.error());
    auto holder = POSIX::open(POSIX::Place{source->folder().get(), "."}, O_PATH | O_DIRECTORY);
    if (!holder) return std::unexpected(Error::from(holder.error()));
    const auto holderStatus = POSIX::status(holder->get());
    if (!holderStatus) return std::unexpected(Error::from(holderStatus.error()));
    trail_.emplace(std::move(*holder), *holderStatus);
    identity_ = source->status().identity;

    const char* name = source->name().c_str();
    Step step = source->status().isDirectory() ? removeFolder(name, top_) : removeFile(name);
    while (!levels_.empty() && step != Step::stopped)
        step = advance();
    if (step == Step::stopped) {
        const bool isLost = !run_.isCancelled();
        unwind();
        if (isLost) return std::unexpected(Error::Case::sourceChanged);
        return ItemOutcome::cancelled();
    }
    return first_ ? first_->outcome : ItemOutcome::completed();
}

TreeRemoval::Step TreeRemoval::advance() {
    if (!run_.goesOn()) return Step::stopped;
    Level& current = level();
    const auto& folder = plan_.folder(current.folder);
    if (!folder.isRead) return readFolder();
    if (current.next == folder.count) return finishFolder();
    const auto& entry = plan_.entry(folder.first + current.next++);
    const char* name = plan_.name(entry);
    return entry.folder == TreePlan::noFolder ? removeFile(name) : removeFolder(name, entry.folder);
}

TreeRemoval::Step TreeRemoval::removeFile(const char* name) {
    for (;;) {
        const auto removed = POSIX::unlink(POSIX::Place{trail_->fd(), name});
        const int number = removed ? 0 : removed.error().number;
        if (removed || (number == ENOENT && !levels_.empty())) {
            countOne(name);
            return Step::done;
        }
        if (number == EISDIR) return removeFolder(name, plan_.add());
        if (isRefusal(number) && relax()) continue;
        const Step step = ask(trail_->pathOf(name), removed.error());
        if (step != Step::again) return step;
    }
}

/// Goes down into the folder; it is removed once everything in it is.
TreeRemoval::Step TreeRemoval::removeFolder(const char* name, TreePlan::FolderIndex folder) {
    std::optional<std::uint32_t> oldMode;
    for (;;) {
        const auto entered = trail_->enter(name);
        if (entered) break;
        const int number = entered.error().number;
        if (number == ENOENT && !levels_.empty()) {
            countOne(name);
            return Step::done;
        }
        if (number == ENOTDIR || number == ELOOP) return levels_.empty() ? Step::stopped : removeFile(name);
        if (isRefusal(number) && !oldMode && (oldMode = relaxBelow(name))) continue;
        const Step step = ask(trail_->pathOf(name), entered.error());
        if (step == Step::again) continue;
        if (oldMode) (void)POSIX::changeMode(POSIX::Place{trail_->fd(), name}, *oldMode);
        return step;
    }
    levels_.push_back({.folder = folder, .oldMode = oldMode});
    const bool isOther = levels_.size() == 1 && trail_->status().identity != identity_;
    return isOther ? Step::stopped : Step::done;
}

TreeRemoval::Step TreeRemoval::readFolder() {
    const auto read = plan_.read(level().folder, trail_->fd());
    if (read) {
        run_.progress.totalItems += static_cast<std::int64_t>(plan_.folder(level().folder).count);
        return Step::done;
    }
    const std::string own = trail_->pathOf({});
    const Step step = ask(std::string_view(own).substr(0, own.size() - 1), read.error());
    return step == Step::left ? finishFolder() : step;
}

/// Goes up from a folder whose entries are dealt with, and removes it unless something in it is left.
TreeRemoval::Step TreeRemoval::finishFolder() {
    const Level finished = level();
    const std::string name = trail_->name();
    if (finished.keeps) restoreMode();
    if (!trail_->leave()) return Step::stopped;
    levels_.pop_back();
    if (finished.keeps) {
        if (!levels_.empty()) level().keeps = true;
        return Step::left;
    }
    const POSIX::Place place{trail_->fd(), name.c_str()};
    for (bool wasReadAnew = finished.isAnew;;) {
        const auto removed = POSIX::removeDirectory(place);
        const int number = removed ? 0 : removed.error().number;
        if (removed || number == ENOENT) {
            countOne(name);
            return Step::done;
        }
        if (isNotEmpty(number) && !wasReadAnew) {
            const auto depth = levels_.size();
            const Step step = removeFolder(name.c_str(), plan_.add());
            if (levels_.size() > depth && step != Step::stopped) {
                level().isAnew = true;
                if (!level().oldMode) level().oldMode = finished.oldMode;
            }
            return step;
        }
        if (isRefusal(number) && relax()) continue;
        const Step step = ask(trail_->pathOf(name), removed.error());
        wasReadAnew = false;
        if (step == Step::again) continue;
        if (finished.oldMode) (void)POSIX::changeMode(place, *finished.oldMode);
        return step;
    }
}

/// `path` leads from the folder that holds the item.
TreeRemoval::Step TreeRemoval::ask(std::string_view path, POSIXFailure failure) {
    const auto url = FileURL::fromPath(item_.url.parent().path() + "/" + std::string(path));
    const auto error = isNotEmpty(failure.number) ? Error::posix(failure.number) : Error::from(failure);
    ErrorContext context{FileOperationKind::delete_, url.value_or(item_.url), std::nullopt, error};
    context.facts.isMountPoint = failure.number == EBUSY;
    switch (run_.ask(context)) {
    case ErrorChoice::retry: return levels_.empty() && isReplaced() ? Step::stopped : Step::again;
    case ErrorChoice::cancel: return Step::stopped;
    case ErrorChoice::skip: break;
    }
    const ItemResult left{context.source, ItemOutcome::failed(error), context.facts};
    if (!first_) first_ = left;
    if (!levels_.empty()) {
        level().keeps = true;
        leftInside_.push_back(left);
    }
    return Step::left;
}

/// Whether something else has the item's name by now.
bool TreeRemoval::isReplaced() const {
    const std::string name(item_.url.name());
    const auto now = POSIX::lstat(POSIX::Place{trail_->fd(), name.c_str()});
    return now && now->identity != identity_;
}

/// Gives the owner of the present folder full access to it, when that may help: once, and not above the item
/// itself.
bool TreeRemoval::relax() {
    if (levels_.empty() || level().oldMode) return false;
    const auto mode = trail_->status().permissions();
    if ((mode & ownerAccess) == ownerAccess || !POSIX::changeMode(trail_->fd(), mode | ownerAccess))
        return false;
    level().oldMode = mode;
    return true;
}

/// The same for a folder that cannot even be opened. Answers its old mode.
std::optional<std::uint32_t> TreeRemoval::relaxBelow(const char* name) {
    const POSIX::Place place{trail_->fd(), name};
    const auto status = POSIX::lstat(place);
    if (!status || !status->isDirectory()) return std::nullopt;
    const auto mode = status->permissions();
    if ((mode & ownerAccess) == ownerAccess || !POSIX::changeMode(place, mode | ownerAccess))
        return std::nullopt;
    return mode;
}

void TreeRemoval::restoreMode() {
    if (level().oldMode) (void)POSIX::changeMode(trail_->fd(), *level().oldMode);
}

/// Leaves the tree as it is.
void TreeRemoval::unwind() {
    while (!levels_.empty()) {
        restoreMode();
        levels_.pop_back();
        if (!trail_->leave()) break;
    }
    levels_.clear();
}

void TreeRemoval::countOne(std::string_view name) {
    ++run_.progress.completedItems;
    run_.progress.currentName = name;
    run_.tellSometimes();
}

} // namespace ombrel
