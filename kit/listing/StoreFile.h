#pragma once

#include "base/FileURL.h"
#include "base/OwnedFd.h"
#include "listing/POSIX.h"

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace ombrel {

/// A small file in which the program keeps something of its own (settings, lists): read whole, replaced
/// whole, by several processes in turn.
///
/// Whoever reads sees the old contents or the new ones, never a part, and after a crash too. Where the file
/// is a symbolic link, what it leads to is replaced and the link stays. All calls block; any thread.
class StoreFile {
public:
    /// A larger file is none of ours and is not read (EFBIG).
    static constexpr std::size_t largest = std::size_t{16} << 20;

    /// Held while the contents are read, changed and replaced. Goes with its holder.
    class Lock {
    public:
        explicit Lock(OwnedFd fd) noexcept : fd_(std::move(fd)) {}

    private:
        OwnedFd fd_;
    };

    explicit StoreFile(FileURL url) : url_(std::move(url)) {}

    [[nodiscard]] const FileURL& url() const noexcept { return url_; }

    /// The contents; nothing when there is no file. EINVAL for what is not a regular file.
    [[nodiscard]] POSIX::Result<std::optional<std::string>> read() const;

    /// Puts `bytes` in place of the contents and waits until they are on the medium. Folders that are missing
    /// are made (0700), and so is the file (0600); an existing one keeps its permission bits. On failure the
    /// old contents stand.
    [[nodiscard]] POSIX::Result<void> replace(std::string_view bytes) const;

    /// Moves a file that cannot be understood out of the way, to the first free name of "<name>.damaged",
    /// "<name>.damaged-2", ... Answers where it is now.
    [[nodiscard]] POSIX::Result<FileURL> setAside() const;

    /// Waits until no other process holds the file's lock ("<name>.lock" beside it), for at most `limit`;
    /// ETIMEDOUT then. On file systems without locks it is granted at once.
    [[nodiscard]] POSIX::Result<Lock> lock(std::chrono::milliseconds limit = std::chrono::seconds(5)) const;

private:
    FileURL url_;
};

} // namespace ombrel
