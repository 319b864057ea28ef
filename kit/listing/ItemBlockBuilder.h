#pragma once

#include "listing/FileKind.h"
#include "listing/HiddenNames.h"
#include "listing/ItemBlock.h"
#include "listing/POSIX.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace ombrel {

/// Makes a block of items: first what the system says of each entry, then, at once for all, what follows from
/// the names (types, flags, sort keys).
class ItemBlockBuilder {
public:
    ItemBlockBuilder(FileURL folder, std::uint64_t generation, std::size_t expectedItems);

    /// Looks at the entry at `place` and adds it under `name`: one lstat, one stat for a link, and one more
    /// call for what its permission bits may keep the user from reading.
    /// `isDirectoryHint` is what the folder's own entry said. Blocking; at most ItemBlock::capacity entries.
    void examine(POSIX::Place place, std::string_view name, bool isDirectoryHint);
    /// Adds an entry that cannot be looked at.
    void addUnexamined(std::string_view name, bool isDirectoryHint, POSIXFailure failure);

    [[nodiscard]] std::size_t size() const noexcept { return block_->records.size(); }
    /// How many of the items could not be examined.
    [[nodiscard]] std::int64_t unreadableCount() const noexcept { return unreadableCount_; }

    /// Drops the last item when it is neither a folder (packages are not) nor a link to one. Answers whether
    /// it stayed.
    bool keepLastIfDirectoryLike();

    /// The finished block.
    [[nodiscard]] std::shared_ptr<const ItemBlock> finish(const HiddenNames& hidden) &&;

private:
    ItemRecord& append(std::string_view name, bool isDirectoryHint);
    [[nodiscard]] bool isReadDenied(POSIX::Place place, const FileStatus& status) const;
    std::uint16_t placeIndex(std::uint64_t device);
    void complete(ItemRecord& record, std::string_view name, const HiddenNames& hidden) const;

    FileURL folder_;
    std::uint32_t user_; ///< who reads the folder
    std::unique_ptr<ItemBlock> block_;
    std::string names_;
    std::int64_t unreadableCount_ = 0;
};

} // namespace ombrel
