#include "operations/ArchivePlacing.h"

#include "listing/POSIXEntries.h"
#include "listing/POSIXRename.h"

#include <cerrno>

namespace ombrel {

std::expected<std::string, FileOperationError>
placeUnderFreeName(POSIX::Place item, int folder, const std::string& preferred, KeepExtension keep) {
    constexpr int lastNumber = 500;
    for (int number = 1; number <= lastNumber; ++number) {
        const auto name = number == 1 ? preferred : ItemNames::numbered(preferred, number, keep);
        const auto renamed = POSIX::renameExclusive(item, {folder, name.c_str()});
        if (renamed) {
            (void)POSIX::flush(folder);
            return name;
        }
        if (renamed.error().number != EEXIST)
            return std::unexpected(FileOperationError::from(renamed.error()));
    }
    return std::unexpected(FileOperationError(FileOperationError::Case::destinationExists));
}

} // namespace ombrel
