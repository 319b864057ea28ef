#pragma once

#include <cstdint>
#include <optional>

namespace ombrel {

/// Makes transfers fail on purpose, to exercise what then happens. All off unless a test says otherwise.
struct FileOperationFaults {
    std::optional<std::int32_t> failCopyWithErrno; ///< the data copy fails with it
    bool corruptStagedCopy =
        false; ///< after the data copy, the first regular file of the copy is overwritten
    /// After the data copy, the source changes: a folder receives a file "added-during-copy.txt", a file new
    /// data.
    bool mutateSourceAfterCopy = false;
    bool failSourceRemoval = false;

    friend bool operator==(const FileOperationFaults&, const FileOperationFaults&) = default;
};

} // namespace ombrel
