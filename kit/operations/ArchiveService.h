#pragma once

#include "base/FileURL.h"
#include "listing/FileReference.h"
#include "operations/ArchiveExtraction.h"
#include "operations/ArchiveFailure.h"
#include "operations/ArchivePlan.h"
#include "operations/ArchiveProgress.h"
#include "operations/ArchiveTool.h"
#include "operations/JobRun.h"
#include "operations/OperationHooks.h"
#include "operations/OperationReport.h"
#include "operations/ReadProgress.h"
#include "operations/StreamReader.h"

#include <expected>
#include <span>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

namespace ombrel {

/// Archives, made and extracted by the system's own tools. Keeps nothing between calls. Blocking; any thread
/// but the main one.
namespace ArchiveService {

using Failure = ArchiveFailure;
using Extractor = ArchiveExtractor;
using Monitor = ArchiveMonitor;
using Settings = ArchiveSettings;

[[nodiscard]] bool isZip(const FileURL& url);
/// Whether there is a plan for the name.
[[nodiscard]] bool isExtractable(const FileURL& url);

/// The name (bytes) of the archive of these items, ending in ".zip": that of the first one, without its
/// extension unless it is marked as a folder.
[[nodiscard]] std::string archiveName(std::span<const FileURL> sources);

/// Makes a zip of `sources` in `folder`, under the first free name that begins like `preferredName` (bytes;
/// empty for `archiveName`). It is written under a hidden name and appears when it is whole. Answers where
/// it is. What was left out with the caller's consent is added to `leftOut`.
[[nodiscard]] std::expected<FileURL, Failure> compress(std::span<const FileURL> sources,
                                                       const FileURL& folder, std::string_view preferredName,
                                                       JobRun& run, const Settings& settings,
                                                       std::vector<ItemResult>& leftOut);

/// The same as a whole job that asks about failures: a result for each source, with the archive as its
/// destination, then one for each entry that was left out.
[[nodiscard]] OperationReport compress(std::span<const FileReference> sources, const FileURL& folder,
                                       std::string_view preferredName, const OperationHooks& hooks,
                                       std::stop_token stop = {}, const Settings& settings = {});

/// Extracts an archive beside itself; see `extractArchive`.
[[nodiscard]] std::expected<Extracted, Failure> extract(const FileURL& archive, JobRun& run,
                                                        const Settings& settings);

/// Extracts archives one after another, as a whole job that asks about failures: a result for each archive,
/// with what it became as its destination, each followed by those of what was taken away for safety.
[[nodiscard]] OperationReport extract(std::span<const FileReference> archives, const OperationHooks& hooks,
                                      std::stop_token stop = {}, const Settings& settings = {});

} // namespace ArchiveService
} // namespace ombrel
