#include "listing/EntryReader.h"

#include "listing/POSIXCall.h"

#include <dirent.h>

namespace ombrel {

EntryReader::EntryReader() : buffer_(std::make_unique_for_overwrite<std::byte[]>(bufferBytes)) {}

void EntryReader::begin(int folder) noexcept {
    folder_ = folder;
    position_ = filled_ = 0;
}

POSIX::Result<bool> EntryReader::fill() {
    const auto count = POSIX::answered(SystemCall::Kind::readDirectory,
                                       [&] { return ::getdents64(folder_, buffer_.get(), bufferBytes); });
    if (!count) return std::unexpected(count.error());
    position_ = 0;
    filled_ = static_cast<std::size_t>(*count);
    return *count > 0;
}

POSIX::Result<std::optional<POSIX::DirectoryEntry>> EntryReader::next() {
    for (;;) {
        if (position_ == filled_) {
            const auto more = fill();
            if (!more) return std::unexpected(more.error());
            if (!*more) return std::nullopt;
        }
        const auto* entry = reinterpret_cast<const dirent64*>(buffer_.get() + position_);
        position_ += entry->d_reclen;
        const char* name = entry->d_name;
        if (name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'))) continue;
        return POSIX::DirectoryEntry{name, entry->d_type, entry->d_ino};
    }
}

} // namespace ombrel
