#include "operations/ArchiveService.h"

#include "base/FileName.h"
#include "listing/POSIXEntries.h"
#include "listing/POSIXLock.h"
#include "operations/ArchiveContents.h"
#include "operations/ArchivePlacing.h"
#include "operations/ArchiveWriter.h"
#include "operations/ConfirmedSource.h"
#include "operations/StagedItem.h"
#include "operations/StagingName.h"

#include <fcntl.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace ombrel::ArchiveService {
namespace {

using Error = FileOperationError;

constexpr std::string_view zipSuffix = ".zip";

Error fromFolder(POSIXFailure failure) {
    if (failure.number == ENOENT || failure.number == ENOTDIR) return Error::Case::destinationMissing;
    return Error::from(failure);
}

/// The name with the suffix, cut so that a number fits too.
std::string zipName(std::string_view base) {
    constexpr std::size_t longest = 240;
    if (base.size() > longest) {
        auto end = longest;
        while (end > 0 && (static_cast<unsigned char>(base[end]) & 0xC0U) == 0x80U)
            --end;
        base = base.substr(0, end);
    }
    return std::string(base) + std::string(zipSuffix);
}

std::expected<std::string, Failure> writeAndPlace(const ArchiveWriter& writer, int output, JobRun& run,
                                                  const StagedItem& staged, int folder,
                                                  const std::string& name) {
    if (auto written = writer.write(output, run); !written) return std::unexpected(written.error());
    if (auto flushed = POSIX::flush(output); !flushed) return std::unexpected(Error::from(flushed.error()));
    if (!run.goesOn()) return std::unexpected(Failure::Case::cancelled);
    auto placed = placeUnderFreeName(staged.place(), folder, name, KeepExtension::yes);
    if (!placed) return std::unexpected(placed.error());
    return *placed;
}

std::expected<FileURL, Failure> confirmAndCompress(std::span<const FileReference> sources,
                                                   const FileURL& folder, std::string_view preferredName,
                                                   JobRun& run, const Settings& settings,
                                                   std::vector<ItemResult>& leftOut) {
    std::vector<FileURL> items;
    for (const auto& source : sources) {
        const auto item = ConfirmedSource::of(source);
        if (!item) return std::unexpected(item.error());
        const bool isFolder = item->status().isDirectory();
        items.push_back(source.url.marked(isFolder ? FileURL::Mark::directory : FileURL::Mark::none));
    }
    return compress(items, folder, preferredName, run, settings, leftOut);
}

/// Several archives, whose progress is told in bytes of archives.
class ExtractionJob {
public:
    ExtractionJob(std::span<const FileReference> archives, const OperationHooks& hooks, std::stop_token stop,
                  const Settings& settings)
        : archives_(archives), settings_(settings), run_(hooks, std::move(stop)) {
        for (const auto& archive : archives) {
            const auto status = POSIX::statFollowing(archive.url);
            sizes_.push_back(status && status->isRegular() ? status->size : 0);
            totalBytes_ += sizes_.back();
        }
    }

    OperationReport run() {
        OperationReport report{kind, {}};
        for (; current_ < archives_.size(); ++current_) {
            const auto& archive = archives_[current_];
            auto extracted = extractOne(archive);
            if (!extracted) {
                report.items.push_back(extracted.error().resultOf(archive.url, kind));
            } else {
                report.items.push_back({archive.url, ItemOutcome::completed(std::move(extracted->url))});
                std::ranges::move(extracted->notes, std::back_inserter(report.items));
            }
            doneBytes_ += sizes_[current_];
        }
        return report;
    }

private:
    static constexpr auto kind = FileOperationKind::extract;

    std::expected<Extracted, Failure> extractOne(const FileReference& archive) {
        for (;;) {
            auto extracted = attempt(archive);
            if (extracted || extracted.error().which() == Failure::Case::cancelled) return extracted;
            ErrorContext context{kind, archive.url, archive.url.parent(), extracted.error().operationError()};
            context.facts = extracted.error().facts(kind);
            const auto choice = run_.ask(context);
            if (choice == ErrorChoice::cancel) return std::unexpected(Failure(Failure::Case::cancelled));
            if (choice == ErrorChoice::skip) return extracted;
        }
    }

    std::expected<Extracted, Failure> attempt(const FileReference& archive) {
        if (!run_.goesOn()) return std::unexpected(Failure(Failure::Case::cancelled));
        if (const auto item = ConfirmedSource::of(archive); !item) return std::unexpected(item.error());
        if (archives_.size() == 1) return extractArchive(archive.url, run_, settings_);
        return extractArchive(archive.url, run_, settings_,
                              [this](const OperationProgress& own) { return scaled(own); });
    }

