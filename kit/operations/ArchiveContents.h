#pragma once

#include "base/FileURL.h"
#include "operations/ArchiveFailure.h"
#include "operations/ArchiveProgress.h"
#include "operations/JobRun.h"

#include <expected>
#include <span>
#include <string>
#include <vector>

namespace ombrel {

/// Everything that is to go into an archive.
struct ArchiveContents {
    /// The folder that the names are relative to: the one that holds the sources, or the nearest one above
    /// all of them.
    FileURL directory;
    /// Paths (bytes) of all entries, a folder before what is in it.
    std::vector<std::string> paths;
    ArchiveProgress::Totals totals;
    /// What no archive can hold (sockets, pipes, devices) and was left out with the caller's consent.
    std::vector<ItemResult> leftOut;

    /// Walks the sources; a source inside another one is there only once. What cannot be read makes it fail.
    /// Counts in the run's progress.
    [[nodiscard]] static std::expected<ArchiveContents, ArchiveFailure>
    measure(std::span<const FileURL> sources, JobRun& run);
};

} // namespace ombrel
