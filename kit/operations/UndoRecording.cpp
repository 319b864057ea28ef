#include "operations/UndoRecording.h"

#include "listing/MountTable.h"
#include "listing/POSIX.h"

#include <map>
#include <utility>

namespace ombrel {
namespace {

using Step = FileUndoStep;

enum class Depth : std::uint8_t { entry, tree };

struct Seen {
    FileReference reference;
    std::optional<ItemStamp> stamp;
};

/// Whether what stands there is not what was placed, or, where its contents count, not as it was placed: a
/// job may go on for long after that.
bool hasChanged(const PlacedItem& placed, const FileStatus& now, Depth depth) {
    const bool isSame = now.identity == placed.identity;
    const bool isAsItWas = depth == Depth::entry || placed.type == S_IFDIR ||
                           (now.size == placed.size && now.modified == placed.modified);
    if (isSame && isAsItWas) return false;
    const auto traits = MountTable::current().traits(now);
    return (!isSame && !traits.renumbersInodes) || (!isAsItWas && !traits.hasCoarseTimes);
}

Seen look(const FileURL& url, const std::optional<PlacedItem>& placed, Depth depth) {
    Seen seen{{url, std::nullopt}, std::nullopt};
    const auto anchor = POSIX::Anchor::of(url);
    if (!anchor) return seen;
    const auto status = POSIX::lstat(anchor->place());
    if (!status) return seen;
    if (placed && hasChanged(*placed, *status, depth)) {
        const bool isFolder = placed->type == S_IFDIR;
        seen.reference.identity = placed->identity;
        seen.stamp = {.type = placed->type,
                      .size = isFolder ? 0 : placed->size,
                      .modified = isFolder ? FileTime() : placed->modified,
                      .contents = {}};
        return seen;
    }
    seen.reference.identity = status->identity;
    if (depth == Depth::entry)
        seen.stamp = ItemStamp::of(*status);
    else if (const auto stamp = ItemStamp::reading(anchor->place(), *status))
        seen.stamp = *stamp;
    return seen;
}

/// What was completed and has a new place.
template <typename Use>
void eachCompleted(const OperationReport& report, Use use) {
    for (const auto& item : report.items)
        if (item.outcome.isSuccess() && item.outcome.destination()) use(item, *item.outcome.destination());
}

/// What was made, without what lies in something else that was made. Several sources may have become one
/// item.
Step::Trash trashOf(const OperationReport& report) {
    std::map<FileURL, const ItemResult*> made;
    eachCompleted(report, [&](const ItemResult& item, const FileURL& now) { made[now] = &item; });
    Step::Trash trash;
    for (const auto& [url, item] : made) {
        bool isCovered = false;
        for (FileURL above = url; !above.isRoot() && !isCovered;) {
            above = above.parent();
            isCovered = made.contains(above);
        }
        if (isCovered) continue;
        auto [reference, stamp] = look(url, item->placed, Depth::tree);
        trash.items.emplace_back(std::move(reference), stamp);
    }
    return trash;
}

std::vector<Step::Moved> movedOf(const OperationReport& report) {
    std::vector<Step::Moved> moved;
    eachCompleted(report, [&](const ItemResult& item, const FileURL& now) {
        if (!item.source || *item.source == now) return;
        auto [reference, stamp] = look(now, item.placed, Depth::entry);
        moved.push_back({std::move(reference), *item.source, stamp});
    });
    return moved;
}

} // namespace

FileUndoStep undoStepOf(const OperationReport& report, std::vector<FolderRecord> removedFolders) {
    switch (report.kind) {
    case FileOperationKind::copy: return {Step::Kind::copy, trashOf(report)};
    case FileOperationKind::move: {
        Step::MoveBack back{movedOf(report)};
        if (removedFolders.empty()) return {Step::Kind::move, std::move(back)};
        Step::Sequence both;
        both.actions.emplace_back(std::move(back));
        both.actions.emplace_back(Step::MakeFolders{std::move(removedFolders)});
        return {Step::Kind::move, std::move(both)};
    }
    case FileOperationKind::rename: {
        auto moved = movedOf(report);
        if (moved.empty()) return {Step::Kind::rename};
        auto& one = moved.front();
        return {Step::Kind::rename,
                Step::RenameBack{std::move(one.item), std::string(one.original.name()), one.stamp}};
    }
    case FileOperationKind::trash: return {Step::Kind::delete_, Step::PutBack{movedOf(report)}};
    case FileOperationKind::newFolder:
    case FileOperationKind::newFile:
    case FileOperationKind::compress:
    case FileOperationKind::extract: return {Step::Kind::new_, trashOf(report)};
    case FileOperationKind::delete_: return {};
    }
    std::unreachable();
}

FileUndoStep undoStepOfPuttingBack(const OperationReport& report) {
    return {Step::Kind::move, trashOf(report)};
}

} // namespace ombrel
