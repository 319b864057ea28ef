#pragma once

#include "listing/EntryReader.h"
#include "listing/FileStatus.h"
#include "listing/POSIX.h"
#include "operations/FolderTrail.h"

#include <cstdint>
#include <expected>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

namespace ombrel {

/// What a tree was when it was read: every entry with what tells whether it is still the same.
///
/// Made for a million entries: about 64 bytes and the name for each. Entries are numbered, a folder before
/// what is in it; the children of a folder stand side by side, folders last. Written by one thread; names
/// stay where they are until the manifest goes.
class TreeManifest {
public:
    using Index = std::uint32_t;
    static constexpr Index root = 0;

    /// The seven facts of one entry. Equal field by field.
    struct Entry {
        std::uint16_t type = 0; ///< an S_IF constant
        std::uint16_t permissions = 0;
        std::int64_t size = 0; ///< bytes
        FileTime modified;
        FileTime changed; ///< last status change
        FileIdentity identity;
        std::optional<std::string> linkTarget; ///< of a symbolic link, as bytes

        friend bool operator==(const Entry&, const Entry&) = default;
    };

    struct Children {
        Index first = 0;
        Index count = 0;
    };

    /// Holds the root alone, of which nothing is known yet.
    TreeManifest();
    TreeManifest(TreeManifest&&) noexcept = default;
    TreeManifest& operator=(TreeManifest&&) noexcept = default;

    /// Reads the tree at `place`, an entry of an open folder; links are not followed, mounts are entered. Any
    /// entry that cannot be read makes it fail; ECANCELED when `stop` was requested.
    [[nodiscard]] static std::expected<TreeManifest, POSIXFailure> capture(POSIX::Place place,
                                                                           const std::stop_token& stop = {});

    /// Entries, those that were left out among them.
    [[nodiscard]] Index size() const noexcept { return size_; }
    [[nodiscard]] Entry entry(Index index) const;
    /// NUL-terminated; empty for the root.
    [[nodiscard]] const char* name(Index index) const noexcept { return text(at(index).name); }
    [[nodiscard]] Index parent(Index index) const noexcept { return at(index).parent; }
    [[nodiscard]] Children children(Index folder) const noexcept;
    /// Relative to the root, joined with "/"; empty for the root.
    [[nodiscard]] std::string path(Index index) const;
    [[nodiscard]] std::optional<Index> find(std::string_view path) const;

    /// What kind of entry it is, by an S_IF constant; before it is recorded, what its folder says of it, 0
    /// where that says nothing.
    [[nodiscard]] std::uint32_t type(Index index) const noexcept { return at(index).mode & S_IFMT; }
    [[nodiscard]] bool isFolder(Index index) const noexcept { return type(index) == S_IFDIR; }
    [[nodiscard]] std::int64_t size(Index index) const noexcept { return at(index).size; }
    [[nodiscard]] std::uint32_t mode(Index index) const noexcept { return at(index).mode; }
    [[nodiscard]] FileTime modified(Index index) const noexcept;
    /// Empty unless the entry is a symbolic link.
    [[nodiscard]] std::string_view linkTarget(Index index) const noexcept;

    /// How closely an entry of today must be the one that was recorded. `loosely` is for file systems that
    /// number their inodes anew: type, size and modification time alone.
    enum class Likeness : std::uint8_t { exact, loosely };
    /// Whether the entry is still the recorded one: identity, type, size and modification time; of a folder
    /// identity and type only, because emptying it changes its time.
    [[nodiscard]] bool isStill(Index index, const FileStatus& now, Likeness likeness) const noexcept;
    /// The same with the time of the last status change, which nobody can set.
    [[nodiscard]] bool isUntouched(Index index, const FileStatus& now, Likeness likeness) const noexcept;

    // ---- Writing

    /// Reads the names in an open folder and adds them as its children. On failure none is added; EOVERFLOW
    /// when there is no number left.
    [[nodiscard]] POSIX::Result<void> readChildren(Index folder, int fd, EntryReader& reader);
    void record(Index index, const FileStatus& status);
    void recordLink(Index index, std::string_view target);
    /// Takes the entry, with what is in it, out of the tree: it is not copied, compared or removed.
    void leaveOut(Index index);
    [[nodiscard]] bool isLeftOut(Index index) const noexcept { return at(index).flags & leftOut; }
    /// Whether something in the folder, however deep, was left out.
    [[nodiscard]] bool holdsLeftOut(Index index) const noexcept { return at(index).flags & incomplete; }

private:
    static constexpr std::uint8_t leftOut = 1, incomplete = 2;
    static constexpr std::size_t entriesPerBlock = 4096;
    static constexpr std::size_t textPerBlock = std::size_t{256} << 10;

    struct Packed {
        std::uint64_t inode = 0;
        std::int64_t size = 0;
        std::int64_t modified = 0, changed = 0; // seconds
        std::uint32_t modifiedNanoseconds = 0, changedNanoseconds = 0;
        std::uint32_t name = 0;
        Index parent = 0;
        std::uint32_t extra = 0; // a link's target, a folder's first child
        Index childCount = 0;
        std::uint16_t mode = 0;
        std::uint16_t device = 0; // in devices_
        std::uint8_t flags = 0;
    };
    static_assert(sizeof(Packed) <= 64);

    [[nodiscard]] Packed& at(Index index) noexcept {
        return blocks_[index / entriesPerBlock][index % entriesPerBlock];
    }
    [[nodiscard]] const Packed& at(Index index) const noexcept {
        return blocks_[index / entriesPerBlock][index % entriesPerBlock];
    }
    [[nodiscard]] const char* text(std::uint32_t offset) const noexcept {
        return texts_[offset / textPerBlock].get() + offset % textPerBlock;
    }
    Index add();
    std::optional<std::uint32_t> keep(std::string_view bytes);
    std::uint16_t deviceNumber(std::uint64_t device);

    std::vector<std::unique_ptr<Packed[]>> blocks_;
    std::vector<std::unique_ptr<char[]>> texts_;
    std::size_t textUsed_ = textPerBlock; // of the last block
    std::vector<std::uint64_t> devices_;
    Index size_ = 0;
};

} // namespace ombrel
