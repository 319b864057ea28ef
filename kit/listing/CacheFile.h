#pragma once

#include "base/FileURL.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Small files that can be made again: read whole, replaced whole, and nobody waits for the medium. All calls
/// block; any thread.
namespace ombrel::CacheFile {

/// The contents of a regular file of at most `limit` bytes; nothing when there is none that can be read.
[[nodiscard]] std::optional<std::string> read(const FileURL& url, std::size_t limit);

/// The state that a file was seen in.
struct State {
    std::int64_t size = 0;     ///< bytes
    std::int64_t modified = 0; ///< seconds
    friend bool operator==(const State&, const State&) = default;
};
/// The same, and only while the file is in that state from the beginning of the reading to its end.
[[nodiscard]] std::optional<std::string> readInState(const FileURL& url, const State& state,
                                                     std::size_t limit);

/// Puts `bytes` in place of the contents: readers see the old ones or the new ones. Folders that are missing
/// are made (0700), the file is the user's alone (0600). Answers whether that was done.
bool replace(const FileURL& url, std::string_view bytes);

} // namespace ombrel::CacheFile
