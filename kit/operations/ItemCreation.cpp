#include "operations/ItemCreation.h"

#include "listing/POSIXEntries.h"
#include "operations/ItemNames.h"

#include <fcntl.h>

#include <cerrno>
#include <string>
#include <utility>

namespace ombrel {
namespace {

using Error = FileOperationError;

POSIX::Result<void> createFile(POSIX::Place place, std::string_view contents) {
    auto file = POSIX::open(place, O_WRONLY | O_CREAT | O_EXCL, 0666);
    if (!file) return std::unexpected(file.error());
    auto written = POSIX::writeAll(file->get(), contents);
    if (written) written = POSIX::close(std::move(*file));
    if (!written) (void)POSIX::unlink(place);
    return written;
}

} // namespace

ItemOutcome createExclusive(const FileURL& folder, std::string_view preferredName, NewItem item,
                            std::string_view contents) {
    constexpr int lastNumber = 500;
    if (const auto reason = ItemNames::validate(preferredName, WindowsRules::off))
        return ItemOutcome::failed(Error::invalidName(*reason));
    const auto place = POSIX::open(folder, O_PATH | O_DIRECTORY);
    if (!place) return ItemOutcome::failed(Error::from(place.error()));
    const bool isFolder = item == NewItem::folder;
    const auto keep = isFolder ? KeepExtension::no : KeepExtension::yes;
    for (int number = 1; number <= lastNumber; ++number) {
        const std::string name =
            number == 1 ? std::string(preferredName) : ItemNames::numbered(preferredName, number, keep);
        const POSIX::Place target{place->get(), name.c_str()};
        const auto made = isFolder ? POSIX::makeDirectory(target, 0777) : createFile(target, contents);
        if (made)
            return ItemOutcome::completed(
                folder.appending(name, isFolder ? FileURL::Mark::directory : FileURL::Mark::none));
        if (made.error().number != EEXIST) return ItemOutcome::failed(Error::from(made.error()));
    }
    return ItemOutcome::failed(Error::Case::destinationExists);
}

} // namespace ombrel