    [[nodiscard]] OperationProgress scaled(const OperationProgress& own) const {
        auto progress = own;
        progress.totalItems = static_cast<std::int64_t>(archives_.size());
        progress.completedItems = static_cast<std::int64_t>(current_);
        progress.totalBytes = totalBytes_;
        progress.completedBytes =
            doneBytes_ + static_cast<std::int64_t>(own.fraction() * static_cast<double>(sizes_[current_]));
        return progress;
    }

    std::span<const FileReference> archives_;
    const Settings& settings_;
    JobRun run_;
    std::vector<std::int64_t> sizes_; // bytes
    std::int64_t totalBytes_ = 0, doneBytes_ = 0;
    std::size_t current_ = 0;
};

std::string nameFor(std::string_view preferred, std::span<const FileURL> sources) {
    if (preferred.empty()) return archiveName(sources);
    const bool hasSuffix = FileName::loweredASCII(preferred).ends_with(zipSuffix);
    return hasSuffix ? std::string(preferred) : std::string(preferred).append(zipSuffix);
}

} // namespace

bool isZip(const FileURL& url) {
    return FileName::loweredASCII(url.name()).ends_with(zipSuffix);
}

bool isExtractable(const FileURL& url) {
    return extractionPlan(url.name()).has_value();
}

std::string archiveName(std::span<const FileURL> sources) {
    if (sources.empty()) return zipName(Texts::localized("archive.unnamed"));
    const auto& first = sources.front();
    const auto base = ItemNames::splitExtension(first.name(), first.isMarkedDirectory() ? KeepExtension::no
                                                                                        : KeepExtension::yes);
    return zipName(base.base.empty() ? Texts::localized("archive.unnamed") : std::string(base.base));
}

std::expected<FileURL, Failure> compress(std::span<const FileURL> sources, const FileURL& folder,
                                         std::string_view preferredName, JobRun& run,
                                         const Settings& settings, std::vector<ItemResult>& leftOut) {
    const auto name = nameFor(preferredName, sources);
    if (const auto reason = ItemNames::validate(name, WindowsRules::off))
        return std::unexpected(Error::invalidName(*reason));
    run.progress.phase = OperationProgress::Phase::preparing;
    auto contents = ArchiveContents::measure(sources, run);
    if (!contents) return std::unexpected(contents.error());
    leftOut = std::move(contents->leftOut);
    if (contents->paths.empty()) return std::unexpected(Failure::Case::nothingSelected);

    const auto destination = POSIX::open(folder, O_RDONLY | O_DIRECTORY);
    if (!destination) return std::unexpected(fromFolder(destination.error()));
    StagedItem staged(destination->get(), StagingName::makeZip());
    auto file = POSIX::open(staged.place(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW, 0666);
    if (!file) {
        staged.release();
        return std::unexpected(Error::from(file.error()));
    }
    (void)POSIX::tryLockShared(file->get());
    const int output = file->get();
    staged.hold(std::move(*file));
    const ArchiveWriter writer(*contents, sources.size(), settings);
    auto placed = writeAndPlace(writer, output, run, staged, destination->get(), name);
    if (placed) {
        staged.release();
        return folder.appending(*placed);
    }
    if (staged.remove()) return std::unexpected(Error::partialCopyLeftBehind(staged.name()));
    return std::unexpected(placed.error());
}

OperationReport compress(std::span<const FileReference> sources, const FileURL& folder,
                         std::string_view preferredName, const OperationHooks& hooks, std::stop_token stop,
                         const Settings& settings) {
    constexpr auto kind = FileOperationKind::compress;
    OperationReport report{kind, {}};
    if (sources.empty()) return report;
    JobRun run(hooks, std::move(stop));
    std::vector<ItemResult> leftOut;
    auto made = confirmAndCompress(sources, folder, preferredName, run, settings, leftOut);
    while (!made && made.error().which() != Failure::Case::cancelled) {
        if (made.error().which() == Failure::Case::nothingSelected) {
            report.items = std::move(leftOut);
            return report;
        }
        ErrorContext context{kind, sources.front().url, folder, made.error().operationError()};
        context.facts = made.error().facts(kind);
        const auto choice = run.ask(context);
        if (choice == ErrorChoice::cancel) made = std::unexpected(Failure(Failure::Case::cancelled));
        if (choice != ErrorChoice::retry) break;
        made = confirmAndCompress(sources, folder, preferredName, run, settings, leftOut);
    }
    for (const auto& source : sources)
        report.items.push_back(made ? ItemResult{source.url, ItemOutcome::completed(*made)}
                                    : made.error().resultOf(source.url, kind));
    if (made) std::ranges::move(leftOut, std::back_inserter(report.items));
    return report;
}

std::expected<Extracted, Failure> extract(const FileURL& archive, JobRun& run, const Settings& settings) {
    return extractArchive(archive, run, settings);
}

OperationReport extract(std::span<const FileReference> archives, const OperationHooks& hooks,
                        std::stop_token stop, const Settings& settings) {
    return ExtractionJob(archives, hooks, std::move(stop), settings).run();
}

} // namespace ombrel::ArchiveService
