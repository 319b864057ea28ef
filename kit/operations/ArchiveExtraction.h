#pragma once

#include "base/FileURL.h"
#include "operations/ArchiveTool.h"
#include "operations/OperationReport.h"

#include <expected>
#include <functional>
#include <vector>

namespace ombrel {

/// What an extraction came to.
struct Extracted {
    FileURL url; ///< the new folder or file
    /// What was taken away from the contents for safety, each with its reason, and what could not be cleaned
    /// away.
    std::vector<ItemResult> notes;
};

/// Extracts one archive beside itself, into a new folder (or file, for a single compressed one) named after
/// it, with a number where that name is taken. Everything is written under a hidden name first and appears at
/// once, when the tool has ended well; until then nothing does. An archive that holds nothing but one folder
/// of the very name becomes that folder. `scaled` turns the archive's progress into that of the job.
[[nodiscard]] std::expected<Extracted, ArchiveFailure>
extractArchive(const FileURL& archive, JobRun& run, const ArchiveSettings& settings,
               std::function<OperationProgress(const OperationProgress&)> scaled = {});

} // namespace ombrel
