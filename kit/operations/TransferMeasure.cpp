#include "operations/TransferMeasure.h"

#include "listing/EntryReader.h"
#include "listing/POSIXEntries.h"
#include "operations/ConfirmedSource.h"
#include "operations/FolderTrail.h"
#include "operations/TargetNames.h"

#include <dirent.h>

#include <algorithm>
#include <cerrno>
#include <optional>

namespace ombrel {
namespace {

class Measuring {
public:
    Measuring(TransferMeasure& measure, const FileSystemTraits& target, const std::function<bool()>& goesOn)
        : measure_(measure), target_(target), goesOn_(goesOn) {}

    void measure(POSIX::Place top, const FileStatus& status) {
        if (status.isRegular()) count(status, {});
        if (!status.isDirectory()) return;
        auto trail = FolderTrail::from(top.folder, FolderTrail::Mounts::cross);
        if (!trail) return;
        trail_ = std::move(*trail);
        enter(top.name);
        while (!levels_.empty() && goesOn_()) {
            auto& folders = levels_.back();
            if (folders.empty()) {
                levels_.pop_back();
                if (!trail_->leave()) return;
                continue;
            }
            const std::string name = std::move(folders.back());
            folders.pop_back();
            enter(name.c_str());
        }
    }

private:
    /// Goes into the folder and counts the files in it.
    void enter(const char* name) {
        if (!trail_->enter(name)) return;
        auto& folders = levels_.emplace_back();
        if (trail_->isInsideItself() || !POSIX::rewind(trail_->fd())) return;
        reader_.begin(trail_->fd());
        for (;;) {
            const auto entry = reader_.next();
            if (!entry || !*entry) return;
            const auto& [entryName, type, inode] = **entry;
            if (const auto fault = TargetNames::faultOf(entryName, target_)) {
                refuse(entryName, FileOperationError::invalidName(*fault));
                continue;
            }
            if (type == DT_DIR) {
                folders.emplace_back(entryName);
            } else if (type == DT_REG || type == DT_UNKNOWN) {
                const auto status = POSIX::lstat(POSIX::Place{trail_->fd(), entryName.data()});
                if (status && status->isDirectory()) folders.emplace_back(entryName);
                if (status && status->isRegular()) count(*status, entryName);
            }
        }
    }

    void count(const FileStatus& status, std::string_view name) {
        if (status.size > target_.largestFile) return refuse(name, FileOperationError::posix(EFBIG));
        measure_.bytes += status.size;
        measure_.allocated += TransferMeasure::roomOf(status);
    }

    void refuse(std::string_view name, const FileOperationError& error) {
        std::string path;
        if (trail_) {
            // Below the item: without the name of the top itself.
            path = trail_->pathOf(name);
            path.erase(0, path.find('/') + 1);
        }
        measure_.refusals.push_back({std::move(path), error});
    }

    TransferMeasure& measure_;
    const FileSystemTraits& target_;
    const std::function<bool()>& goesOn_;
    EntryReader reader_;
    std::optional<FolderTrail> trail_;             // from the folder that holds the item
    std::vector<std::vector<std::string>> levels_; // folders still to be entered
};

} // namespace

std::int64_t TransferMeasure::roomOf(const FileStatus& file) noexcept {
    constexpr std::int64_t blockBytes = 512; // the unit of FileStatus::blocks
    return std::min(file.size, file.blocks * blockBytes);
}

TransferMeasure TransferMeasure::of(const FileReference& item, const FileSystemTraits& target,
                                    const std::function<bool()>& goesOn) {
    TransferMeasure measure;
    measure.isKnown = true;
    const auto source = ConfirmedSource::of(item);
    if (source && source->folder())
        Measuring(measure, target, goesOn).measure(source->place(), source->status());
    return measure;
}

} // namespace ombrel
