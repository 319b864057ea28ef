#include "operations/ArchiveWriter.h"

#include "base/FileName.h"
#include "listing/POSIXEntries.h"
#include "listing/POSIXFiles.h"

#include <fcntl.h>
#include <sys/mman.h>

#include <algorithm>
#include <utility>

namespace ombrel {
namespace {

using Error = FileOperationError;

/// Whether zip takes the name for what it is, as a line of its input.
bool isPlain(const std::string& path) {
    constexpr std::size_t longest = 1000;
    constexpr char firstPrintable = ' ', lastPrintable = '~';
    const bool isPrintable =
        std::ranges::all_of(path, [](char byte) { return byte >= firstPrintable && byte <= lastPrintable; });
    return isPrintable && path.size() <= longest && !path.ends_with(' ') && !path.contains('\\');
}

/// What a tool is to read from its standard input. It lies in memory, so that nobody waits for anybody.
POSIX::Result<OwnedFd> inputOf(const std::string& text) {
    OwnedFd file(::memfd_create("names", MFD_CLOEXEC));
    if (!file) return std::unexpected(POSIXFailure::current());
    if (auto written = POSIX::writeAll(file.get(), text); !written) return std::unexpected(written.error());
    if (auto sought = POSIX::seek(file.get(), 0); !sought) return std::unexpected(sought.error());
    return file;
}

std::int64_t sizeOf(const FileURL& url) {
    const auto status = POSIX::lstat(url);
    return status && status->isRegular() ? status->size : 0;
}

} // namespace

ArchiveWriter::ArchiveWriter(const ArchiveContents& contents, std::size_t sources,
                             const ArchiveSettings& settings)
    : contents_(contents), settings_(settings) {
    const bool isForZip = sources > 1 || contents.totals.bytes >= settings.dittoLimit;
    part_ = isForZip && std::ranges::all_of(contents.paths, isPlain) ? Part::zip : Part::ditto;
}

std::string ArchiveWriter::namesForTool() const {
    std::string names;
    for (const auto& path : contents_.paths) {
        // "-" alone would mean the standard input to zip. A backslash in a name without slashes is taken for
        // a foreign slash where archives are read.
        const bool isMarked = part_ == Part::zip || (path.contains('\\') && !path.contains('/'));
        names.append(isMarked ? "./" : "").append(path).push_back(part_ == Part::zip ? '\n' : '\0');
    }
    return names;
}

std::expected<void, ArchiveFailure> ArchiveWriter::write(int output, JobRun& run) const {
    const auto input = inputOf(namesForTool());
    if (!input) return std::unexpected(Error::from(input.error()));
    const auto folder = POSIX::open(contents_.directory, O_RDONLY | O_DIRECTORY);
    if (!folder) return std::unexpected(Error::from(folder.error()));
    ArchiveTool::Command command{
        .tool = "zip", .arguments = {}, .folder = folder->get(), .input = input->get(), .output = output};
    auto format = ArchiveProgress::Format::zip;
    if (part_ == Part::zip) {
        command.arguments = {"-y", "-nw", "-ds", "1m", "-", "-@"};
    } else {
        format = ArchiveProgress::Format::ditto;
        command.tool = "bsdtar";
        command.arguments = {"-c", "-v", "-n", "--format", "zip", "-f", "-", "--null", "-T", "-"};
        // It marks names as UTF-8 by the locale, and such as are not could never be read again.
        if (!std::ranges::all_of(contents_.paths, FileName::isValidUTF8)) command.locale = "C";
    }
    ArchiveProgress progress(format, contents_.totals, contents_.directory, sizeOf);
    auto written = ArchiveTool::run(command, settings_, {progress, run}, output);
    if (written && progress.doneItems() != contents_.totals.items)
        return std::unexpected(Error(Error::Case::sourceChanged));
    return written;
}

} // namespace ombrel
