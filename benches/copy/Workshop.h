#pragma once

#include <string>
#include <vector>

namespace ombrel::bench {

/// Ends the bench with a message; what it made is removed.
[[noreturn]] void fail(const std::string& what);

/// A folder in which a bench makes its trees and copies, each under a name that was never used before: on
/// ext4 the place of a tree just removed makes new ones many times dearer, so nothing there is removed before
/// the end.
class Workshop {
public:
    /// On the disk, below the folder `base`. What is removed from it may cost as much as its making: some
    /// disks are told of every block that is set free.
    [[nodiscard]] static Workshop onDisk(const std::string& base) { return {base, Kind::disk}; }
    /// For many files: an ext4 of its own, as it is made by default, in one file below `base` that passes the
    /// cache by. It goes as a whole. Without the right to mount the same as `onDisk`.
    [[nodiscard]] static Workshop onOwnDisk(const std::string& base);
    /// On a tmpfs of its own, or in the machine's without the right to mount.
    [[nodiscard]] static Workshop inMemory();
    /// Removes it with all that is in it.
    ~Workshop();
    Workshop(const Workshop&) = delete;
    Workshop& operator=(const Workshop&) = delete;

    [[nodiscard]] const std::string& path() const noexcept { return path_; }
    [[nodiscard]] bool isDisk() const noexcept { return kind_ != Kind::memory; }
    /// How a row names it.
    [[nodiscard]] std::string label() const { return isDisk() ? "disk" : "tmpfs"; }

    /// A path in it that nothing has had yet.
    [[nodiscard]] std::string fresh() { return path_ + "/" + std::to_string(++made_); }
    /// The same for a folder, which is made.
    [[nodiscard]] std::string freshFolder();

    /// Has everything that was written so far on the medium, so that the next run does not pay for it.
    void quieten() const;

private:
    enum class Kind { memory, disk, ownDisk };
    Workshop(const std::string& base, Kind kind);
    void mountMemory();
    void mountImage();

    std::string path_;
    Kind kind_;
    int made_ = 0;
};

} // namespace ombrel::bench
