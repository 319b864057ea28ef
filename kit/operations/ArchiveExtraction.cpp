#include "operations/ArchiveExtraction.h"

#include "listing/EntryReader.h"
#include "listing/POSIXEntries.h"
#include "listing/POSIXFiles.h"
#include "listing/POSIXLock.h"
#include "operations/ArchivePlacing.h"
#include "operations/ArchivePlan.h"
#include "operations/ArchiveReader.h"
#include "operations/ExtractedTree.h"
#include "operations/StagedItem.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <optional>
#include <utility>

namespace ombrel {
namespace {

using Error = FileOperationError;
constexpr const char* payloadName = "contents";

/// The hidden folder, and in it, with the permissions of any new item, what will appear.
class Extraction {
public:
    Extraction(OwnedFd folder, FileURL url, const ArchiveReader& reader, JobRun& run)
        : folder_(std::move(folder)), url_(std::move(url)), reader_(reader), run_(run),
          staged_(folder_.get()) {}

    std::expected<Extracted, ArchiveFailure> extract(const std::string& baseName) {
        if (auto made = stage(); !made) return std::unexpected(Error::from(made.error()));
        auto extracted = reader_.isSingleFile() ? extractFile(baseName) : extractFolder(baseName);
        if (!staged_.remove()) return extracted;
        const auto left = Error::partialCopyLeftBehind(staged_.name());
        if (!extracted) return std::unexpected(left);
        extracted->notes.push_back({url_.appending(staged_.name()), ItemOutcome::failed(left)});
        return extracted;
    }

private:
    POSIX::Result<void> stage() {
        auto made = POSIX::makeDirectory(staged_.place(), S_IRWXU);
        if (!made) {
            staged_.release();
            return made;
        }
        auto top = POSIX::open(staged_.place(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
        if (!top) return std::unexpected(top.error());
        (void)POSIX::tryLockShared(top->get());
        staged_.hold(std::move(*top));
        return {};
    }

    std::expected<Extracted, ArchiveFailure> extractFile(const std::string& name) {
        auto file = POSIX::open(payload(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW, 0666);
        if (!file) return std::unexpected(Error::from(file.error()));
        if (auto read = reader_.decompressTo(file->get(), name); !read) return std::unexpected(read.error());
        if (auto flushed = POSIX::flush(file->get()); !flushed)
            return std::unexpected(Error::from(flushed.error()));
        return place(payload(), name, KeepExtension::yes);
    }

    std::expected<Extracted, ArchiveFailure> extractFolder(const std::string& name) {
        constexpr std::uint32_t everyone = 0777;
        if (auto made = POSIX::makeDirectory(payload(), everyone); !made)
            return std::unexpected(Error::from(made.error()));
        auto folder = POSIX::open(payload(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
        if (!folder) return std::unexpected(Error::from(folder.error()));
        const auto reached = url_.appending(staged_.name()).appending(payloadName);
        if (auto read = reader_.extractInto(folder->get(), reached); !read)
            return std::unexpected(read.error());
        // An entry for the folder itself may have closed it.
        if (const auto status = POSIX::status(folder->get()))
            (void)POSIX::changeMode(folder->get(), status->permissions() | S_IRWXU);
        auto neutralised = neutralise(folder->get(), url_.appending(name), [&] { return run_.goesOn(); });
        if (!neutralised) return std::unexpected(Error::from(neutralised.error()));
        if (auto flushed = POSIX::flushFileSystem(folder->get()); !flushed)
            return std::unexpected(Error::from(flushed.error()));
        const auto isNested = isOnly(folder->get(), name);
        if (!isNested) return std::unexpected(Error::from(isNested.error()));
        auto placed = *isNested ? placeInner(folder->get(), name) : place(payload(), name, KeepExtension::no);
        if (placed) placed->notes = std::move(*neutralised);
        return placed;
    }

    /// Whether a folder holds nothing but a folder of that name.
    static POSIX::Result<bool> isOnly(int folder, const std::string& name) {
        if (auto done = POSIX::rewind(folder); !done) return std::unexpected(done.error());
        EntryReader reader;
        reader.begin(folder);
        const auto first = reader.next();
        if (!first) return std::unexpected(first.error());
        if (!*first || (*first)->name != name) return false;
        const auto second = reader.next();
        if (!second) return std::unexpected(second.error());
        if (*second) return false;
        const auto status = POSIX::lstat({folder, name.c_str()});
        if (!status) return std::unexpected(status.error());
        return status->isDirectory();
    }

    /// A folder that its owner may not write to cannot leave the one it is in.
    std::expected<Extracted, ArchiveFailure> placeInner(int folder, const std::string& name) {
        const POSIX::Place inner{folder, name.c_str()};
        const auto opened = POSIX::open(inner, O_PATH | O_DIRECTORY | O_NOFOLLOW);
        const auto status = POSIX::lstat(inner);
        if (!opened || !status) return std::unexpected(Error(Error::Case::sourceChanged));
        const bool isClosed = (status->permissions() & S_IWUSR) == 0;
        if (isClosed) (void)POSIX::changeMode(inner, status->permissions() | S_IRWXU);
        auto placed = place(inner, name, KeepExtension::no);
        if (isClosed && placed)
            (void)POSIX::changeMode({folder_.get(), std::string(placed->url.name()).c_str()},
                                    status->permissions());
        return placed;
    }

    std::expected<Extracted, ArchiveFailure> place(POSIX::Place item, const std::string& name,
                                                   KeepExtension keep) {
        if (!run_.goesOn()) return std::unexpected(ArchiveFailure::Case::cancelled);
        const auto placed = placeUnderFreeName(item, folder_.get(), name, keep);
        if (!placed) return std::unexpected(placed.error());
        const bool isFolder = keep == KeepExtension::no;
        return Extracted{url_.appending(*placed, isFolder ? FileURL::Mark::directory : FileURL::Mark::none),
                         {}};
    }

    [[nodiscard]] POSIX::Place payload() const noexcept { return {staged_.top(), payloadName}; }

    OwnedFd folder_;
    FileURL url_;
    const ArchiveReader& reader_;
    JobRun& run_;
    StagedItem staged_; // removed with whatever is still in it
};

} // namespace

std::expected<Extracted, ArchiveFailure>
extractArchive(const FileURL& archive, JobRun& run, const ArchiveSettings& settings,
               std::function<OperationProgress(const OperationProgress&)> scaled) {
    const auto plan = extractionPlan(archive.name());
    if (!plan || std::holds_alternative<ArchiveExtractor::AppleArchive>(plan->extractor.part))
        return std::unexpected(ArchiveFailure::Case::unsupported);
    const auto base = plan->baseName.empty() ? Texts::localized("archive.unnamed") : plan->baseName;
    if (const auto reason = ItemNames::validate(base, WindowsRules::off))
        return std::unexpected(Error::invalidName(*reason));
    const auto open = OpenArchive::open(archive);
    if (!open) return std::unexpected(open.error());
    auto folder = POSIX::open(archive.parent(), O_RDONLY | O_DIRECTORY);
    if (!folder) return std::unexpected(Error::from(folder.error()));
    ArchiveReader reader(*plan, *open, settings, run);
    reader.scaled = std::move(scaled);
    return Extraction(std::move(*folder), archive.parent(), reader, run).extract(base);
}

} // namespace ombrel
