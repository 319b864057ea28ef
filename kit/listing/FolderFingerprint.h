#pragma once

#include "listing/POSIX.h"

#include <cstdint>
#include <stop_token>

namespace ombrel {

/// What a folder's listing looked like at one moment, in a few bytes: the names, types, permissions, sizes
/// and times of its entries, in whatever order the folder gives them. Two that are equal come from listings
/// that are, but for a coincidence that does not happen.
class FolderFingerprint {
public:
    enum class Numbers : std::uint8_t {
        trusted,   ///< inode numbers and times of status changes count too
        untrusted, ///< the file system makes them up anew (FUSE, network)
    };

    /// Reads the folder, with one lstat an entry. Blocking. ECANCELED once stop is requested, which is looked
    /// at before each entry. An entry that vanishes meanwhile is none.
    [[nodiscard]] static POSIX::Result<FolderFingerprint> of(const FileURL& url, Numbers numbers,
                                                             const std::stop_token& stop = {});

    friend bool operator==(const FolderFingerprint&, const FolderFingerprint&) = default;

private:
    std::uint64_t count_ = 0;
    std::uint64_t first_ = 0, second_ = 0; ///< sums over the entries, so that order does not count
};

} // namespace ombrel
