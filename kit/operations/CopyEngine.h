#pragma once

#include "base/OwnedFd.h"
#include "listing/EntryReader.h"
#include "listing/FileSystemTraits.h"
#include "operations/CopyFailure.h"
#include "operations/FileContent.h"
#include "operations/FolderTrail.h"
#include "operations/ManifestWalk.h"
#include "operations/MetadataSupport.h"
#include "operations/OperationErrorQuestion.h"
#include "operations/PairChecker.h"
#include "operations/TreeManifest.h"

#include <cstdint>
#include <expected>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ombrel {

/// Watches a copy, steers it and answers for it. Called on the copying thread.
class CopyObserver {
public:
    virtual ~CopyObserver() = default;
    /// An entry of that name (bytes) begins. Answers whether to go on.
    virtual bool begins(std::string_view name) = 0;
    /// So many more bytes are copied; fewer than none when a file is begun again. Answers whether to go on.
    virtual bool copied(std::int64_t bytes) = 0;
    /// One entry, by its path below the top, could not be copied, while the others may. `skip` leaves it out.
    virtual ErrorChoice failed(const std::string& path, const FileOperationError& error) = 0;
};

/// A tree that was copied.
struct CopiedTree {
    /// The source as it was when each entry was read.
    TreeManifest manifest;
    /// Of the copy's top, locked (shared) as long as it is open; empty for a link or a FIFO. A file's is the
    /// one that wrote it.
    OwnedFd top;
    /// Every regular file was given to the checker.
    bool isChecked = false;
};

/// Copies one tree to a new name.
///
/// Data, owner and group where allowed, permission bits, nanosecond times (a folder's after its contents),
/// access control lists and extended attributes; links as links, holes as holes, FIFOs made anew. Sockets and
/// devices are refused and never opened. Every name is made exclusively, nothing is followed, and no extent
/// is ever shared with the source. Walks by descriptor, so neither depth nor the length of paths has a limit,
/// and a folder that is swapped for a link leads nowhere. Blocking; used once.
class CopyEngine {
public:
    struct Settings {
        const FileSystemTraits* target = nullptr; ///< what the destination can hold
        MetadataSupport* support = nullptr;
        /// The folder that receives the copy: a source that holds it cannot be copied into it.
        FileIdentity destination;
        bool dropsInheritedLists = false; ///< that folder hands an access control list down
        bool keepsPace = false;           ///< see `FileContent::Settings`
        bool findsHolesItself = false;    ///< see `FileContent::Settings`
        bool flushesFiles = false;        ///< flushes each file by itself
        /// Compares what was copied while the rest is.
        PairChecker* checker = nullptr;
        std::optional<int> failWithErrno; ///< a test's wish
    };

    CopyEngine(const Settings& settings, CopyObserver& observer);

    /// Copies the entry `source` to the name `copy`, both in open folders. On failure what was made stays for
    /// the caller to remove. `cancelled` when the observer did not want to go on.
    [[nodiscard]] std::expected<CopiedTree, FileOperationError> copy(POSIX::Place source, POSIX::Place copy);
    /// Whether there is anything of the copy.
    [[nodiscard]] bool hasBegun() const noexcept { return hasBegun_; }

private:
    using Index = TreeManifest::Index;

    [[nodiscard]] CopyResult<void> run();
    [[nodiscard]] CopyResult<void> take(ManifestWalk& walk, ManifestWalk::Step step);
    [[nodiscard]] CopyResult<void> attempt(ManifestWalk::Step step);
    [[nodiscard]] CopyResult<void> enterFolder(Index index);
    [[nodiscard]] CopyResult<void> makeFolder(Index index);
    [[nodiscard]] CopyResult<void> beginTop(int fd, const FileStatus& status);
    [[nodiscard]] CopyResult<void> copySmallFiles(Index folder);
    [[nodiscard]] CopyResult<void> leaveFolder();
    [[nodiscard]] CopyResult<void> copyEntry(Index index);
    [[nodiscard]] CopyResult<void> copyFile(Index index);
    [[nodiscard]] CopyResult<void> fillFile(Index index, int from, const FileStatus& status, OwnedFd& to);
    [[nodiscard]] CopyResult<void> copyLink(Index index, const FileStatus& status);
    [[nodiscard]] CopyResult<void> copyFIFO(Index index, const FileStatus& status);
    [[nodiscard]] CopyResult<void> completeMade(const POSIX::Result<void>& made, Index index,
                                                const FileStatus& status);
    [[nodiscard]] CopyResult<void> removePartial(Index index, CopyFailure failure);
    [[nodiscard]] bool openPair();
    void checkAhead();
    void endCheckingAhead();
    void check(Index index, std::int64_t size);
    [[nodiscard]] POSIX::Place sourcePlace(Index index) const noexcept;
    [[nodiscard]] POSIX::Place copyPlace(Index index) const noexcept;

    /// As many files are worth a second thread.
    static constexpr std::size_t fewestForTwo = 12;

    Settings settings_;
    CopyObserver& observer_;
    FileContent content_;
    EntryReader reader_;
    TreeManifest manifest_;
    std::optional<FolderTrail> source_, copy_; // from the folders that hold the two tops
    const char* sourceName_ = nullptr;
    const char* copyName_ = nullptr;
    std::shared_ptr<const FolderPair> pair_; // of the folders that the walk is in, once a file needs it
    /// Of the folder that was entered last, from its first child on: what is copied already.
    std::vector<bool> copiedAhead_;
    Index firstAhead_ = 0;
    std::int64_t copiedOfFile_ = 0;
    /// Of a large file, which is compared while it is still being copied; its first piece is left for the
    /// end, because what the file carries is compared with that.
    struct Ahead {
        Index index = 0;
        std::int64_t size = 0;
        std::int64_t next = PairChecker::pieceBytes; ///< from where on nothing is given to the checker
    };
    std::optional<Ahead> ahead_;
    bool fileHasAttributes_ = false; // the file that was copied last
    OwnedFd top_;
    bool hasBegun_ = false;
    bool isChecked_ = true; // every file went to the checker
};

} // namespace ombrel
