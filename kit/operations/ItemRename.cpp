#include "operations/ItemRename.h"

#include "listing/POSIXEntries.h"
#include "listing/POSIXRename.h"
#include "operations/ConfirmedSource.h"
#include "operations/ItemNames.h"

#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/unistr.h>

#include <cerrno>

namespace ombrel {
namespace {

using Error = FileOperationError;

/// Equal after canonical precomposition and lower-casing.
bool differOnlyInLetterCase(const std::string& a, const std::string& b) {
    UErrorCode status = U_ZERO_ERROR;
    const auto* precomposition = icu::Normalizer2::getNFCInstance(status);
    if (U_FAILURE(status)) return false;
    const auto folded = [&](const std::string& name) {
        return precomposition->normalize(icu::UnicodeString::fromUTF8(name), status)
            .toLower(icu::Locale::getRoot());
    };
    return folded(a) == folded(b) && U_SUCCESS(status);
}

struct Spellings {
    bool hasOld = false;
    bool hasNew = false;
};

/// Which of two names the folder lists, byte for byte.
POSIX::Result<Spellings> spellingsIn(int folder, std::string_view oldName, std::string_view newName) {
    auto stream = POSIX::openDirectory(POSIX::Place{folder, "."}, POSIX::Links::refuse);
    if (!stream) return std::unexpected(stream.error());
    Spellings found;
    for (;;) {
        const auto entry = POSIX::readEntry(*stream);
        if (!entry) return std::unexpected(entry.error());
        if (!*entry) return found;
        found.hasOld |= (*entry)->name == oldName;
        found.hasNew |= (*entry)->name == newName;
    }
}

/// Renames by way of a name that is free, for drivers that take a rename onto the same object for done. An
/// interruption leaves the item under a name that people see.
POSIX::Result<void> renameByAnother(const ConfirmedSource& source, POSIX::Place to) {
    constexpr int lastTry = 500;
    for (int number = 2;; ++number) {
        const auto name = ItemNames::numbered(to.name, number, KeepExtension::yes);
        const POSIX::Place between{to.folder, name.c_str()};
        auto away = POSIX::renameExclusive(source.place(), between);
        if (!away && away.error().number == EEXIST && number < lastTry) continue;
        if (!away) return away;
        auto renamed = POSIX::renameExclusive(between, to);
        if (!renamed) (void)POSIX::renameExclusive(between, source.place());
        return renamed;
    }
}

/// The new name is taken and differs from the old one by letter case or normalisation only. The folder
/// decides whether it is the item's own: it lists two names where there are two items, be they hard links of
/// one file, which a plain rename would leave standing side by side.
POSIX::Result<void> renameOntoItself(const ConfirmedSource& source, POSIX::Place to) {
    const auto taken = POSIX::lstat(to);
    const auto before = spellingsIn(to.folder, source.name(), to.name);
    if (!taken || !before || before->hasNew || !before->hasOld) return std::unexpected(POSIXFailure{EEXIST});
    // Drivers that number what they are asked for have two numbers for the two spellings.
    if (taken->identity != source.status().identity) return renameByAnother(source, to);
    const auto renamed = POSIX::rename(source.place(), to);
    if (!renamed) return renamed;
    const auto after = spellingsIn(to.folder, source.name(), to.name);
    if (after && after->hasOld) return renameByAnother(source, to);
    return {};
}

} // namespace

ItemOutcome renameOne(const FileReference& reference, std::string_view name) {
    if (const auto reason = ItemNames::validate(name, WindowsRules::off))
        return ItemOutcome::failed(Error::invalidName(*reason));
    const auto source = ConfirmedSource::of(reference);
    if (!source) return ItemOutcome::failed(source.error());
    if (source->name() == name) return ItemOutcome::completed(reference.url);

    const std::string newName(name);
    const POSIX::Place to{source->place().folder, newName.c_str()};
    const auto renamed = POSIX::renameExclusive(source->place(), to);
    int number = renamed ? 0 : renamed.error().number;
    if ((number == EEXIST || number == ENOTEMPTY) && differOnlyInLetterCase(source->name(), newName)) {
        const auto again = renameOntoItself(*source, to);
        number = again ? 0 : again.error().number;
    }
    if (number != 0) return ItemOutcome::failed(Error::from(number));
    const auto mark = source->status().isDirectory() ? FileURL::Mark::directory : FileURL::Mark::none;
    return ItemOutcome::completed(reference.url.parent().appending(name, mark));
}

} // namespace ombrel
