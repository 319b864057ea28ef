#include "operations/ArchiveReader.h"

#include "listing/EntryReader.h"
#include "listing/POSIXEntries.h"
#include "listing/POSIXFiles.h"
#include "operations/ReadProgress.h"
#include "operations/StagingRemoval.h"

#include <fcntl.h>

#include <cerrno>
#include <cstdio>
#include <vector>

namespace ombrel {
namespace {

using Error = FileOperationError;
using Format = ArchiveProgress::Format;

/// Takes the sum out of what zipinfo writes: "15 files, 3500029 bytes uncompressed, ...".
class ZipInfo final : public ArchiveProgressSource {
public:
    ArchiveProgress::Totals totals;

    OperationProgress progress() override { return {}; }
    bool consume(std::string_view line) override {
        long long items = 0, bytes = 0;
        if (std::sscanf(std::string(line).c_str(), "%lld file%*[s,] %lld bytes uncompressed", &items,
                        &bytes) != 2)
            return false;
        totals = {items, bytes};
        return true;
    }
    void partial(std::string_view) override {}
    void finish() override {}
};

/// Takes the format out of what bsdtar writes about an archive: "Archive Format: mtree,  Compression: gzip".
class FormatInfo final : public ArchiveProgressSource {
public:
    bool isManifest = false;

