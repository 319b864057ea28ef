#include "listing/FileItem.h"

#include "base/FileName.h"
#include "listing/ItemBlockBuilder.h"
#include "listing/POSIX.h"

#include <cerrno>
#include <functional>

namespace ombrel {

FileURL FileItemView::url() const {
    const bool isMarked = record().flags & ItemRecord::markedDirectory;
    return folder().appending(name(), isMarked ? FileURL::Mark::directory : FileURL::Mark::none);
}

FileKind FileItemView::kind() const noexcept {
    const auto which = static_cast<FileKind::Case>(record().kind);
    if (which != FileKind::Case::symlink) return which;
    const auto target = static_cast<SymlinkTarget::Case>(record().target);
    return FileKind::symlink(target == SymlinkTarget::Case::inaccessible
                                 ? SymlinkTarget::inaccessible(record().errorNumber)
                                 : SymlinkTarget(target));
}

Metadata<std::int64_t> FileItemView::size() const {
    if (const auto error = readError()) return Metadata<std::int64_t>::failed(error->number);
    if (record().flags & ItemRecord::hasSize) return record().size;
    return {};
}

Metadata<FileTime> FileItemView::modificationDate() const {
    if (const auto error = readError()) return Metadata<FileTime>::failed(error->number);
    return FileTime{record().modifiedSeconds, record().modifiedNanoseconds};
}

Metadata<FileTime> FileItemView::creationDate() const {
    if (const auto error = readError()) return Metadata<FileTime>::failed(error->number);
    const FileTime born{record().bornSeconds, record().bornNanoseconds};
    if (born == FileTime{}) return {};
    return born;
}

Metadata<std::string_view> FileItemView::typeIdentifier() const {
    if (record().type == 0) return {};
    return TypeDatabase::identifier(record().type);
}

std::optional<FileIdentity> FileItemView::identity() const {
    if (readError()) return std::nullopt;
    return FileIdentity{block_->places[record().place].device, record().inode};
}

std::optional<POSIXFailure> FileItemView::readError() const {
    // A link's error number tells of its target; every other entry has one only when it could not be
    // examined.
    if (record().errorNumber == 0 || kind().which() == FileKind::Case::symlink) return std::nullopt;
    return POSIXFailure{record().errorNumber};
}

std::optional<POSIXFailure> FileItemView::accessError() const {
    if (record().flags & ItemRecord::readDenied) return POSIXFailure{EACCES};
    if (kind().which() != FileKind::Case::symlink) return readError();
    const SymlinkTarget target = kind().target();
    if (target.which() != SymlinkTarget::Case::inaccessible) return std::nullopt;
    return POSIXFailure{target.errorNumber()};
}

std::string FileItemView::pathExtension() const {
    return FileName::loweredASCII(FileName::extension(name()));
}

FileItem FileItem::make(std::string_view name, const FileURL& folder, std::uint64_t generation,
                        std::optional<bool> isDirectoryHint) {
    ItemBlockBuilder builder(folder, generation, 1);
    const auto url = folder.appending(name);
    if (const auto anchor = POSIX::Anchor::of(url))
        builder.examine(anchor->place(), name, isDirectoryHint.value_or(false));
    else
        builder.addUnexamined(name, isDirectoryHint.value_or(false), anchor.error());
    return {std::move(builder).finish({}), 0};
}

bool FileItem::isPackageName(std::string_view name) {
    return TypeDatabase::packageType(FileName::extension(name)) != 0;
}

SymlinkTarget FileItem::symlinkTarget(const FileURL& url) {
    const auto status = POSIX::statFollowing(url);
    if (!status) return SymlinkTarget::fromError(status.error().number);
    return status->isDirectory() ? SymlinkTarget::Case::directory : SymlinkTarget::Case::file;
}

bool operator==(const FileItem& a, const FileItem& b) {
    return a.id() == b.id() && a.folder() == b.folder() && a.kind() == b.kind() && a.size() == b.size() &&
           a.modificationDate() == b.modificationDate() && a.typeIdentifier() == b.typeIdentifier() &&
           a.isHidden() == b.isHidden() && a.identity() == b.identity() && a.readError() == b.readError() &&
           a.accessError() == b.accessError();
}

} // namespace ombrel

std::size_t std::hash<ombrel::FileItem>::operator()(const ombrel::FileItem& item) const noexcept {
    // What tells items of one listing apart is enough; equality looks at the rest.
    const std::size_t name = std::hash<std::string_view>{}(item.name());
    return name ^ (std::hash<std::uint64_t>{}(item.id().generation) << 1) ^
           (std::hash<ombrel::FileURL>{}(item.folder()) << 2);
}
