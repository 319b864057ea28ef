#include "listing/FileBeginning.h"

#include "listing/POSIX.h"

#include <fcntl.h>

#include <algorithm>

namespace ombrel {

std::optional<std::string> beginningOf(const FileURL& url, std::size_t limit) {
    const auto fd = POSIX::open(url, O_RDONLY | O_NONBLOCK);
    if (!fd) return std::nullopt;
    const auto status = POSIX::status(fd->get());
    if (!status || !status->isRegular()) return std::nullopt;
    // Sizes lie on some file systems; a large file is not given more room than it needs.
    constexpr std::size_t step = std::size_t{64} << 10;
    std::string bytes;
    while (bytes.size() < limit) {
        const std::size_t filled = bytes.size();
        bytes.resize(std::min(limit, filled + step));
        const auto read = POSIX::read(fd->get(), bytes.data() + filled, bytes.size() - filled);
        if (!read) return std::nullopt;
        bytes.resize(filled + *read);
        if (*read == 0) break;
    }
    return bytes;
}

} // namespace ombrel
