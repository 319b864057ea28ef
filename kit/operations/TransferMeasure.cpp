#include "operations/TransferMeasure.h"

#include "listing/EntryReader.h"
#include "listing/POSIXEntries.h"
#include "operations/ConfirmedSource.h"
#include "operations/FileTally.h"
#include "operations/FolderTrail.h"
#include "operations/TargetNames.h"

#include <dirent.h>

#include <algorithm>
#include <optional>

namespace ombrel {
namespace {

class Measuring {
public:
    Measuring(FileTally& tally, const FileSystemTraits& target, const std::function<bool()>& goesOn)
        : tally_(tally), target_(target), goesOn_(goesOn) {}

    void measure(POSIX::Place top, const FileStatus& status) {
        if (status.isRegular()) tally_.count(status, {}, "");
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
    /// Goes into the folder and has the files in it counted.
    void enter(const char* name) {
        if (!trail_->enter(name)) return;
        auto& folders = levels_.emplace_back();
        if (trail_->isInsideItself() || !POSIX::rewind(trail_->fd())) return;
        const std::string path = below();
        FileTally::Names files;
        reader_.begin(trail_->fd());
        for (;;) {
            const auto entry = reader_.next();
            if (!entry || !*entry) break;
            const auto& [entryName, type, inode] = **entry;
            if (const auto fault = TargetNames::faultOf(entryName, target_)) {
                tally_.refuse(path + std::string(entryName), FileOperationError::invalidName(*fault));
                continue;
            }
            bool isFolder = type == DT_DIR;
            if (type == DT_UNKNOWN) {
                const auto status = POSIX::lstat(POSIX::Place{trail_->fd(), entryName.data()});
                isFolder = status && status->isDirectory();
                if (status && status->isRegular()) tally_.count(*status, path, entryName.data());
            }
            if (isFolder) folders.emplace_back(entryName);
            if (type != DT_REG) continue;
            files.text.append(entryName).push_back('\0');
            ++files.count;
        }
        tally_.add(trail_->fd(), path, std::move(files));
    }

    /// The way to the present folder from the item, without the name of the item itself.
    [[nodiscard]] std::string below() const {
        std::string path = trail_->pathOf("");
        path.erase(0, path.find('/') + 1);
        return path;
    }

    FileTally& tally_;
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
    FileTally tally(target, goesOn);
    const auto source = ConfirmedSource::of(item);
    if (source && source->folder())
        Measuring(tally, target, goesOn).measure(source->place(), source->status());
    TransferMeasure measure = tally.finish();
    measure.isKnown = true;
    return measure;
}

} // namespace ombrel
