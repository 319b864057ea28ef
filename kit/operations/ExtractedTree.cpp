#include "operations/ExtractedTree.h"

#include "listing/EntryReader.h"
#include "listing/POSIXEntries.h"
#include "operations/FolderTrail.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <string>
#include <utility>

namespace ombrel {
namespace {

class Neutralising {
public:
    Neutralising(FolderTrail trail, const FileURL& url, const std::function<bool()>& goesOn)
        : trail_(std::move(trail)), url_(url), goesOn_(goesOn) {}

    POSIX::Result<std::vector<ItemResult>> run() {
        if (auto done = read(); !done) return std::unexpected(done.error());
        while (!levels_.empty()) {
            if (!goesOn_()) return std::unexpected(POSIXFailure{ECANCELED});
            if (auto done = advance(); !done) return std::unexpected(done.error());
        }
        return std::move(results_);
    }

private:
    POSIX::Result<void> advance() {
        auto& folders = levels_.back();
        if (folders.empty()) {
            levels_.pop_back();
            return levels_.empty() ? POSIX::Result<void>() : trail_.leave();
        }
        const std::string name = std::move(folders.back());
        folders.pop_back();
        auto entered = trail_.enter(name.c_str());
        if (entered) return read();
        if (entered.error().number == EACCES) return {};
        return entered;
    }

    POSIX::Result<void> read() {
        auto& folders = levels_.emplace_back();
        if (auto done = POSIX::rewind(trail_.fd()); !done) return done;
        reader_.begin(trail_.fd());
        for (;;) {
            const auto entry = reader_.next();
            if (!entry) return std::unexpected(entry.error());
            if (!*entry) return {};
            const std::string name((*entry)->name);
            const auto status = POSIX::lstat({trail_.fd(), name.c_str()});
            if (!status) return std::unexpected(status.error());
            if (status->isDirectory()) folders.push_back(name);
            if (auto done = look(name, *status); !done) return done;
        }
    }

    POSIX::Result<void> look(const std::string& name, const FileStatus& status) {
        using Error = FileOperationError;
        const POSIX::Place place{trail_.fd(), name.c_str()};
        constexpr std::uint32_t setID = S_ISUID | S_ISGID;
        POSIX::Result<void> done;
        if (status.type() == S_IFCHR || status.type() == S_IFBLK) {
            done = POSIX::unlink(place);
            tell(name, Error::posix(EOPNOTSUPP));
        } else if (!status.isSymlink() && (status.mode & setID) != 0 && !isInherited(status)) {
            done = POSIX::changeMode(place, status.permissions() & ~setID);
            tell(name, Error::Case::metadataNotPreserved);
        }
        return done;
    }

    /// Folders take the bit over from the folder that they are made in.
    [[nodiscard]] bool isInherited(const FileStatus& status) const {
        return status.isDirectory() && (status.mode & S_ISUID) == 0 && (trail_.status().mode & S_ISGID) != 0;
    }

    void tell(const std::string& name, const FileOperationError& error) {
        const auto url = FileURL::fromPath(url_.path() + "/" + trail_.pathOf(name));
        if (url) results_.push_back({*url, ItemOutcome::failed(error)});
    }

    FolderTrail trail_;
    const FileURL& url_;
    const std::function<bool()>& goesOn_;
    EntryReader reader_;
    std::vector<std::vector<std::string>> levels_; // folders that are still to be entered
    std::vector<ItemResult> results_;
};

} // namespace

POSIX::Result<std::vector<ItemResult>> neutralise(int top, const FileURL& url,
                                                  const std::function<bool()>& goesOn) {
    auto folder = POSIX::open(POSIX::Place{top, "."}, O_RDONLY | O_DIRECTORY);
    if (!folder) return std::unexpected(folder.error());
    const auto status = POSIX::status(folder->get());
    if (!status) return std::unexpected(status.error());
    return Neutralising(FolderTrail(std::move(*folder), *status), url, goesOn).run();
}

} // namespace ombrel
