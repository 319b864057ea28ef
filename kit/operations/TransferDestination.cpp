#include "operations/TransferDestination.h"

#include "listing/MountTable.h"
#include "listing/POSIXEntries.h"
#include "listing/POSIXFiles.h"
#include "operations/EntryMetadata.h"

#include <fcntl.h>

#include <cerrno>
#include <utility>

namespace ombrel {
namespace {

using Error = FileOperationError;
using Opened = std::expected<std::unique_ptr<TransferDestination>, Error>;

Error fromOpen(POSIXFailure failure) {
    const int number = failure.number;
    if (number == ENOENT || number == ENOTDIR) return Error::Case::destinationMissing;
    return Error::from(failure);
}

} // namespace

TransferVolume::TransferVolume(std::uint64_t mount, const FileSystemTraits& facts, bool removable,
                               std::function<bool()> goesOn)
    : mountID(mount), traits(facts), isDurable(removable || facts.isNetwork),
      flushesFiles(facts.isNetwork || (facts.isFUSE && isDurable)), support(facts),
      checker({.readsPastCache = isDurable}, support, std::move(goesOn)) {}

Opened TransferDestination::open(const FileURL& url, std::shared_ptr<TransferVolume> volume,
                                 const std::function<bool()>& goesOn) {
    // A folder that may be written to but not listed can only be opened as a path.
    auto fd = POSIX::open(url, O_RDONLY | O_DIRECTORY | O_NONBLOCK);
    const bool isListable = fd || fd.error().number != EACCES;
    if (!isListable) fd = POSIX::open(url, O_PATH | O_DIRECTORY);
    if (!fd) return std::unexpected(fromOpen(fd.error()));
    const auto status = POSIX::status(fd->get());
    if (!status) return std::unexpected(fromOpen(status.error()));
    std::unique_ptr<TransferDestination> opened(new TransferDestination(std::move(*fd), url, *status));
    opened->isListable_ = isListable;
    opened->learnVolume(std::move(volume), goesOn);
    return opened;
}

Opened TransferDestination::below(const std::string& relative, const std::function<bool()>& goesOn) const {
    auto fd = POSIX::openWithoutLinks(fd_.get(), relative, O_RDONLY | O_DIRECTORY | O_NONBLOCK);
    if (!fd) return std::unexpected(fromOpen(fd.error()));
    const auto status = POSIX::status(fd->get());
    if (!status) return std::unexpected(fromOpen(status.error()));
    const auto url = FileURL::fromPath(url_.path() + "/" + relative, FileURL::Mark::directory);
    std::unique_ptr<TransferDestination> opened(
        new TransferDestination(std::move(*fd), url.value_or(url_), *status));
    opened->learnVolume(volume_, goesOn);
    return opened;
}

void TransferDestination::learnVolume(std::shared_ptr<TransferVolume> volume,
                                      const std::function<bool()>& goesOn) {
    if (volume && volume->mountID == status_.mountID && status_.mountID != 0) {
        volume_ = std::move(volume);
    } else {
        const auto table = MountTable::current();
        const Mount* mount = table.of(status_);
        volume_ = std::make_shared<TransferVolume>(status_.mountID, table.traits(status_),
                                                   mount && mount->isRemovable, goesOn);
    }
    begin();
    handsDownLists_ = EntryMetadata::handsDownLists(fd_.get());
}

bool TransferDestination::isStillThere() const {
    const auto now = POSIX::statFollowing(url_);
    return now && now->isDirectory() &&
           (now->identity == status_.identity ||
            (volume_->traits.renumbersInodes && now->identity.device == status_.identity.device));
}

POSIX::Result<void> TransferDestination::flush(const std::vector<int>& files) const {
    for (const int file : files)
        if (auto flushed = POSIX::flush(file); !flushed) return flushed;
    if (!isListable_) return POSIX::flushEverything();
    if (files.empty())
        if (auto flushed = POSIX::flushFileSystem(fd_.get()); !flushed) return flushed;
    auto flushed = POSIX::flush(fd_.get());
    // Some drivers have nothing to flush in a folder and say so.
    if (!flushed && (flushed.error().number == EINVAL || flushed.error().number == ENOSYS)) return {};
    return flushed;
}

} // namespace ombrel
