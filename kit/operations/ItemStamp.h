#pragma once

#include "listing/FileStatus.h"
#include "listing/POSIX.h"

#include <cstdint>
#include <optional>

namespace ombrel {

/// What an item looked like at some moment, beyond which object it is: enough to tell that somebody has
/// changed it since.
struct ItemStamp {
    std::uint32_t type = 0; ///< an S_IF constant
    std::int64_t size = 0;  ///< bytes; 0 for folders
    FileTime modified;      ///< zero for folders, whose times say nothing of what is in them
    /// Of a folder, when it was asked for: a hash over the names, types, sizes and times of all that is in
    /// it.
    std::optional<std::uint64_t> contents;

    /// What is known from one look.
    [[nodiscard]] static ItemStamp of(const FileStatus& status) noexcept;
    /// The same, with everything below a folder read. Blocking.
    [[nodiscard]] static POSIX::Result<ItemStamp> reading(POSIX::Place place, const FileStatus& status);

    /// Whether nothing differs that both know.
    [[nodiscard]] bool agreesWith(const ItemStamp& other) const noexcept;
};

} // namespace ombrel
