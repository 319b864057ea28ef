#pragma once

#include "base/FileURL.h"
#include "base/OwnedFd.h"
#include "operations/ArchivePlan.h"
#include "operations/ArchiveProgress.h"
#include "operations/ArchiveTool.h"

#include <cstdint>
#include <expected>
#include <functional>
#include <string>

namespace ombrel {

/// An archive that is open for its tool.
struct OpenArchive {
    OwnedFd file;
    std::int64_t size = 0; ///< bytes

    /// Links are followed. What is not a regular file is refused; an empty one is `damaged`.
    [[nodiscard]] static std::expected<OpenArchive, ArchiveFailure> open(const FileURL& url);
};

/// Gets the contents of one archive out by the tool that its plan names.
///
/// The tool is given the archive as its standard input and works in a folder that holds nothing else, so no
/// name stands on a command line. It is told to give files to whoever runs it, with the usual permissions,
/// and to refuse names that lead out of the folder.
class ArchiveReader {
public:
    ArchiveReader(const ArchivePlan& plan, const OpenArchive& archive, const ArchiveSettings& settings,
                  JobRun& run)
        : plan_(plan), archive_(archive), settings_(settings), run_(run) {}

    /// Whether the archive holds one file and no names.
    [[nodiscard]] bool isSingleFile() const noexcept;
    /// Turns the reader's progress into that of the job.
    std::function<OperationProgress(const OperationProgress&)> scaled;

    /// Extracts into `folder`, which is open, empty and reached as `url`.
    [[nodiscard]] std::expected<void, ArchiveFailure> extractInto(int folder, const FileURL& url) const;
    /// Writes the one file, whose name will be `name`, to `output`.
    [[nodiscard]] std::expected<void, ArchiveFailure> decompressTo(int output, const std::string& name) const;

private:
    using Done = std::expected<void, ArchiveFailure>;
    [[nodiscard]] Done readZip(int folder, const FileURL& url) const;
    [[nodiscard]] Done readZipLeniently(int folder, const FileURL& url) const;
    [[nodiscard]] std::expected<ArchiveProgress::Totals, ArchiveFailure> zipTotals() const;
    [[nodiscard]] Done bsdtar(int folder, ArchiveProgressSource& source) const;
    [[nodiscard]] Done refuseManifest() const;
    [[nodiscard]] Done rewound() const;

    const ArchivePlan& plan_;
    const OpenArchive& archive_;
    const ArchiveSettings& settings_;
    JobRun& run_;
};

} // namespace ombrel
