#include "operations/ArchiveContents.h"

#include "operations/TreeManifest.h"

#include <fcntl.h>

#include <cerrno>
#include <unordered_set>
#include <utility>

namespace ombrel {
namespace {

using Error = FileOperationError;

FileURL commonFolder(std::span<const FileURL> sources) {
    FileURL folder = sources.front().parent();
    for (const auto& source : sources)
        while (!source.parent().isWithin(folder))
            folder = folder.parent();
    return folder;
}

/// Without those that lie inside another one or are named twice.
std::vector<FileURL> outermost(std::span<const FileURL> sources) {
    const std::unordered_set<FileURL> all(sources.begin(), sources.end());
    std::unordered_set<FileURL> taken;
    std::vector<FileURL> result;
    for (const auto& source : sources) {
        bool isInside = false;
        for (FileURL above = source; !isInside && !above.isRoot();) {
            above = above.parent();
            isInside = all.contains(above);
        }
        if (!isInside && taken.insert(source).second) result.push_back(source);
    }
    return result;
}

bool canBeHeld(std::uint32_t type) {
    return type == S_IFREG || type == S_IFDIR || type == S_IFLNK;
}

class Measuring {
public:
    Measuring(ArchiveContents& contents, JobRun& run) : contents_(contents), run_(run) {}

    std::expected<void, ArchiveFailure> add(const FileURL& source) {
        const auto tree = POSIX::withPath<TreeManifest>(
            source, [&](POSIX::Place place) { return TreeManifest::capture(place, run_.stop()); });
        if (!tree) return std::unexpected(Error::from(tree.error()));
        return take(source, *tree);
    }

private:
    std::expected<void, ArchiveFailure> take(const FileURL& source, const TreeManifest& tree) {
        const std::string top(source.pathBelow(contents_.directory));
        for (TreeManifest::Index index = 0; index < tree.size(); ++index) {
            const auto below = tree.path(index);
            std::string path = below.empty() ? top : top + "/" + below;
            if (!canBeHeld(tree.type(index))) {
                if (!leaveOut(contents_.directory.path() + "/" + path))
                    return std::unexpected(ArchiveFailure::Case::cancelled);
                continue;
            }
            ++contents_.totals.items;
            if (tree.type(index) == S_IFREG) contents_.totals.bytes += tree.size(index);
            contents_.paths.push_back(std::move(path));
        }
        run_.progress.totalItems = contents_.totals.items;
        run_.progress.totalBytes = contents_.totals.bytes;
        run_.tellSometimes();
        return {};
    }

    /// Answers whether the job goes on.
    bool leaveOut(const std::string& path) {
        const auto url = FileURL::fromPath(path);
        const auto error = Error::posix(EOPNOTSUPP);
        ErrorContext context{FileOperationKind::compress, *url, std::nullopt, error};
        context.canRetry = false;
        if (run_.ask(context) == ErrorChoice::cancel) return false;
        contents_.leftOut.push_back({*url, ItemOutcome::failed(error)});
        return true;
    }

    ArchiveContents& contents_;
    JobRun& run_;
};

} // namespace

std::expected<ArchiveContents, ArchiveFailure> ArchiveContents::measure(std::span<const FileURL> sources,
                                                                        JobRun& run) {
    const auto chosen = outermost(sources);
    if (chosen.empty()) return std::unexpected(ArchiveFailure::Case::nothingSelected);
    ArchiveContents contents;
    contents.directory = commonFolder(chosen);
    Measuring measuring(contents, run);
    for (const auto& source : chosen) {
        if (source.isRoot() || source.name() == "..")
            return std::unexpected(Error::invalidName(InvalidNameReason::reserved));
        if (auto added = measuring.add(source); !added) return std::unexpected(added.error());
    }
    return contents;
}

} // namespace ombrel
