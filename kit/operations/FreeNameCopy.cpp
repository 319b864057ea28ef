#include "operations/FreeNameCopy.h"

#include "listing/POSIX.h"
#include "operations/ConfirmedSource.h"
#include "operations/ItemNames.h"
#include "operations/Transfer.h"

#include <cerrno>
#include <string>

namespace ombrel {

using Error = FileOperationError;

ItemOutcome copyUnderFreeName(const FileReference& source, const FileURL& folder,
                              std::string_view preferredName, TrashBackend& trash,
                              const std::stop_token& stop) {
    constexpr int lastNumber = 500;
    if (const auto reason = ItemNames::validate(preferredName, WindowsRules::off))
        return ItemOutcome::failed(Error::invalidName(*reason));
    const auto confirmed = ConfirmedSource::of(source);
    if (!confirmed) return ItemOutcome::failed(confirmed.error());
    const auto keep = confirmed->status().isDirectory() ? KeepExtension::no : KeepExtension::yes;
    for (int number = 1; number <= lastNumber; ++number) {
        const std::string name =
            number == 1 ? std::string(preferredName) : ItemNames::numbered(preferredName, number, keep);
        if (POSIX::lstat(folder.appending(name))) continue;
        // Without an answer to conflicts, a name that was taken meanwhile is skipped.
        const TransferItem item(source, name);
        const auto report = transfer(FileOperationKind::copy, {&item, 1}, folder, {}, trash, {}, stop);
        const auto& outcome = report.items.front().outcome;
        if (outcome.which() != ItemOutcome::Case::skipped) return outcome;
    }
    return ItemOutcome::failed(Error::Case::destinationExists);
}

} // namespace ombrel
