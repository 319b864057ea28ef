#pragma once

#include "base/Text.h"
#include "operations/FileOperationKind.h"
#include "operations/OperationConflict.h"
#include "operations/OperationErrorQuestion.h"
#include "operations/ReportTexts.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace ombrel {

/// What a job does, in a line: "Copying 3 items from Documents to Stick". Names are for people; those that
/// the kind has no use for are passed over.
[[nodiscard]] Text titleOf(FileOperationKind kind, std::int64_t itemCount, const std::string& sourceName,
                           const std::string& destinationName);
/// "Waiting for: Copying 3 items from Documents to Stick".
[[nodiscard]] Text waitingText(const Text& titleOfJobAhead);

/// Whole bytes per second in words.
[[nodiscard]] std::string speedText(std::optional<double> bytesPerSecond, const SizeWords& sizeWords);

// ---- Questions

/// One way to answer a question.
struct ChoiceText {
    Text label;
    std::optional<Text> detail = std::nullopt;
    bool isLoss = false; ///< it takes away more than the item that is asked about
};

/// The question about a name that is taken. `batchCount` above 1 asks about all known conflicts at once.
[[nodiscard]] Text titleOf(const ConflictContext& context, std::optional<std::int64_t> batchCount);
/// For the batch form; `others` is how many items have no conflict.
[[nodiscard]] ChoiceText replaceAllText(const ConflictContext& context, std::int64_t batchCount);
[[nodiscard]] ChoiceText skipAllText(const ConflictContext& context, std::int64_t batchCount,
                                     std::int64_t others);
[[nodiscard]] ChoiceText decideEachText();
/// For the single form.
[[nodiscard]] ChoiceText replaceOneText(const ConflictContext& context);
[[nodiscard]] ChoiceText skipOneText();
[[nodiscard]] ChoiceText keepBothText(const ConflictContext& context);
/// For both: ends the whole job.
[[nodiscard]] Text cancelText(FileOperationKind kind);
[[nodiscard]] Text applyToAllConflictsText();
/// What heads the facts of either side.
[[nodiscard]] Text newItemText();
[[nodiscard]] Text existingItemText();

/// The question about an item that failed: what it is about, above the sentence that says why.
[[nodiscard]] Text titleOf(const ErrorContext& context);
[[nodiscard]] Text retryText();
[[nodiscard]] Text skipText();
[[nodiscard]] Text applyToAllText();

} // namespace ombrel
