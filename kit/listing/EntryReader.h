#pragma once

#include "listing/POSIX.h"

#include <cstddef>
#include <memory>
#include <optional>

namespace ombrel {

/// Reads the names of one open folder after another through one buffer of its own: where thousands of small
/// folders are walked, a directory stream for each would cost more than the reading. One thread at a time.
class EntryReader {
public:
    EntryReader();

    /// Begins at the first entry of `folder`, a descriptor opened for reading that stays the caller's.
    void begin(int folder) noexcept;

    /// The next entry, "." and ".." left out; nothing at the end. Its name is valid until the next call.
    [[nodiscard]] POSIX::Result<std::optional<POSIX::DirectoryEntry>> next();

    /// Whether the next call can be answered without asking the kernel.
    [[nodiscard]] bool hasBuffered() const noexcept { return position_ < filled_; }

private:
    [[nodiscard]] POSIX::Result<bool> fill();

    static constexpr std::size_t bufferBytes = std::size_t{64} << 10;
    std::unique_ptr<std::byte[]> buffer_;
    std::size_t position_ = 0;
    std::size_t filled_ = 0;
    int folder_ = -1;
};

} // namespace ombrel
