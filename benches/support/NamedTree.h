#pragma once

#include <random>
#include <string>

namespace ombrel::bench {

/// A name such as people and programs give: camera pictures, documents with spaces and numbers, hashes,
/// sources, other scripts. Different for each `number`.
[[nodiscard]] std::string usualName(long number, std::mt19937& random);

/// A folder of `count` entries with usual names; 5 % folders, 2 % links, the rest empty files. Removed at the
/// end.
class NamedTree {
public:
    /// Below the folder `base`. Exits the bench with a message when it cannot be made.
    NamedTree(const std::string& base, long count);
    ~NamedTree();
    NamedTree(const NamedTree&) = delete;
    NamedTree& operator=(const NamedTree&) = delete;

    [[nodiscard]] const std::string& path() const noexcept { return path_; }

private:
    std::string path_;
};

/// A tmpfs mounted for as long as it lives; `path` is empty where the machine does not allow that.
class MountedTmpfs {
public:
    explicit MountedTmpfs(const std::string& base);
    ~MountedTmpfs();
    MountedTmpfs(const MountedTmpfs&) = delete;
    MountedTmpfs& operator=(const MountedTmpfs&) = delete;

    [[nodiscard]] const std::string& path() const noexcept { return path_; }

private:
    std::string path_;
};

} // namespace ombrel::bench
