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

constexpr int lastNumber = 500;

/// Takes the first free name by `make`, which must be exclusive. `mark` of what is made.
template <typename Make>
ItemOutcome makeUnderFreeName(const FileURL& folder, std::string_view preferredName, KeepExtension keep,
                              FileURL::Mark mark, Make make) {
    const auto place = POSIX::open(folder, O_PATH | O_DIRECTORY);
    if (!place) return ItemOutcome::failed(Error::from(place.error()));
    for (int number = 1; number <= lastNumber; ++number) {
        const std::string name =
            number == 1 ? std::string(preferredName) : ItemNames::numbered(preferredName, number, keep);
        const POSIX::Result<void> made = make(POSIX::Place{place->get(), name.c_str()});
        if (made) return ItemOutcome::completed(folder.appending(name, mark));
        if (made.error().number != EEXIST) return ItemOutcome::failed(Error::from(made.error()));
    }
    return ItemOutcome::failed(Error::Case::destinationExists);
}

} // namespace

ItemOutcome createExclusive(const FileURL& folder, std::string_view preferredName, NewItem item,
                            std::string_view contents) {
    if (const auto reason = ItemNames::validate(preferredName, WindowsRules::off))
        return ItemOutcome::failed(Error::invalidName(*reason));
    if (item == NewItem::folder)
        return makeUnderFreeName(folder, preferredName, KeepExtension::no, FileURL::Mark::directory,
                                 [](POSIX::Place place) { return POSIX::makeDirectory(place, 0777); });
    return makeUnderFreeName(folder, preferredName, KeepExtension::yes, FileURL::Mark::none,
                             [&](POSIX::Place place) { return createFile(place, contents); });
}

ItemOutcome createLink(const FileURL& item, const FileURL& folder) {
    // The root has no name of its own.
    const std::string_view name = item.isRoot() ? std::string_view("root") : item.name();
    const auto keep = item.isMarkedDirectory() ? KeepExtension::no : KeepExtension::yes;
    auto outcome = makeUnderFreeName(folder, name, keep, FileURL::Mark::none, [&](POSIX::Place place) {
        return POSIX::makeSymlink(item.path(), place);
    });
    if (outcome.error() && outcome.error()->which() == Error::Case::sourceMissing)
        return ItemOutcome::failed(Error::Case::destinationMissing);
    return outcome;
}

} // namespace ombrel
