#pragma once

#include "base/Hash.h"
#include "listing/FileStatus.h"
#include "operations/ArchiveFacts.h"
#include "operations/TrashUnavailableReason.h"

#include <cstdint>
#include <optional>
#include <string>

namespace ombrel {

/// What a conflict prompt may show of an item; each field is absent where it is not known.
struct ItemFacts {
    std::optional<std::int64_t> size; ///< bytes; regular files only
    std::optional<FileTime> modified;

    [[nodiscard]] std::size_t hashValue() const {
        return hashOf(size, modified.has_value(), modified.value_or(FileTime{}).seconds,
                      modified.value_or(FileTime{}).nanoseconds);
    }
    friend bool operator==(const ItemFacts&, const ItemFacts&) = default;
};

/// What is known of a failure beyond its kind; each field is absent where it does not apply.
struct ErrorFacts {
    std::optional<std::int64_t> missingBytes;          ///< of `noSpace`: how much room the target lacks
    std::optional<TrashUnavailableReason> trashReason; ///< of `trashUnavailable`
    bool isMountPoint = false; ///< a file system is mounted there, which the operation does not touch
    std::string toolWords;     ///< of `system`: what the tool wrote to its error output
    std::optional<ArchiveFacts> archive = std::nullopt; ///< of `system` with the domain "archive"

    [[nodiscard]] std::size_t hashValue() const {
        return hashOf(missingBytes, trashReason, isMountPoint, toolWords, archive);
    }
    friend bool operator==(const ErrorFacts&, const ErrorFacts&) = default;
};

} // namespace ombrel
