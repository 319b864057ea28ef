#include "operations/ReportTexts.h"

#include "base/FileName.h"

#include <algorithm>
#include <utility>

namespace ombrel {
namespace {

using Error = FileOperationError;

// In the order of FileOperationKind.
constexpr std::string_view doneKeys[] = {
    "report.done.copy",      "report.done.move",     "report.done.rename",
    "report.done.newFolder", "report.done.newFile",  "report.done.trash",
    "report.done.delete",    "report.done.compress", "report.done.extract"};
constexpr std::string_view partKeys[] = {
    "report.part.copy",      "report.part.move",     "report.part.rename",
    "report.part.newFolder", "report.part.newFile",  "report.part.trash",
    "report.part.delete",    "report.part.compress", "report.part.extract"};

} // namespace

Text textOf(const FileOperationError& error, const ErrorFacts& facts, const SizeWords& sizeWords) {
    if (facts.trashReason && error.which() == Error::Case::trashUnavailable)
        return textOf(*facts.trashReason);
    if (facts.missingBytes && error.which() == Error::Case::noSpace)
        return {"error.fact.missingBytes", {sizeWords(*facts.missingBytes)}};
    if (facts.isMountPoint) return {"trash.unavailable.isMountPoint"};
    if (facts.archive && error.which() == Error::Case::system)
        return textOf(*facts.archive, FileName::displayText(facts.toolWords), error.code());
    if (!facts.toolWords.empty() && error.which() == Error::Case::system)
        return {"error.fact.toolWords", {error.name(), FileName::displayText(facts.toolWords)}};
    return error.text();
}

Text textOf(const ItemResult& result, const SizeWords& sizeWords) {
    const auto& outcome = result.outcome;
    switch (outcome.which()) {
    case ItemOutcome::Case::completed:
        if (!outcome.destination()) return {"report.item.done"};
        return {"report.item.doneAs", {FileName::displayText(outcome.destination()->name())}};
    case ItemOutcome::Case::failed: return textOf(*outcome.error(), result.facts, sizeWords);
    case ItemOutcome::Case::copiedSourceKept: {
        const auto reason = textOf(*outcome.error(), result.facts, sizeWords);
        if (outcome.error()->which() == Error::Case::sourceRemovalFailed) return reason;
        return {"report.item.sourceKept", {reason.localized()}};
    }
    case ItemOutcome::Case::skipped: return {"report.item.skipped"};
    case ItemOutcome::Case::cancelled: return {"error.op.cancelled"};
    }
    std::unreachable();
}

Text summaryOf(const OperationReport& report) {
    if (report.items.empty()) return {"report.nothingToDo"};
    const auto kind = static_cast<std::size_t>(report.kind);
    const auto total = static_cast<std::int64_t>(report.items.size());
    const auto done =
        std::ranges::count_if(report.items, [](const auto& item) { return item.outcome.isSuccess(); });
    if (done == total) return {doneKeys[kind], {}, total};
    return {partKeys[kind], {std::to_string(done)}, total};
}

} // namespace ombrel
