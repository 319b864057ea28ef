#pragma once

#include "listing/POSIX.h"
#include "operations/MetadataSupport.h"
#include "operations/Verification.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>

namespace ombrel {

/// Compares files with their copies, one pair after another, through two buffers: the contents byte for byte
/// as they are read side by side, then what the files carry. One thread at a time.
class FilePairComparison {
public:
    /// A part of the contents, or all.
    struct Range {
        std::int64_t start = 0;
        std::int64_t end = std::numeric_limits<std::int64_t>::max();
    };
    /// What is known of a pair because it was copied a moment ago, and is looked at once more when everything
    /// is copied: then its source must be as it was, and its copy must have the right size, mode and time.
    struct Known {
        std::int64_t size = -1;       ///< bytes of both; -1 for a pair of which nothing is known
        bool hasNoAttributes = false; ///< the source carries none
    };
    struct Settings {
        /// Reads the copy from its medium where the kernel lets go of what it keeps in memory.
        bool readsPastCache = false;
        bool comparesMetadata = true;
    };

    /// `goesOn` is asked before each chunk; when it says no the answer is `different`.
    FilePairComparison(Settings settings, std::function<bool()> goesOn);

    [[nodiscard]] Verification compare(POSIX::Place source, POSIX::Place copy, Range range,
                                       const MetadataSupport& support);
    /// What remains to be compared of a pair of known size: contents and attributes.
    [[nodiscard]] Verification compareRest(POSIX::Place source, POSIX::Place copy, Range range, Known known,
                                           const MetadataSupport& support);

private:
    [[nodiscard]] bool haveEqualContents(int source, int copy, Range range, std::int64_t size);

    static constexpr std::size_t bufferBytes = std::size_t{1} << 20;
    Settings settings_;
    std::function<bool()> goesOn_;
    std::unique_ptr<std::byte[]> buffers_;
};

} // namespace ombrel
