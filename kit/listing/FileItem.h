#pragma once

#include "base/FileURL.h"
#include "base/Metadata.h"
#include "listing/FileKind.h"
#include "listing/FileReference.h"
#include "listing/FileStatus.h"
#include "listing/ItemBlock.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace ombrel {

/// One listed entry, looked at in place: what the accessors answer lives in the block of items that the view
/// points into and is valid as long as that block is. Two machine words, copied freely; any thread.
class FileItemView {
public:
    /// Identity of a row: two items of different listings never share one, even for the same name.
    struct ID {
        std::uint64_t generation = 0; ///< of the listing request that made the item
        std::string_view name;
        friend bool operator==(const ID&, const ID&) = default;
    };

    FileItemView(const ItemBlock& block, std::uint32_t slot) noexcept : block_(&block), slot_(slot) {}

    [[nodiscard]] ID id() const noexcept { return {block_->generation, name()}; }
    /// Made when asked for: the folder's location with the name appended, marked as a folder when the entry
    /// is one.
    [[nodiscard]] FileURL url() const;
    /// The folder that the entry lies in.
    [[nodiscard]] const FileURL& folder() const noexcept { return block_->places[record().place].folder; }
    /// The bytes of the entry's name.
    [[nodiscard]] std::string_view name() const noexcept { return block_->name(record()); }
    [[nodiscard]] FileKind kind() const noexcept;
    /// Bytes; regular files and links only.
    [[nodiscard]] Metadata<std::int64_t> size() const;
    [[nodiscard]] Metadata<FileTime> modificationDate() const;
    /// When the entry was made; `unknown` where the file system does not keep it.
    [[nodiscard]] Metadata<FileTime> creationDate() const;
    [[nodiscard]] Metadata<std::string_view> typeIdentifier() const;
    /// The type by number; 0 when there is no value.
    [[nodiscard]] TypeIndex type() const noexcept { return record().type; }
    /// Begins with "." or is listed in the folder's ".hidden".
    [[nodiscard]] bool isHidden() const noexcept { return record().flags & ItemRecord::hidden; }
    /// One of the system's own items (see FileVisibility).
    [[nodiscard]] bool isProtected() const noexcept { return record().flags & ItemRecord::isProtected; }
    [[nodiscard]] std::optional<FileIdentity> identity() const;
    /// Why the entry could not be examined.
    [[nodiscard]] std::optional<POSIXFailure> readError() const;
    /// Why the user cannot read it: the entry itself, what is in the file or folder (EACCES), or where the
    /// link leads.
    [[nodiscard]] std::optional<POSIXFailure> accessError() const;

    /// A folder or a link to one; packages are not.
    [[nodiscard]] bool isDirectoryLike() const noexcept { return record().flags & ItemRecord::directoryLike; }
    [[nodiscard]] bool isPackage() const noexcept { return kind() == FileKind::Case::package; }
    /// Lower case (ASCII letters).
    [[nodiscard]] std::string pathExtension() const;
    [[nodiscard]] FileReference reference() const { return {url(), identity()}; }

    /// Bytes that order names by the locale's rules under plain comparison.
    [[nodiscard]] std::string_view sortKey() const noexcept { return block_->key(record()); }

    [[nodiscard]] const ItemBlock& block() const noexcept { return *block_; }
    [[nodiscard]] const ItemRecord& record() const noexcept { return block_->records[slot_]; }
    [[nodiscard]] std::uint32_t slot() const noexcept { return slot_; }

private:
    const ItemBlock* block_;
    std::uint32_t slot_;
};

/// One listed entry as a value: taken once, never refreshed in place. It keeps the memory it lives in alive,
/// so copying it copies a handle and never a string. Equality compares what the two say, field by field.
class FileItem : public FileItemView {
public:
    FileItem(std::shared_ptr<const ItemBlock> block, std::uint32_t slot) noexcept
        : FileItemView(*block, slot), owner_(std::move(block)) {}

    /// Looks at one entry of `folder` (one lstat, one call more for links and for what may be locked). Never
    /// fails: what goes wrong is in the item. `isDirectoryHint` is what the folder's own entry said.
    /// Blocking.
    [[nodiscard]] static FileItem make(std::string_view name, const FileURL& folder, std::uint64_t generation,
                                       std::optional<bool> isDirectoryHint = std::nullopt);

    /// Whether a folder of that name is a package: decided by the name alone.
    [[nodiscard]] static bool isPackageName(std::string_view name);
    /// Where the link at `url` leads: one stat. Blocking.
    [[nodiscard]] static SymlinkTarget symlinkTarget(const FileURL& url);

    [[nodiscard]] const std::shared_ptr<const ItemBlock>& owner() const noexcept { return owner_; }

    friend bool operator==(const FileItem& a, const FileItem& b);

private:
    std::shared_ptr<const ItemBlock> owner_;
};

} // namespace ombrel

template <>
struct std::hash<ombrel::FileItem> {
    std::size_t operator()(const ombrel::FileItem& item) const noexcept;
};
