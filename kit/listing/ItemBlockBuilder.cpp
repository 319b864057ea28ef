#include "listing/ItemBlockBuilder.h"

#include "base/FileName.h"
#include "listing/FileVisibility.h"
#include "listing/NameCollation.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace ombrel {
namespace {

constexpr std::size_t usualNameLength = 24;

std::uint8_t raw(FileKind::Case kind) noexcept {
    return static_cast<std::uint8_t>(kind);
}

FileKind::Case kindOf(const FileStatus& status) noexcept {
    switch (status.type()) {
    case S_IFDIR: return FileKind::Case::directory;
    case S_IFREG: return FileKind::Case::file;
    case S_IFLNK: return FileKind::Case::symlink;
    default: return FileKind::Case::other;
    }
}

SymlinkTarget targetOf(POSIX::Place place) {
    const auto status = POSIX::statFollowing(place);
    if (!status) return SymlinkTarget::fromError(status.error().number);
    return status->isDirectory() ? SymlinkTarget::Case::directory : SymlinkTarget::Case::file;
}

std::unique_ptr<char[]> exactCopy(const std::string& text) {
    auto copy = std::make_unique_for_overwrite<char[]>(text.size());
    std::memcpy(copy.get(), text.data(), text.size());
    return copy;
}

} // namespace

ItemBlockBuilder::ItemBlockBuilder(FileURL folder, std::uint64_t generation, std::size_t expectedItems)
    : folder_(std::move(folder)), user_(::geteuid()), block_(std::make_unique<ItemBlock>()) {
    const auto expected = std::min<std::size_t>(expectedItems, ItemBlock::capacity);
    block_->generation = generation;
    block_->records.reserve(expected);
    names_.reserve(expected * usualNameLength);
}

std::uint16_t ItemBlockBuilder::placeIndex(std::uint64_t device) {
    auto& places = block_->places;
    if (!places.empty() && places.back().device == device)
        return static_cast<std::uint16_t>(places.size() - 1);
    auto found = std::ranges::find(places, device, &ItemBlock::Place::device);
    if (found == places.end()) found = places.insert(places.end(), {folder_, device});
    return static_cast<std::uint16_t>(found - places.begin());
}

ItemRecord& ItemBlockBuilder::append(std::string_view name, bool isDirectoryHint) {
    ItemRecord& record = block_->records.emplace_back();
    record.nameOffset = static_cast<std::uint32_t>(names_.size());
    record.nameLength = static_cast<std::uint16_t>(name.size());
    names_.append(name);
    if (isDirectoryHint) record.flags |= ItemRecord::markedDirectory;
    return record;
}

void ItemBlockBuilder::addUnexamined(std::string_view name, bool isDirectoryHint, POSIXFailure failure) {
    ItemRecord& record = append(name, isDirectoryHint);
    record.kind = raw(FileKind::Case::other);
    record.errorNumber = static_cast<std::uint16_t>(failure.number);
    ++unreadableCount_;
}

bool ItemBlockBuilder::isReadDenied(POSIX::Place place, const FileStatus& status) const {
    if (!status.isRegular() && !status.isDirectory()) return false;
    constexpr std::uint32_t everybody = S_IRUSR | S_IRGRP | S_IROTH;
    const bool isMine = status.owner == user_;
    if ((status.mode & everybody) == everybody || (isMine && (status.mode & S_IRUSR))) return false;
    const auto readable = POSIX::checkReadable(place);
    return !readable && readable.error().number == EACCES;
}

void ItemBlockBuilder::examine(POSIX::Place place, std::string_view name, bool isDirectoryHint) {
    const auto status = POSIX::lstat(place);
    if (!status) return addUnexamined(name, isDirectoryHint, status.error());
    ItemRecord& record = append(name, isDirectoryHint);
    const auto kind = kindOf(*status);
    record.kind = raw(kind);
    record.inode = status->identity.inode;
    record.place = placeIndex(status->identity.device);
    record.modifiedSeconds = status->modified.seconds;
    record.modifiedNanoseconds = status->modified.nanoseconds;
    record.bornSeconds = status->born.seconds;
    record.bornNanoseconds = status->born.nanoseconds;
    if (kind == FileKind::Case::file || kind == FileKind::Case::symlink) {
        record.size = status->size;
        record.flags |= ItemRecord::hasSize;
    }
    if (isReadDenied(place, *status)) record.flags |= ItemRecord::readDenied;
    if (kind == FileKind::Case::directory)
        record.flags |= ItemRecord::directoryLike | ItemRecord::markedDirectory;
    if (kind == FileKind::Case::symlink) {
        const auto target = targetOf(place);
        record.target = static_cast<std::uint8_t>(target.which());
        record.errorNumber = static_cast<std::uint16_t>(target.errorNumber());
        if (target == SymlinkTarget::Case::directory) record.flags |= ItemRecord::directoryLike;
    }
}

bool ItemBlockBuilder::keepLastIfDirectoryLike() {
    const ItemRecord& last = block_->records.back();
    const auto name = std::string_view(names_).substr(last.nameOffset);
    const bool isPackage = last.kind == raw(FileKind::Case::directory) &&
                           TypeDatabase::packageType(FileName::extension(name)) != 0;
    if (last.flags & ItemRecord::directoryLike && !isPackage) return true;
    if (last.kind == raw(FileKind::Case::other) && last.errorNumber != 0) --unreadableCount_;
    names_.resize(last.nameOffset);
    block_->records.pop_back();
    return false;
}

void ItemBlockBuilder::complete(ItemRecord& record, std::string_view name, const HiddenNames& hidden) const {
    if (name.front() == '.' || (!hidden.empty() && hidden.contains(name))) record.flags |= ItemRecord::hidden;
    if (FileVisibility::isProtectedSystemItem(name)) record.flags |= ItemRecord::isProtected;
    switch (static_cast<FileKind::Case>(record.kind)) {
    case FileKind::Case::directory:
        record.type = TypeDatabase::packageType(FileName::extension(name));
        if (record.type == 0) {
            record.type = TypeDatabase::folder();
        } else {
            record.kind = raw(FileKind::Case::package);
            record.flags &= static_cast<std::uint8_t>(~ItemRecord::directoryLike);
        }
        break;
    case FileKind::Case::file:
        record.type = TypeDatabase::fileType(FileName::extension(name));
        if (record.type == 0) record.type = TypeDatabase::data();
        break;
    case FileKind::Case::symlink: record.type = TypeDatabase::symbolicLink(); break;
    default: break;
    }
}

std::shared_ptr<const ItemBlock> ItemBlockBuilder::finish(const HiddenNames& hidden) && {
    std::string keys;
    keys.reserve(names_.size() + names_.size() / 4);
    for (ItemRecord& record : block_->records) {
        const auto name = std::string_view(names_).substr(record.nameOffset, record.nameLength);
        complete(record, name, hidden);
        record.keyOffset = static_cast<std::uint32_t>(keys.size());
        NameCollation::appendKey(name, keys);
        record.keyLength = static_cast<std::uint16_t>(keys.size() - record.keyOffset);
    }
    if (block_->places.empty()) block_->places.push_back({folder_});
    block_->records.shrink_to_fit();
    block_->names = exactCopy(names_);
    block_->keys = exactCopy(keys);
    return std::move(block_);
}

} // namespace ombrel
