#include "operations/TreePlan.h"

#include "listing/POSIXEntries.h"

#include <dirent.h>

#include <algorithm>

namespace ombrel {

TreePlan::FolderIndex TreePlan::add() {
    folders_.emplace_back();
    return static_cast<FolderIndex>(folders_.size() - 1);
}

POSIX::Result<void> TreePlan::read(FolderIndex index, int fd) {
    const std::size_t first = entries_.size();
    if (auto rewound = POSIX::rewind(fd); !rewound) return rewound;
    reader_.begin(fd);
    for (;;) {
        const auto next = reader_.next();
        if (!next) {
            entries_.resize(first);
            return std::unexpected(next.error());
        }
        if (!*next) break;
        bool isFolder = (*next)->type == DT_DIR;
        if ((*next)->type == DT_UNKNOWN) {
            const auto status = POSIX::lstat(POSIX::Place{fd, (*next)->name.data()});
            isFolder = status && status->isDirectory();
        }
        entries_.push_back({(*next)->inode, names_.size(), isFolder ? FolderIndex{0} : noFolder});
        names_.append((*next)->name).push_back('\0');
    }
    std::sort(entries_.begin() + static_cast<std::ptrdiff_t>(first), entries_.end(),
              [](const Entry& a, const Entry& b) {
                  const bool isFileA = a.folder == noFolder, isFileB = b.folder == noFolder;
                  return isFileA != isFileB ? isFileA : a.inode < b.inode;
              });
    for (std::size_t at = first; at < entries_.size(); ++at)
        if (entries_[at].folder != noFolder) entries_[at].folder = add();
    folders_[index] = {first, entries_.size() - first, true};
    return {};
}

void TreePlan::scan(FolderIndex top, FolderTrail& trail, const std::function<void()>& found,
                    const std::stop_token& stop) {
    struct Step {
        FolderIndex folder;
        std::size_t next; // offset of the next entry to look at
    };
    std::vector<Step> steps;
    if (read(top, trail.fd())) steps.push_back({top, 0});
    while (!steps.empty() && !stop.stop_requested()) {
        Step& step = steps.back();
        const Folder& folder = folders_[step.folder];
        if (step.next == folder.count) {
            steps.pop_back();
            if (!steps.empty() && !trail.leave()) return;
            continue;
        }
        const Entry& entry = entries_[folder.first + step.next++];
        if (entry.folder == noFolder || !trail.enter(name(entry))) continue;
        const FolderIndex below = entry.folder;
        if (read(below, trail.fd())) {
            found();
            steps.push_back({below, 0});
        } else if (!trail.leave()) {
            return;
        }
    }
}

} // namespace ombrel
