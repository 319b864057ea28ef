#pragma once

#include "base/FileURL.h"
#include "base/OwnedFd.h"
#include "listing/FileStatus.h"
#include "listing/FileSystemTraits.h"
#include "operations/FileOperationError.h"
#include "operations/MetadataSupport.h"
#include "operations/PairChecker.h"

#include <cstdint>
#include <expected>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace ombrel {

/// What a job knows and learns of a volume that it writes to.
struct TransferVolume {
    /// `goesOn` as in `PairChecker`.
    TransferVolume(std::uint64_t mount, const FileSystemTraits& facts, bool removable,
                   std::function<bool()> goesOn);

    std::uint64_t mountID;
    FileSystemTraits traits;
    /// It can be taken away, or lies on another machine: what is copied there is on the medium, and was read
    /// back from it, before the job ends.
    bool isDurable;
    /// Flushing the file system as a whole may do nothing there.
    bool flushesFiles;
    MetadataSupport support;
    PairChecker checker;
};

/// The folder that a job brings items into, held open: what happens to its path meanwhile leads nowhere else.
class TransferDestination {
public:
    /// Follows links. `volume` is used again when the folder lies in its mount. `destinationMissing` when
    /// there is no folder, else the errno mapping.
    [[nodiscard]] static std::expected<std::unique_ptr<TransferDestination>, FileOperationError>
    open(const FileURL& url, std::shared_ptr<TransferVolume> volume, const std::function<bool()>& goesOn);
    /// A folder below this one; no link is followed on the way.
    [[nodiscard]] std::expected<std::unique_ptr<TransferDestination>, FileOperationError>
    below(const std::string& relative, const std::function<bool()>& goesOn) const;

    /// From here on items are brought into this folder of the volume.
    void begin() { volume_->support.begin(status_.mode & S_ISGID); }

    [[nodiscard]] int fd() const noexcept { return fd_.get(); }
    [[nodiscard]] const FileURL& url() const noexcept { return url_; }
    [[nodiscard]] const FileStatus& status() const noexcept { return status_; }
    [[nodiscard]] TransferVolume& volume() const noexcept { return *volume_; }
    [[nodiscard]] const std::shared_ptr<TransferVolume>& sharedVolume() const noexcept { return volume_; }
    [[nodiscard]] bool handsDownLists() const noexcept { return handsDownLists_; }

    /// Whether the path still leads here.
    [[nodiscard]] bool isStillThere() const;

    /// Waits until everything that was written to the volume, and the names in this folder, are safe.
    /// `files` are the descriptors of single files that are all there is to flush; empty for whatever there
    /// is.
    [[nodiscard]] POSIX::Result<void> flush(const std::vector<int>& files) const;

private:
    TransferDestination(OwnedFd fd, FileURL url, const FileStatus& status)
        : fd_(std::move(fd)), url_(std::move(url)), status_(status) {}
    void learnVolume(std::shared_ptr<TransferVolume> volume, const std::function<bool()>& goesOn);

    OwnedFd fd_;
    FileURL url_;
    FileStatus status_;
    std::shared_ptr<TransferVolume> volume_;
    bool handsDownLists_ = false;
    bool isListable_ = true; // else the descriptor is good for names alone
};

} // namespace ombrel
