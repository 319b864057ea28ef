#pragma once

#include "listing/EntryReader.h"
#include "operations/FolderTrail.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <stop_token>
#include <string>
#include <vector>

namespace ombrel {

/// What a walk found in one or more trees: the names in them, folder by folder, without looking at any entry.
/// Made once before a job that must know how much there is to do; about 24 bytes and the name for each entry.
class TreePlan {
public:
    using FolderIndex = std::uint32_t;
    static constexpr FolderIndex noFolder = UINT32_MAX;

    struct Entry {
        std::uint64_t inode = 0;
        std::uint64_t name = 0;        ///< see `TreePlan::name`
        FolderIndex folder = noFolder; ///< what is known of it, when the entry is a folder
    };

    /// The entries of one folder: what is not a folder first, each kind in the order of inodes, which is the
    /// order on the medium on most file systems.
    struct Folder {
        std::size_t first = 0;
        std::size_t count = 0;
        bool isRead =
            false; ///< whether the entries are known; not so when the folder could not be opened or read
    };

    /// A folder of which nothing is known yet.
    [[nodiscard]] FolderIndex add();

    /// Walks the tree below the trail's folder. What cannot be opened or read, and what another file system
    /// is mounted on, is left unread, and so is the rest when the walk is stopped or loses its way. `found`
    /// is told after each folder that there are more entries.
    void scan(FolderIndex top, FolderTrail& trail, const std::function<void()>& found,
              const std::stop_token& stop);

    /// Reads one folder's entries, for the first time or anew.
    [[nodiscard]] POSIX::Result<void> read(FolderIndex folder, int fd);

    [[nodiscard]] const Folder& folder(FolderIndex index) const { return folders_[index]; }
    [[nodiscard]] const Entry& entry(std::size_t index) const { return entries_[index]; }
    /// NUL-terminated; valid until something is read, as entries and folders are.
    [[nodiscard]] const char* name(const Entry& entry) const { return names_.data() + entry.name; }
    /// Entries found so far in all trees.
    [[nodiscard]] std::size_t entryCount() const noexcept { return entries_.size(); }

private:
    std::vector<Folder> folders_;
    std::vector<Entry> entries_;
    std::string names_;
    EntryReader reader_;
};

} // namespace ombrel