    OperationProgress progress() override { return {}; }
    bool consume(std::string_view line) override {
        if (line.starts_with("Archive Format: mtree")) isManifest = true;
        return false;
    }
    void partial(std::string_view) override {}
    void finish() override {}
};

std::int64_t sizeOf(const FileURL& url) {
    const auto status = POSIX::lstat(url);
    return status && status->isRegular() ? status->size : 0;
}

/// Removes everything in an open folder.
void empty(int folder) {
    std::vector<std::string> names;
    if (!POSIX::rewind(folder)) return;
    EntryReader reader;
    reader.begin(folder);
    for (;;) {
        const auto entry = reader.next();
        if (!entry || !*entry) break;
        names.emplace_back((*entry)->name);
    }
    for (const auto& name : names)
        (void)removeStaging({folder, name.c_str()});
}

bool isAboutNames(const ArchiveFailure& failure) {
    return failure.which() == ArchiveFailure::Case::tool &&
           (failure.words().contains("cannot be converted") ||
            failure.words().contains("unreadable filename"));
}

} // namespace

std::expected<OpenArchive, ArchiveFailure> OpenArchive::open(const FileURL& url) {
    auto file = POSIX::open(url, O_RDONLY | O_NONBLOCK | O_NOCTTY);
    if (!file) return std::unexpected(Error::from(file.error()));
    const auto status = POSIX::status(file->get());
    if (!status) return std::unexpected(Error::from(status.error()));
    if (status->isDirectory()) return std::unexpected(Error::posix(EISDIR));
    if (!status->isRegular()) return std::unexpected(Error::posix(EOPNOTSUPP));
    if (status->size == 0) return std::unexpected(ArchiveFailure::archive(ArchiveFault::damaged));
    return OpenArchive{std::move(*file), status->size};
}

bool ArchiveReader::isSingleFile() const noexcept {
    return std::holds_alternative<ArchiveExtractor::SingleFile>(plan_.extractor.part);
}

std::expected<void, ArchiveFailure> ArchiveReader::extractInto(int folder, const FileURL& url) const {
    if (std::holds_alternative<ArchiveExtractor::Ditto>(plan_.extractor.part)) return readZip(folder, url);
    ReadProgress source(archive_.file.get(), archive_.size, ReadProgress::BSDTar{});
    return bsdtar(folder, source);
}

std::expected<void, ArchiveFailure> ArchiveReader::decompressTo(int output, const std::string& name) const {
    const auto& part = std::get<ArchiveExtractor::SingleFile>(plan_.extractor.part);
    if (auto ready = rewound(); !ready) return ready;
    ReadProgress source(archive_.file.get(), archive_.size, ReadProgress::Single{name});
    return ArchiveTool::run(
        {.tool = part.tool, .arguments = part.arguments, .input = archive_.file.get(), .output = output},
        settings_, {source, run_, scaled}, output);
}

std::expected<void, ArchiveFailure> ArchiveReader::readZip(int folder, const FileURL& url) const {
    const auto totals = zipTotals();
    if (!totals) return std::unexpected(totals.error());
    ArchiveProgress known(Format::ditto, *totals, url, sizeOf);
    ReadProgress unknown(archive_.file.get(), archive_.size, ReadProgress::BSDTar{});
    auto read = totals->bytes > 0 ? bsdtar(folder, known) : bsdtar(folder, unknown);
    if (!read && isAboutNames(read.error())) read = readZipLeniently(folder, url);
    if (read) (void)removeStaging({folder, "__MACOSX"});
    return read;
}

/// bsdtar does not extract names that are marked as UTF-8 and are not; unzip takes them as they are.
std::expected<void, ArchiveFailure> ArchiveReader::readZipLeniently(int folder, const FileURL& url) const {
    empty(folder);
    ArchiveProgress source(Format::ditto, {}, url, sizeOf);
    // It opens the archive anew by this name. Without a password it would ask for one.
    return ArchiveTool::run({.tool = "unzip",
                             .arguments = {"-o", "-P", "", "/dev/stdin"},
                             .folder = folder,
                             .input = archive_.file.get()},
                            settings_, {source, run_, scaled}, folder);
}

/// Nothing where they cannot be had, for the archive may be good all the same.
std::expected<ArchiveProgress::Totals, ArchiveFailure> ArchiveReader::zipTotals() const {
    ZipInfo source;
    const auto told =
        ArchiveTool::run({.tool = "zipinfo", .arguments = {"-t", "/dev/stdin"}, .input = archive_.file.get()},
                         settings_, {source, run_, scaled});
    if (!told && told.error().which() == ArchiveFailure::Case::cancelled)
        return std::unexpected(told.error());
    return source.totals;
}

std::expected<void, ArchiveFailure> ArchiveReader::bsdtar(int folder, ArchiveProgressSource& source) const {
    if (auto suits = refuseManifest(); !suits) return suits;
    if (auto ready = rewound(); !ready) return ready;
    // Without -P it refuses "..", takes away a leading "/" and writes through no link.
    return ArchiveTool::run({.tool = "bsdtar",
                             .arguments = {"-x", "-v", "-f", "-", "--no-same-owner", "--no-same-permissions",
                                           "--no-acls", "--no-xattrs", "--no-fflags", "--no-mac-metadata"},
                             .folder = folder,
                             .input = archive_.file.get()},
                            settings_, {source, run_, scaled}, folder);
}

/// bsdtar takes an archive for what it holds, whatever its name says. One of the kinds it knows is a list of
/// files that are to be found elsewhere on this machine; extracting it would copy what the list's author
/// chose of what its reader may read.
std::expected<void, ArchiveFailure> ArchiveReader::refuseManifest() const {
    if (auto ready = rewound(); !ready) return ready;
    FormatInfo source;
    // It ends after the first entry. What else is wrong is told by the extraction.
    const auto told = ArchiveTool::run(
        {.tool = "bsdtar", .arguments = {"-t", "-vvv", "-q", "-f", "-", "*"}, .input = archive_.file.get()},
        settings_, {source, run_, scaled});
    if (!told && told.error().which() == ArchiveFailure::Case::cancelled)
        return std::unexpected(told.error());
    if (source.isManifest) return std::unexpected(ArchiveFailure::archive(ArchiveFault::unsafe));
    return {};
}

std::expected<void, ArchiveFailure> ArchiveReader::rewound() const {
    const auto sought = POSIX::seek(archive_.file.get(), 0);
    if (!sought) return std::unexpected(Error::from(sought.error()));
    return {};
}

} // namespace ombrel
