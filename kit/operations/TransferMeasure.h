#pragma once

#include "listing/FileSystemTraits.h"
#include "operations/FileOperationError.h"
#include "operations/TransferItem.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace ombrel {

/// What a look over an item's tree tells before it is copied.
struct TransferMeasure {
    /// An entry that the destination's file system cannot take.
    struct Refusal {
        std::string path; ///< below the item; empty for the item itself
        FileOperationError error;
    };

    bool isKnown = false;       ///< false until it was measured
    std::int64_t bytes = 0;     ///< of all regular files
    std::int64_t allocated = 0; ///< what they take up; less for files with holes
    std::vector<Refusal> refusals;

    /// Walks the tree without following links. What cannot be read counts for nothing: whoever copies it is
    /// told. `goesOn` is asked for each folder, on two threads.
    [[nodiscard]] static TransferMeasure of(const FileReference& item, const FileSystemTraits& target,
                                            const std::function<bool()>& goesOn);
    /// What the contents of a regular file take up, in bytes.
    [[nodiscard]] static std::int64_t roomOf(const FileStatus& file) noexcept;
};

} // namespace ombrel
