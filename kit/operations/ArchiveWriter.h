#pragma once

#include "operations/ArchiveContents.h"
#include "operations/ArchiveTool.h"

#include <cstdint>
#include <expected>
#include <string>

namespace ombrel {

/// Writes zips with the tool that suits what goes in.
///
/// Several sources, or `dittoLimit` bytes and more, are for zip; one smaller source is for bsdtar. Both are
/// told every entry's name on their standard input, so that no number and no form of names is too much, and
/// write the archive to the open file that they are given. zip reads a name a line, trims it and marks none
/// as UTF-8; whatever is not plain ASCII is therefore for bsdtar too, which takes any bytes.
class ArchiveWriter {
public:
    enum class Part : std::uint8_t { ditto, zip };

    ArchiveWriter(const ArchiveContents& contents, std::size_t sources, const ArchiveSettings& settings);

    [[nodiscard]] Part part() const noexcept { return part_; }
    /// Writes the archive to `output`, an empty open file. `sourceChanged` when the tool left something out.
    [[nodiscard]] std::expected<void, ArchiveFailure> write(int output, JobRun& run) const;

private:
    [[nodiscard]] std::string namesForTool() const;

    const ArchiveContents& contents_;
    const ArchiveSettings& settings_;
    Part part_;
};

} // namespace ombrel
