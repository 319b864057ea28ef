#pragma once

#include "operations/FileOperationService.h"
#include "operations/FileUndoStep.h"
#include "operations/JobPlan.h"

#include <cstdint>
#include <deque>
#include <memory>
#include <vector>

namespace ombrel {

/// The pieces of an action that are carried out as one job each, in the order in which that is to be done:
/// sequences from their end, items that go back grouped by the folder that they go to.
[[nodiscard]] std::deque<FileUndoStep::Action> piecesOf(FileUndoStep::Action action);

/// An item that became another object under way, because it went to another volume or was made again.
struct Renumbered {
    FileURL url;
    FileIdentity before, now;
};

/// Which of the places that a job brings items to are searched for items that became other objects: those of
/// items that themselves did, or all, which is needed once that has happened.
enum class Landings : std::uint8_t { ofOtherObjects, all };

/// The job that carries out one piece.
///
/// Each item is looked at first: one that is not there any more, is another object, or, where it would go to
/// the trash, has changed, is reported as failed and not touched. `known` are items of other steps; those
/// that lie where the job brought something, have another identity now and are otherwise as they were, are
/// told in `renumbered` before the job ends.
[[nodiscard]] JobPlan planOf(const FileOperationService& service, FileUndoStep::Action piece,
                             std::vector<FileUndoStep::Made> known, Landings landings,
                             std::shared_ptr<std::vector<Renumbered>> renumbered);

/// What of a piece is left to be done when its job was cancelled.
[[nodiscard]] FileUndoStep::Action cancelledPart(const FileUndoStep::Action& piece,
                                                 const OperationReport& report);

} // namespace ombrel
