#pragma once

#include <dirent.h>

#include <utility>

namespace ombrel {

/// An open directory stream that closes itself. Move-only; empty after a move. Used by one thread at a time.
class DirectoryStream {
public:
    DirectoryStream() noexcept = default;
    /// Takes `stream` over.
    explicit DirectoryStream(DIR* stream) noexcept : stream_(stream) {}
    DirectoryStream(DirectoryStream&& other) noexcept : stream_(std::exchange(other.stream_, nullptr)) {}
    DirectoryStream& operator=(DirectoryStream&& other) noexcept {
        if (this != &other) {
            if (stream_) ::closedir(stream_);
            stream_ = std::exchange(other.stream_, nullptr);
        }
        return *this;
    }
    ~DirectoryStream() {
        if (stream_) ::closedir(stream_);
    }

    [[nodiscard]] DIR* get() const noexcept { return stream_; }
    /// The stream's own descriptor, for calls relative to the folder; -1 when empty. Stays owned by the
    /// stream.
    [[nodiscard]] int fd() const noexcept { return stream_ ? ::dirfd(stream_) : -1; }
    [[nodiscard]] explicit operator bool() const noexcept { return stream_ != nullptr; }

private:
    DIR* stream_ = nullptr;
};

} // namespace ombrel
