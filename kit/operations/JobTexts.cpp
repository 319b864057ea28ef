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

ChoiceText replaceAllText() {
    return {{"conflict.replace"}, Text{"conflict.replace.detail"}};
}

ChoiceText skipAllText() {
    return {{"conflict.skipAll"}, Text{"conflict.skipAll.detail"}};
}

ChoiceText decideEachText() {
    return {{"conflict.decideEach"}, Text{"conflict.decideEach.detail"}};
}

ChoiceText replaceOneText(const ConflictContext& context) {
    const bool isMerged = context.sourceIsDirectory && context.existingIsDirectory;
    return {{"conflict.replaceOne"},
            isMerged ? Text{"conflict.merge.detail"} : Text{"conflict.replace.detail"}};
}

ChoiceText skipOneText() {
    return {{"conflict.skipOne"}};
}

ChoiceText keepBothText(const ConflictContext& context) {
    ChoiceText text{{"conflict.keepBoth"}};
    if (context.keepBothName)
        text.detail = Text{"conflict.keepBoth.detail", {FileName::displayText(*context.keepBothName)}};
    return text;
}

Text newItemText() {
    return {"conflict.single.new"};
}

Text existingItemText() {
    return {"conflict.single.existing"};
}

Text titleOf(const ErrorContext& context) {
    const auto& item = context.source ? context.source : context.destination;
    std::string name = item ? FileName::displayText(item->name()) : std::string();
    switch (context.error.which()) {
    case FileOperationError::Case::trashUnavailable: return {"progress.error.trash", {std::move(name)}};
    case FileOperationError::Case::permissionDenied: return {"progress.error.denied", {std::move(name)}};
    case FileOperationError::Case::noSpace: return {"progress.error.noSpace"};
    default: return {"progress.error.other", {std::move(name)}};
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
