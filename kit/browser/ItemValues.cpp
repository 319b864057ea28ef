#include "browser/ItemValues.h"

#include "base/FileName.h"
#include "listing/FileBeginning.h"
#include "listing/FileTypeNames.h"
#include "listing/POSIX.h"

#include <QBuffer>
#include <QImageReader>

#include <grp.h>
#include <pwd.h>

#include <array>

namespace ombrel {
namespace {

template <typename T>
std::optional<T> valueOf(const Metadata<T>& metadata) {
    return metadata.hasValue() ? std::optional(metadata.value()) : std::nullopt;
}

constexpr std::size_t longestRecord = 16384;

std::string ownerName(std::uint32_t id) {
    std::array<char, longestRecord> room{};
    passwd record{};
    passwd* found = nullptr;
    if (::getpwuid_r(id, &record, room.data(), room.size(), &found) == 0 && found)
        return FileName::displayText(found->pw_name);
    return std::to_string(id);
}

std::string groupName(std::uint32_t id) {
    std::array<char, longestRecord> room{};
    group record{};
    group* found = nullptr;
    if (::getgrgid_r(id, &record, room.data(), room.size(), &found) == 0 && found)
        return FileName::displayText(found->gr_name);
    return std::to_string(id);
}

std::optional<std::string> targetOf(const FileURL& link) {
    const auto anchor = POSIX::Anchor::of(link);
    if (!anchor) return std::nullopt;
    auto target = POSIX::readLink(anchor->place());
    return target ? std::optional(*std::move(target)) : std::nullopt;
}

bool hasSize(FileItemView item) {
    const auto kind = item.kind().which();
    return kind == FileKind::Case::file || kind == FileKind::Case::symlink;
}

} // namespace

ItemValues ItemValues::known(FileItemView item) {
    ItemValues facts{.url = item.url(),
                     .type = FileTypeNames::known(item).value_or(""),
                     .size = hasSize(item) ? valueOf(item.size()) : std::nullopt,
                     .modified = valueOf(item.modificationDate()),
                     .created = valueOf(item.creationDate()),
                     .opened = {},
                     .permissions = {},
                     .owner = {},
                     .group = {},
                     .isHidden = item.isHidden(),
                     .isFolder = item.isDirectoryLike() || item.isPackage(),
                     .linkTarget = {},
                     .dimensions = {},
                     .problem = {}};
    return facts;
}

ItemValues ItemValues::read(const FileItem& item) {
    ItemValues facts = known(item);
    facts.type = FileTypeNames::name(item);
    const auto status = POSIX::lstat(facts.url);
    if (!status) {
        facts.problem = status.error();
        return facts;
    }
    // Fresher than the listing.
    if (hasSize(item)) facts.size = status->size;
    facts.modified = status->modified;
    facts.opened = status->accessed;
    if (status->born != FileTime{}) facts.created = status->born;
    facts.owner = ownerName(status->owner);
    facts.group = groupName(status->group);
    if (status->isSymlink())
        facts.linkTarget = targetOf(facts.url);
    else
        facts.permissions = status->permissions();
    return facts;
}

std::optional<ItemValues::Dimensions> ItemValues::dimensionsOf(const FileItem& item) {
    const auto type = item.typeIdentifier();
    if (!type.hasValue() || !type.value().starts_with("image/")) return std::nullopt;
    // Formats that tell their size further behind are not worth the reading.
    constexpr std::size_t mostRead = std::size_t{1} << 20;
    const auto beginning = beginningOf(item.url(), mostRead);
    if (!beginning) return std::nullopt;
    QByteArray bytes = QByteArray::fromRawData(beginning->data(), static_cast<qsizetype>(beginning->size()));
    QBuffer buffer(&bytes);
    QImageReader reader(&buffer);
    const QSize size = reader.size();
    if (!size.isValid()) return std::nullopt;
    // Photographs say in which direction they are to be turned.
    const bool isTurned = reader.transformation().testFlag(QImageIOHandler::TransformationRotate90);
    return isTurned ? Dimensions{size.height(), size.width()} : Dimensions{size.width(), size.height()};
}

FileItem itemAt(const FileURL& url) {
    return FileItem::make(url.isRoot() ? std::string_view(".") : url.name(), url.parent(), 0);
}

bool areAlike(const FileItem& before, FileItemView now) {
    return before.name() == now.name() && before.folder() == now.folder() && before.kind() == now.kind() &&
           before.size() == now.size() && before.modificationDate() == now.modificationDate() &&
           before.identity() == now.identity() && before.accessError() == now.accessError();
}

} // namespace ombrel
