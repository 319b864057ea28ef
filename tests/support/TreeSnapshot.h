#pragma once

#include "base/FileURL.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace ombrel::testing {

/// Everything that is worth keeping of one entry.
struct EntrySnapshot {
    std::uint32_t mode = 0; ///< type and permission bits
    std::uint32_t owner = 0, group = 0;
    std::int64_t size = 0; ///< regular files only
    std::int64_t modifiedSeconds = 0, modifiedNanoseconds = 0;
    std::size_t contents = 0; ///< a hash
    std::string target;       ///< of a link
    /// Extended attributes with their values; access control lists are among them.
    std::map<std::string, std::string> attributes;
    bool hasHole = false;

    friend bool operator==(const EntrySnapshot&, const EntrySnapshot&) = default;
};

/// A tree as it stands on disk, to be compared with itself later or with a copy: by path below the top, which
/// is the empty path. Empty when nothing is there.
using TreeSnapshot = std::map<std::string, EntrySnapshot>;

/// How much of the entries counts.
enum class Compare : std::uint8_t {
    everything,
    data,     ///< names, types, contents and targets
    metadata, ///< all but holes, owners and the folders' times
};

[[nodiscard]] TreeSnapshot snapshotOf(const std::string& path);
[[nodiscard]] inline TreeSnapshot snapshotOf(const FileURL& url) {
    return snapshotOf(url.path());
}

/// What is at `path` (below the top) and beneath it, as a tree of its own.
[[nodiscard]] TreeSnapshot partOf(const TreeSnapshot& tree, const std::string& path);

/// One line for each entry that is missing, too many or not the same; empty for equal trees.
[[nodiscard]] std::vector<std::string> differences(const TreeSnapshot& expected, const TreeSnapshot& found,
                                                   Compare compare = Compare::everything);

} // namespace ombrel::testing
