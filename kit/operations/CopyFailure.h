#pragma once

#include "base/POSIXFailure.h"
#include "operations/FileOperationError.h"

#include <cstdint>
#include <expected>

namespace ombrel {

/// Why one entry could not be copied.
struct CopyFailure {
    /// What else it concerns: other entries may well succeed, or every further one would meet the same.
    enum class Reach : std::uint8_t { entry, item };

    FileOperationError error;
    Reach reach = Reach::entry;

    /// A call on the source left this errno.
    [[nodiscard]] static CopyFailure ofSource(POSIXFailure failure);
    /// A call on the copy left this errno.
    [[nodiscard]] static CopyFailure ofCopy(POSIXFailure failure);
    /// The same for a call that gives the copy its name.
    [[nodiscard]] static CopyFailure ofCopyName(POSIXFailure failure);
    /// Attributes could not be carried over.
    [[nodiscard]] static CopyFailure ofMetadata(POSIXFailure failure);
};

template <typename T>
using CopyResult = std::expected<T, CopyFailure>;

} // namespace ombrel
