#include "operations/JobTexts.h"

#include "base/FileName.h"

#include <cmath>
#include <utility>

namespace ombrel {

Text titleOf(FileOperationKind kind, std::int64_t itemCount, const std::string& sourceName,
             const std::string& destinationName) {
    switch (kind) {
    case FileOperationKind::copy: return {"progress.title.copy", {sourceName, destinationName}, itemCount};
    case FileOperationKind::move: return {"progress.title.move", {sourceName, destinationName}, itemCount};
    case FileOperationKind::rename: return {"progress.title.rename", {sourceName}, itemCount};
    case FileOperationKind::newFolder: return {"progress.title.newFolder", {destinationName}};
    case FileOperationKind::newFile: return {"progress.title.newFile", {destinationName}};
    case FileOperationKind::trash: return {"progress.title.trash", {sourceName}, itemCount};
    case FileOperationKind::delete_: return {"progress.title.delete", {sourceName}, itemCount};
    case FileOperationKind::compress: return {"progress.title.compress", {sourceName}, itemCount};
    case FileOperationKind::extract: return {"progress.title.extract", {destinationName}, itemCount};
    }
    std::unreachable();
}

Text waitingText(const Text& titleOfJobAhead) {
    return {"progress.waiting", {titleOfJobAhead.localized()}};
}

std::string speedText(std::optional<double> bytesPerSecond, const SizeWords& sizeWords) {
    if (!bytesPerSecond) return Texts::localized("progress.calculating");
    return sizeWords(static_cast<std::int64_t>(std::trunc(*bytesPerSecond))) +
           Texts::localized("progress.perSecond");
}

Text titleOf(const ConflictContext& context, std::optional<std::int64_t> batchCount) {
    if (batchCount.value_or(1) > 1) return {"conflict.batch.title", {}, *batchCount};
    return {"conflict.single.title", {FileName::displayText(context.existing.name())}};
}

ChoiceText replaceAllText(const ConflictContext& context, std::int64_t batchCount) {
    const auto folder = context.existing.parent();
    return {{"conflict.replace"},
            Text{"conflict.replaceAll.detail", {FileName::displayText(folder.title())}, batchCount}};
}

ChoiceText skipAllText(const ConflictContext& context, std::int64_t batchCount, std::int64_t others) {
    std::string rest;
    if (others > 0)
        rest = (context.kind == FileOperationKind::move ? Text{"conflict.skipAll.othersMoved", {}, others}
                                                        : Text{"conflict.skipAll.othersCopied", {}, others})
                   .localized();
    return {{"conflict.skipAll"}, Text{"conflict.skipAll.detail", {std::move(rest)}, batchCount}};
}

ChoiceText decideEachText() {
    return {{"conflict.decideEach"}, Text{"conflict.decideEach.detail"}};
}

ChoiceText replaceOneText(const ConflictContext& context) {
    if (!context.existingIsDirectory) return {{"conflict.replaceOne"}, Text{"conflict.replace.detail"}};
    if (context.sourceIsDirectory) return {{"conflict.replaceOne"}, Text{"conflict.merge.detail"}};
    return {{"conflict.replaceOne"}, Text{"conflict.replaceFolder.detail"}, true};
}

ChoiceText skipOneText() {
    return {{"conflict.skipOne"}, Text{"conflict.skipOne.detail"}};
}

ChoiceText keepBothText(const ConflictContext& context) {
    ChoiceText text{{"conflict.keepBoth"}};
    if (context.keepBothName)
        text.detail = Text{"conflict.keepBoth.detail", {FileName::displayText(*context.keepBothName)}};
    return text;
}

Text cancelText(FileOperationKind kind) {
    switch (kind) {
    case FileOperationKind::copy: return {"conflict.cancel.copy"};
    case FileOperationKind::move: return {"conflict.cancel.move"};
    default: return {"conflict.cancel.other"};
    }
}

Text applyToAllConflictsText() {
    return {"conflict.applyToAll"};
}

Text newItemText() {
    return {"conflict.single.new"};
}

Text existingItemText() {
    return {"conflict.single.existing"};
}

Text titleOf(const ErrorContext& context) {
    switch (context.error.which()) {
    case FileOperationError::Case::trashUnavailable: return {"progress.error.trash"};
    case FileOperationError::Case::permissionDenied: return {"progress.error.denied"};
    case FileOperationError::Case::noSpace: return {"progress.error.noSpace"};
    default: return {"progress.error.other"};
    }
}

Text retryText() {
    return {"progress.error.retry"};
}

Text skipText() {
    return {"progress.error.skip"};
}

Text applyToAllText() {
    return {"progress.error.applyToAll"};
}

} // namespace ombrel
